#include "fuzz/profile_input.h"

#include <algorithm>

#include "fuzz/input.h"
#include "tests/driver/profiles/profile_bytes.h"

namespace orvex::fuzz {

namespace {

constexpr uint64_t kParts = 8;  // of the colors, each of them a plane of a variant in planar versions

bool IsRare(std::span<const uint8_t> input) {
    uint32_t sum = 0;
    for (const uint8_t byte : input) sum = (sum ^ byte) * 0x01000193u;
    return (sum ^ sum >> 16) % kRare == 0;
}

// Puts the bytes into each eighth of the colors, each byte one larger than in the eighth before.
void PutIntoColors(plain::SparseFile& file, uint64_t begin, uint64_t size, std::string bytes,
                   uint32_t where) {
    const uint64_t part = size / kParts;
    bytes.resize(static_cast<size_t>(std::min<uint64_t>(bytes.size(), part)));
    const uint64_t offset = where % (part - bytes.size() + 1);
    for (uint64_t i = 0; i < kParts; ++i) {
        file.runs.push_back({begin + i * part + offset, bytes});
        for (char& byte : bytes) ++byte;
    }
}

}  // namespace

ProfileInput TakeProfile(std::span<const uint8_t> input) {
    ProfileInput profile = {{}, IsRare(input)};
    plain::SparseFile& file = profile.file;
    FuzzInput choices(input);
    const uint8_t choice = choices.Byte();
    if (choice & 0x80) {
        file.runs.push_back({0, std::string(choices.RestAsText())});
        file.size = file.runs[0].bytes.size();
        return profile;
    }
    const int version = choice & 7;
    const auto areaLength = choices.Number<uint16_t>();
    const std::string area = TagArea(choices.TakeText(choices.Number<uint16_t>()), areaLength);
    const auto where = choices.Number<uint32_t>();
    std::string colors(choices.RestAsText());
    const size_t begin = ProfileHead(version, 0).size() + area.size();
    const bool known = version >= 1 && version <= 5;
    if ((choice & kProfileWhole) && known && (version == 5 || profile.rare)) {
        file.size = begin + ColorsSize(version);
        PutIntoColors(file, begin, ColorsSize(version), std::move(colors), where);
    } else {
        file.size = begin + colors.size();
        file.runs.push_back({begin, std::move(colors)});
    }
    file.runs.push_back({0, ProfileHead(version, file.size) + area});
    return profile;
}

std::string ProfileSeed(int choice, const std::string& tags, size_t areaLength, const std::string& colors,
                        uint32_t where) {
    return static_cast<char>(choice) + Number16(static_cast<uint32_t>(areaLength)) +
           Number16(static_cast<uint32_t>(tags.size())) + tags + Number32(where) + colors;
}

std::string RareSeed(const std::string& seed) {
    for (uint32_t number = 0;; ++number) {
        std::string rare = seed + Number32(number);
        if (IsRare({reinterpret_cast<const uint8_t*>(rare.data()), rare.size()})) return rare;
    }
}

}  // namespace orvex::fuzz
