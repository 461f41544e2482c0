// Profiles of the versions with 16 or 128 MiB of colors.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace orvex {

// Writes a profile of version 1 to 4 with these tags and ProfileInk.
void WriteLargeProfile(const std::filesystem::path& path, int version, std::string_view tags);

// Returns the cache as such a profile fills it, with `others` for the colors that it leaves out.
std::vector<uint32_t> LargeProfileTable(int version, bool at600Dpi, uint32_t others);

}  // namespace orvex
