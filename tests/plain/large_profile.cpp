#include "tests/plain/large_profile.h"

#include <fstream>
#include <string>

#include "tests/driver/profiles/profile_bytes.h"

namespace orvex {

namespace {

// Returns the inks of a profile's colors in index order.
std::vector<uint32_t> ProfileInks(int version, bool at600Dpi) {
    const uint32_t step = version < 3 ? 1 : 2;
    std::vector<uint32_t> inks;
    for (uint32_t red = 0; red < 256; red += step) {
        for (uint32_t green = 0; green < 256; green += step) {
            for (uint32_t blue = 0; blue < 256; blue += step) {
                inks.push_back(ProfileInk(ColorIndex(red, green, blue), at600Dpi));
            }
        }
    }
    return inks;
}

std::string Plane(const std::vector<uint32_t>& inks, int place) {
    std::string bytes;
    bytes.reserve(inks.size());
    for (const uint32_t ink : inks) bytes += static_cast<char>(plain::InkByte(ink, place));
    return bytes;
}

std::string Entries(const std::vector<uint32_t>& inks) {
    std::string bytes;
    bytes.reserve(4 * inks.size());
    for (const uint32_t ink : inks) {
        for (int place = 0; place < 4; ++place) bytes += static_cast<char>(plain::InkByte(ink, place));
    }
    return bytes;
}

}  // namespace

void WriteLargeProfile(const std::filesystem::path& path, int version, std::string_view tags) {
    std::ofstream file(path, std::ios::binary);
    const std::string area = TagArea(tags);
    file << ProfileHead(version, 12 + area.size() + ColorsSize(version)) << area;
    for (const bool at600Dpi : {true, false}) {
        const std::vector<uint32_t> inks = ProfileInks(version, at600Dpi);
        if (version % 2 == 1) {
            file << Entries(inks);
        } else {
            for (int place = 3; place >= 0; --place) file << Plane(inks, place);
        }
    }
}

std::vector<uint32_t> LargeProfileTable(int version, bool at600Dpi, uint32_t others) {
    std::vector<uint32_t> table(kCacheEntries, others);
    for (uint32_t color = 0; color < kCacheEntries; ++color) {
        if (version < 3 || plain::IsAllEven(color)) table[color] = ProfileInk(color, at600Dpi);
    }
    return table;
}

}  // namespace orvex
