#include "driver/profiles/profile_head.h"

#include <cstring>

namespace orvex {

namespace {

void TakeTag(const ProfileTag& tag, const TagTargets& targets) {
    if (!tag.taken) return;
    if (tag.id == kNameTag) {
        memcpy(targets.name, tag.data, tag.came);
        targets.name[tag.came] = '\0';
        if (tag.IsWhole()) LogInfo("Profile name:%s", targets.name);
    } else if (targets.resolutionCode != nullptr) {
        *targets.resolutionCode = tag.Code(targets.at600Dpi);
        if (tag.IsWhole()) LogInfo("HP Res:%d", *targets.resolutionCode);
    }
}

}  // namespace

bool ReadProfileHead(BlockReader& file, const char* path, LogLevel headerErrors, const TagTargets& targets,
                     ProfileHeader* header) {
    if (const ProfileProblem problem = ReadProfileHeader(file, header)) {
        LogProfileProblem(problem, path, headerErrors);
        return false;
    }
    LogInfo("Profile version:%d", header->version);
    TagReader tags(file, targets.nameCapacity);
    for (ProfileTag tag; tags.Next(&tag);) TakeTag(tag, targets);
    LogProfileProblem(tags.Problem(), path, LogLevel::kInfo);
    return !tags.Problem();
}

}  // namespace orvex
