// Who may write into a folder.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvex::tools::print {

// Returns the accounts, as the system names them, that may create files in the folder: on Windows those that
// its access control list allows it to, natively its owner, its group and all others. Empty if that can't be
// read.
std::vector<std::string> WritersOf(const std::filesystem::path& folder);

// Returns whether an account means everybody who can log on.
bool IsEverybody(const std::string& account);

}  // namespace orvex::tools::print
