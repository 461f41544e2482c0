#include "driver/profiles/profile_catalogue.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "driver/profiles/profile_header.h"
#include "driver/profiles/profile_language.h"
#include "driver/profiles/profile_names.h"
#include "driver/support/installation.h"
#include "driver/support/log.h"
#include "driver/support/text.h"
#include "platform/shell.h"

namespace orvex {

namespace {

constexpr WCHAR kSearched[] = L"profiles\\*.zvp";
constexpr size_t kPathCapacity = 512;         // of the folder and of the file's name, in narrow characters
constexpr size_t kHeaderNameCapacity = 100;   // of the name in a profile
constexpr size_t kDisplayNameCapacity = 512;  // of a localised name

// Walks over the files that match a pattern.
class FileSearch {
  public:
    explicit FileSearch(const WCHAR* pattern) : handle_(FindFirstFileW(pattern, &data_)), found_(Opened()) {}
    ~FileSearch() {
        if (Opened()) FindClose(handle_);
    }
    FileSearch(const FileSearch&) = delete;
    FileSearch& operator=(const FileSearch&) = delete;

    bool Opened() const { return handle_ != INVALID_HANDLE_VALUE; }
    bool Found() const { return found_; }
    WideView Name() const { return FieldText(data_.cFileName); }
    void Next() { found_ = FindNextFileW(handle_, &data_) != FALSE; }

  private:
    WIN32_FIND_DATAW data_ = {};
    HANDLE handle_;
    bool found_;
};

// The characters that a list of all matching files needs, without its end.
size_t MeasureNames(const WCHAR* pattern) {
    size_t characters = 0;
    for (FileSearch search(pattern); search.Found(); search.Next()) characters += search.Name().size + 1;
    return characters;
}

// Copies the names of the matching files into a zeroed list with room for that many characters. The folder
// may have changed since it was measured: a name that no longer fits is left out.
bool CollectNames(const WCHAR* pattern, WCHAR* list, size_t room) {
    FileSearch search(pattern);
    if (!search.Opened()) return false;
    for (; search.Found(); search.Next()) {
        const WideView name = search.Name();
        if (name.size + 1 > room) continue;
        CopyText(list, room, name);
        LogTrace("findfile: %S", name);
        list += name.size + 1;
        room -= name.size + 1;
    }
    return true;
}

ScanResult Scan(const WCHAR* folder, HeapArray<WCHAR>* fileNames) {
    WCHAR pattern[MAX_PATH];
    const size_t length = TextLength(folder);
    if (length >= MAX_PATH) return kNoSearchPath;
    CopyText(pattern, {folder, length});
    if (!PathAppendW(pattern, kSearched)) return kNoSearchPath;
    const size_t characters = MeasureNames(pattern);
    if (characters == 0) return kScanned;
    *fileNames = AllocateZeroedArray<WCHAR>(characters + 1);
    if (!*fileNames) return kSearchFailed;
    return CollectNames(pattern, fileNames->get(), characters) ? kScanned : kSearchFailed;
}

// Puts the name that a profile gives itself into `name`; leaves it when there is none.
void ReadHeaderName(const char* path, char (&name)[kHeaderNameCapacity]) {
    char found[kHeaderNameCapacity] = "";
    BlockReader file(path);
    ProfileHeader header;
    if (!ReadProfileHeader(file, path, LogLevel::kInfo, &header)) return;
    ReadProfileTags(file, {found, sizeof found, nullptr, false});
    // An empty name would end the list.
    if (found[0] != '\0') CopyText(name, found);
}

// The name under which users see a profile, when profilenames.inf has none for it.
void ReadOwnName(const WCHAR* fileName, const WCHAR* folder, WCHAR* name, size_t capacity) {
    char narrowFolder[kPathCapacity], narrowFile[kPathCapacity];
    char path[2 * kPathCapacity + sizeof "\\profiles\\"];
    NarrowText(narrowFolder, sizeof narrowFolder, {folder, TextLength(folder)});
    NarrowText(narrowFile, sizeof narrowFile, {fileName, TextLength(fileName)});
    snprintf(path, sizeof path, "%s\\%s%s", narrowFolder, "profiles\\", narrowFile);
    LogError("GetQRVProfileName [%S] [%s]", fileName, path);

    char own[kHeaderNameCapacity];
    NarrowText(own, sizeof own, {fileName, TextLength(fileName)});
    ReadHeaderName(path, own);
    WidenText(name, capacity, own);
}

}  // namespace

int ListProfiles(void* context, HeapArray<WCHAR>* fileNames, HeapArray<WCHAR>* displayNames) {
    (void)context;
    fileNames->reset();
    displayNames->reset();
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    if (!folder) {
        LogError("Error: could get app path");
        return 0;
    }
    const ScanResult result = QRV_ScanDirectoryWithPattern(folder.get(), L"*.zvp", fileNames);
    int fromSettings = 0;
    const WCHAR* section = LanguageSection(QRV_Get_Locale(&fromSettings));
    size_t bytes = 0;
    if (const WCHAR* name = fileNames->get()) {
        for (; *name != 0; name += TextLength(name) + 1) {
            GetQRVProfileName(name, displayNames, &bytes, folder.get(), section);
        }
    }
    return result == kScanned ? 1 : 0;
}

ScanResult QRV_ScanDirectoryWithPattern(const WCHAR* folder, const WCHAR* pattern,
                                        HeapArray<WCHAR>* fileNames) {
    (void)pattern;
    const TraceScope trace("QRV_ScanDirectoryWithPattern");
    const ScanResult result = Scan(folder, fileNames);
    trace.Code(result);
    return result;
}

int GetQRVProfileName(const WCHAR* fileName, HeapArray<WCHAR>* names, size_t* bytes, const WCHAR* folder,
                      const WCHAR* section) {
    WCHAR name[kDisplayNameCapacity], localised[kDisplayNameCapacity];
    ReadOwnName(fileName, folder, name, kDisplayNameCapacity);
    if (QRV_GetProfileFieldW(section, fileName, localised, kDisplayNameCapacity) > 0) {
        LogError("QRV_GetProfileFieldW [%S] [%S]", fileName, localised);
        CopyText(name, FieldText(localised));
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
