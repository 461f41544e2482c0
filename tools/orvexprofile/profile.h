// A colour profile in memory, as the profile tools build, read and convert it.
//
// The file, all numbers little-endian:
//     "ZVC", version (1 byte), file size (4), reserved (4),
//     tag-area header: type (1), length of the tag area, these 3 bytes included (2),
//     tags: id (1), length (2), data; 1 = name without terminator, 2 = resolution codes: other, then 600 dpi,
//     the variant for 600 dpi, the variant for other resolutions.
// How the entries of a variant are stored depends on the version; see the table in profile.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::tools::profile {

constexpr int kFirstVersion = 1;
constexpr int kLastVersion = 5;
constexpr size_t kHeaderSize = 12;
constexpr size_t kTagHeaderSize = 3;  // of the tag area and of each tag
constexpr int kNameTag = 1;
constexpr int kResolutionTag = 2;
constexpr size_t kLongestName = 511;       // that the driver reads
constexpr size_t kLongestShownName = 99;   // that the list of installed profiles shows
constexpr int8_t kNoResolutionCode = '0';  // what a profile without the tag leaves to the driver

// How a version stores one variant.
struct VersionLayout {
    int steps;       // component values on each axis: 256, 128 or 17
    bool planes;     // four planes, Y first, instead of whole entries
    bool blueFirst;  // blue varies slowest and red fastest, instead of the other way round
    std::string_view description;

    size_t Entries() const { return static_cast<size_t>(steps) * steps * steps; }
    size_t VariantSize() const { return 4 * Entries(); }
};

// `version` is 1 to 5.
const VersionLayout& LayoutOf(int version);

// The colour component at which a profile maker samples step 0 to steps - 1, and the one under which the
// driver stores it. They differ in the last of 128 steps only: the driver has no entry for 255 there and
// reads version 4's entry of 254 in its place, so 254 holds the inks of 255, and white stays white.
uint32_t SampledComponent(int steps, int step);
uint32_t StoredComponent(int steps, int step);

// The engine's resolution codes.
struct ResolutionCodes {
    int8_t other = kNoResolutionCode;
    int8_t at600 = kNoResolutionCode;
    bool operator==(const ResolutionCodes&) const = default;
};

// Ink values of one variant, in the order of the colours' numbers over the version's steps: red slowest, blue
// fastest, whatever the order in the file.
using Variant = std::vector<uint32_t>;

// The same colours with the axes in the other order: between red slowest and blue slowest, either way.
Variant SwapAxes(int steps, const Variant& variant);

struct Profile {
    int version = kLastVersion;
    std::optional<std::string> name;
    std::optional<ResolutionCodes> codes;
    Variant at600;
    Variant other;
};

// Gives the ink value of each of `colors`.
using InkSource = std::function<void(std::span<const uint32_t> colors, std::span<uint32_t> inks)>;

// Calls `visit` with the colours at which a variant of the version is sampled, in its order, a run of blues
// at a time.
void ForEachSampledRun(int version, const std::function<void(std::span<const uint32_t>)>& visit);

// The inks of all colours of a variant. No entry is the driver's "not computed" mark.
Variant SampleVariant(int version, const InkSource& source);

}  // namespace orvex::tools::profile
