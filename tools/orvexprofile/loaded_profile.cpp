#include "tools/orvexprofile/loaded_profile.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "driver/color/color_cache.h"
#include "driver/profiles/profile_colors.h"
#include "driver/profiles/profile_file.h"
#include "tools/common/whole_file.h"

namespace orvex::tools::profile {

namespace {

ProfileProblem ReadTags(BlockReader& file, ProfileFacts& facts) {
    TagReader reader(file, kProfileNameCapacity);
    for (ProfileTag tag; reader.Next(&tag);) {
        facts.tags.push_back({static_cast<uint64_t>(tag.offset), tag.id, static_cast<uint32_t>(tag.length),
                              std::string(tag.data, tag.came)});
    }
    facts.tagAreaLength = reader.AreaLength();
    return reader.Problem();
}

ProfileProblem ReadFile(BlockReader& file, PrintVariant variant, ProfileFacts& facts) {
    ProfileHeader header;
    const ProfileProblem problem = ReadProfileHeader(file, &header);
    facts.size = static_cast<uint64_t>(std::max<int64_t>(header.fileSize, 0));
    facts.mark.assign(header.mark, header.markSize);
    facts.version = header.version;
    facts.storedSize = header.storedSize;
    if (problem) return problem;
    if (const ProfileProblem wrongTags = ReadTags(file, facts)) return wrongTags;
    facts.dataOffset = static_cast<uint64_t>(file.Position());
    return ReadProfileColors(file, header, variant == PrintVariant::kAt600, g_colorCache);
}

// Returns the message about a problem, as the driver would log it.
std::string Words(const ProfileProblem& problem, const std::string& path) {
    struct : TextSink {
        void Append(std::string_view piece) override { text += piece; }
        std::string text;
    } sink;
    const ProfileMessage message = MessageOf(problem, path.c_str());
    FormatLogText(sink, message.format, message.arguments, std::size(message.arguments));
    return sink.text;
}

// The even components on both sides of a component, and its place between them: 0 or a half of the way.
struct HalfGridPlace {
    uint32_t low;
    uint32_t high;
    double part;

    explicit HalfGridPlace(uint32_t component)
        : low(component & 0xFE),
          high(std::min(low + 2, 254u)),
          part(component & 1 && component != 255 ? 0.5 : 0) {}
};

uint32_t BetweenStoredColors(uint32_t color) {
    const HalfGridPlace red(color >> 16 & 0xFF), green(color >> 8 & 0xFF), blue(color & 0xFF);
    double amounts[kInks] = {};
    for (int corner = 0; corner < 8; ++corner) {
        const bool farRed = corner & 4, farGreen = corner & 2, farBlue = corner & 1;
        const double weight = (farRed ? red.part : 1 - red.part) * (farGreen ? green.part : 1 - green.part) *
                              (farBlue ? blue.part : 1 - blue.part);
        const uint32_t inks = g_colorCache[ColorIndex(
            farRed ? red.high : red.low, farGreen ? green.high : green.low, farBlue ? blue.high : blue.low)];
        for (int ink = 0; ink < kInks; ++ink) amounts[ink] += weight * InkAmount(inks, ink);
    }
    const auto rounded = [&](int ink) { return static_cast<uint32_t>(amounts[ink] + 0.5); };
    return PackInks(rounded(kBlackInk), rounded(kCyanInk), rounded(kMagentaInk), rounded(kYellowInk));
}

}  // namespace

std::optional<std::string> ProfileFacts::Name() const {
    std::optional<std::string> name;
    for (const TagFacts& tag : tags) {
        if (tag.id == kNameTag && tag.length <= kLongestName) name = tag.data;
    }
    return name;
}

std::optional<ResolutionCodes> ProfileFacts::Codes() const {
    std::optional<ResolutionCodes> codes;
    for (const TagFacts& tag : tags) {
        if (tag.id == kResolutionTag && tag.data.size() == kResolutionTagSize) {
            codes = {static_cast<int8_t>(tag.data[0]), static_cast<int8_t>(tag.data[1])};
        }
    }
    return codes;
}

ProfileFacts LoadIntoDriver(const std::filesystem::path& path, PrintVariant variant) {
    ProfileFacts facts;
    BlockReader file(path.string().c_str());
    if (const ProfileProblem problem = ReadFile(file, variant, facts)) {
        facts.problem = Words(problem, path.string());
    } else {
        SetCacheKind(facts.version);
    }
    return facts;
}

ProfileFacts LoadAccepted(const std::filesystem::path& path, PrintVariant variant) {
    CheckReadable(path);
    ProfileFacts facts = LoadIntoDriver(path, variant);
    if (facts.Accepted()) return facts;
    // Some of the messages name the file themselves.
    const bool named = facts.problem.find(path.string()) != std::string::npos;
    throw std::runtime_error(named ? facts.problem : path.string() + ": " + facts.problem);
}

void LoadGenericIntoDriver(PrintVariant variant) {
    signed char code = 0;
    zvc_load_profile(nullptr, variant == PrintVariant::kAt600 ? kResolution600 : kResolution300, &code,
                     nullptr, 0);
}

void LoadForPrint(const std::filesystem::path& path, PrintVariant variant) {
    if (path.empty()) {
        LoadGenericIntoDriver(variant);
    } else {
        LoadAccepted(path, variant);
    }
}

Variant LoadedEntries(int version) {
    const int steps = LayoutOf(version).steps;
    Variant entries;
    entries.reserve(LayoutOf(version).Entries());
    for (int red = 0; red < steps; ++red) {
        for (int green = 0; green < steps; ++green) {
            for (int blue = 0; blue < steps; ++blue) {
                entries.push_back(
                    g_colorCache[ColorIndex(StoredComponent(steps, red), StoredComponent(steps, green),
                                            StoredComponent(steps, blue))]);
            }
        }
    }
    return entries;
}

bool PrintsAsMeant(int version) {
    return version != 3 && version != 4;
}

InkSource LoadedColors(int version) {
    const auto look = PrintsAsMeant(version) ? LookupColor : BetweenStoredColors;
    return [look](std::span<const uint32_t> colors, std::span<uint32_t> inks) {
        std::transform(colors.begin(), colors.end(), inks.begin(), look);
    };
}

std::vector<uint32_t> PrintedInks(std::span<const uint32_t> colors) {
    std::vector<uint32_t> inks(colors.size());
    std::transform(colors.begin(), colors.end(), inks.begin(), LookupColor);
    return inks;
}

std::vector<uint32_t> ColorsEvery(int step) {
    std::vector<uint32_t> components;
    for (int value = 0; value < 255; value += step) components.push_back(static_cast<uint32_t>(value));
    components.push_back(255);
    std::vector<uint32_t> colors;
    colors.reserve(components.size() * components.size() * components.size());
    for (uint32_t red : components) {
        for (uint32_t green : components) {
            for (uint32_t blue : components) colors.push_back(ColorIndex(red, green, blue));
        }
    }
    return colors;
}

}  // namespace orvex::tools::profile
