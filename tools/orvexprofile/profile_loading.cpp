#include "tools/orvexprofile/profile_loading.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "driver/color/color_cache.h"
#include "driver/profiles/profile_colors.h"
#include "driver/profiles/profile_file.h"

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

}  // namespace orvex::tools::profile
