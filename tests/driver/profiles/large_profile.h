// Profiles of the versions that hold 16 or 128 MiB of colours.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace orvex {

// Writes a profile of version 1 to 4 with these tags that holds ProfileInk.
void WriteLargeProfile(const std::filesystem::path& path, int version, std::string_view tags);

// The cache as such a profile fills it; colours that it leaves out hold `others`.
std::vector<uint32_t> LargeProfileTable(int version, bool at600Dpi, uint32_t others);

}  // namespace orvex
