// Showing a file in the program that its user has for it.
#pragma once

#include <filesystem>

namespace orvex::tools::view {

// Shows a file. Throws std::runtime_error if there is no program for it.
void OpenForUser(const std::filesystem::path& path);

}  // namespace orvex::tools::view
