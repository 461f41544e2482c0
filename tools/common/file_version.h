// The version in a program file's resources.
#pragma once

#include <filesystem>
#include <string>

namespace orvex::tools {

// Returns the file version, as "0.3.256.0"; empty if the file has none, and natively, where files have no
// resources.
std::string FileVersion(const std::filesystem::path& file);

}  // namespace orvex::tools
