// Reads files at once.
#pragma once

#include <filesystem>
#include <string>

namespace orvex::tools {

// Returns a file's bytes. Throws std::runtime_error, in words, when the file can't be read.
std::string ReadWholeFile(const std::filesystem::path& path);

}  // namespace orvex::tools
