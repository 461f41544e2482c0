// A color profile in memory, as the profile tools build, read and convert it. The file's format is described
// in driver/profiles/profile_reader.h.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "driver/color/ink.h"
#include "driver/profiles/profile_reader.h"

namespace orvex::tools::profile {

constexpr int kFirstVersion = 1;
constexpr int kLastVersion = 5;
constexpr size_t kLongestName = kProfileNameCapacity - 1;
constexpr size_t kLongestListedName = kListedNameCapacity - 1;
constexpr uint32_t kWhite = 0xFFFFFF;

// The layout of one variant in a version.
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

// Return the color component at which a profile maker samples step 0 to steps - 1, and the one under which
// the driver stores it. They differ only in the last of 128 steps: the driver has no entry for 255 there and
// reads version 4's entry of 254 in its place, so 254 has the inks of 255, and white stays white.
uint32_t SampledComponent(int steps, int step);
uint32_t StoredComponent(int steps, int step);

// Returns the ink value itself, or the one nearest to the driver's "not computed" mark, with black one step
// short of full: no profile may contain the mark, which is all four inks full.
InkValue AvoidMark(InkValue inks);

// The print engine's resolution codes.
struct ResolutionCodes {
    int8_t other = kDefaultResolutionCode;
    int8_t at600 = kDefaultResolutionCode;
    bool operator==(const ResolutionCodes&) const = default;
};

// The variant for 600 dpi, or the one for all other resolutions.
enum class PrintVariant { kAt600, kOther };
constexpr PrintVariant kBothVariants[] = {PrintVariant::kAt600, PrintVariant::kOther};

// Returns the resolutions that a variant is for, in words.
inline std::string NameOf(PrintVariant variant) {
    return variant == PrintVariant::kAt600 ? "600 dpi" : "other resolutions";
}

// Ink values of one variant, in the order of the colors' numbers over the version's steps: red slowest, blue
// fastest, whatever the order in the file.
using Variant = std::vector<InkValue>;

// Returns the same colors with the axes in the other order: from red slowest to blue slowest, or back.
Variant SwapAxes(int steps, const Variant& variant);

struct Profile {
    int version = kLastVersion;
    std::optional<std::string> name;
    std::optional<ResolutionCodes> codes;
    Variant at600;
    Variant other;
};

// Computes the ink value of each of `colors`.
using InkSource = std::function<void(std::span<const uint32_t> colors, std::span<InkValue> inks)>;

// Returns the inks of all colors of a variant, none of them the driver's "not computed" mark. Asks for a run
// of blues at a time.
Variant SampleVariant(int version, const InkSource& source);

}  // namespace orvex::tools::profile
