#include "driver/profiles/display_name.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "driver/profiles/profile_file.h"
#include "driver/profiles/profile_names.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

constexpr size_t kPathCapacity = 512;         // of the folder and of the file's name, in narrow characters
constexpr size_t kDisplayNameCapacity = 512;  // in characters

// Replaces `name` by the name that the profile itself has, if it has one.
void ReadHeaderName(const char* path, char (&name)[kListedNameCapacity]) {
    char found[kListedNameCapacity] = "";
    BlockReader file(path);
    ProfileHeader header;
    ReadProfileHead(file, path, LogLevel::kInfo, {found, sizeof found, nullptr, false}, &header);
    // An empty name would end the list.
    if (found[0] != '\0') CopyText(name, found);
}

// Finds the name under which users see a profile that profilenames.inf does not name.
void ReadOwnName(const WCHAR* fileName, const WCHAR* folder, WCHAR* name, size_t capacity) {
    char narrowFolder[kPathCapacity], narrowFile[kPathCapacity];
    char path[2 * kPathCapacity + sizeof ORVEX_PROFILES_FOLDER];
    NarrowText(narrowFolder, sizeof narrowFolder, {folder, TextLength(folder)});
    NarrowText(narrowFile, sizeof narrowFile, {fileName, TextLength(fileName)});
    snprintf(path, sizeof path, "%s\\" ORVEX_PROFILES_FOLDER "%s", narrowFolder, narrowFile);
    LogError("GetQRVProfileName [%S] [%s]", fileName, path);

    char own[kListedNameCapacity];
    NarrowText(own, sizeof own, {fileName, TextLength(fileName)});
    ReadHeaderName(path, own);
    WidenText(name, capacity, own);
}

}  // namespace

int GetQRVProfileName(const WCHAR* fileName, HeapArray<WCHAR>* names, size_t* bytes, const WCHAR* folder,
                      const WCHAR* section) {
    WCHAR name[kDisplayNameCapacity], localized[kDisplayNameCapacity];
    ReadOwnName(fileName, folder, name, kDisplayNameCapacity);
    if (QRV_GetProfileFieldW(section, fileName, localized, kDisplayNameCapacity) > 0) {
        LogError("QRV_GetProfileFieldW [%S] [%S]", fileName, localized);
        CopyText(name, FieldText(localized));
    }

    const size_t used = *bytes / sizeof(WCHAR);
    const size_t added = TextLength(name) + 1;
    HeapArray<WCHAR> grown = AllocateZeroedArray<WCHAR>(used + added + 1);
    if (!grown) return 0;
    if (used > 0) memcpy(grown.get(), names->get(), *bytes);
    memcpy(grown.get() + used, name, added * sizeof(WCHAR));
    *names = std::move(grown);
    *bytes += added * sizeof(WCHAR);
    return 1;
}

}  // namespace orvex
