#include "driver/profiles/profile_file.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "driver/color/color_cache.h"
#include "driver/color/generic_conversion.h"
#include "driver/profiles/profile_colors.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

// The system opens these names as devices in every folder; # is the number of a port.
constexpr const WCHAR* kDeviceNames[] = {L"CON",  L"PRN",  L"AUX",    L"NUL",
                                         L"COM#", L"LPT#", L"CONIN$", L"CONOUT$"};

bool IsPortNumber(WCHAR c) {
    return (c >= L'1' && c <= L'9') || c == 0xB9 || c == 0xB2 || c == 0xB3;  // superscript 1, 2 and 3
}

bool MatchesCharacter(WCHAR wanted, WCHAR c) {
    if (wanted == L'#') return IsPortNumber(c);
    const bool isLetter = wanted >= L'A';
    return c == wanted || (isLetter && c == wanted - L'A' + L'a');
}

// Returns whether the system opens a device under this name. The system looks at the text before the first
// dot, without the blanks at its end.
bool IsDeviceName(WideView name) {
    name = name.substr(0, name.find(L'.'));
    name = name.substr(0, name.find_last_not_of(L' ') + 1);
    return std::any_of(std::begin(kDeviceNames), std::end(kDeviceNames), [&](WideView device) {
        return std::equal(device.begin(), device.end(), name.begin(), name.end(), MatchesCharacter);
    });
}

// Returns whether a path into the profiles folder leads out of it again, or further in. Applications name the
// profile of a job, so such a path is not opened.
bool LeavesProfilesFolder(const char* path) {
    constexpr std::string_view kProfilesFolder = ORVEX_PROFILES_FOLDER;
    return std::string_view(path).starts_with(kProfilesFolder) &&
           !IsBareFileName(path + kProfilesFolder.size());
}

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

bool IsBareFileName(const char* name) {
    // The system widens a narrow path before it splits it. In some code pages a character's second byte looks
    // like a separator, so only the wide text shows the parts.
    WCHAR wide[512];
    if (strlen(name) >= std::size(wide)) return false;
    const WideView text{wide, WidenText(wide, std::size(wide), name)};
    return !text.empty() && text != L".." && !IsDeviceName(text) && text.find_first_of(L"\\/:") == text.npos;
}

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

int32_t ReadProfile(const char* path, char* name, size_t nameSize, bool at600Dpi, uint32_t* cache,
                    signed char* resolutionCode) {
    *resolutionCode = kDefaultResolutionCode;
    BlockReader file(LeavesProfilesFolder(path) ? "" : path);
    ProfileHeader header;
    const TagTargets targets = {name, nameSize, resolutionCode, at600Dpi};
    if (!ReadProfileHead(file, path, LogLevel::kError, targets, &header)) return 0;
    const ProfileProblem problem = ReadProfileColors(file, header, at600Dpi, cache);
    LogProfileProblem(problem, path, LogLevel::kError);
    return problem ? 0 : header.version;
}

int32_t zvc_load_profile(const char* path, int32_t resolution, signed char* resolutionCode, char* name,
                         size_t nameSize) {
    LogTrace("<%s>", "zvc_load_profile");
    g_profileLoaded = 0;
    const bool at600Dpi = resolution == kResolution600;
    if (path != nullptr) {
        LogInfo("load_profile [%s]", path);
        SetCacheKind(ReadProfile(path, name, nameSize, at600Dpi, g_colorCache, resolutionCode));
        const std::string_view nameRead(name, TextLength(name, nameSize));
        LogInfo("read_profile %d %d %s", g_cacheKind, *resolutionCode, nameRead);
        if (g_cacheKind > 0) {
            g_profileLoaded = 1;
            // Deliberate: this way out is not traced.
            return g_cacheKind;
        }
        LogError("error reading profile %s!", nameRead);
    } else if (name != nullptr) {
        CopyText(name, nameSize, "Default");
    }
    LogInfo("generic profile");
    FillWithGenericConversion(g_colorCache, at600Dpi ? kHalfInk : kFullInk);
    g_profileLoaded = 1;
    SetCacheKind(kEntries);
    LogTrace("</%s>", "zvc_load_profile");
    return g_cacheKind;
}

}  // namespace orvex
