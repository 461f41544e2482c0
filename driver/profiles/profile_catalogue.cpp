#include "driver/profiles/profile_catalogue.h"

#include "driver/profiles/profile_file.h"
#include "driver/profiles/profile_names.h"
#include "driver/support/installation.h"
#include "driver/support/log.h"
#include "driver/support/text.h"
#include "platform/shell.h"

namespace orvex {

namespace {

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

// Returns the characters that a list of all matching files needs, without its end.
size_t MeasureNames(const WCHAR* pattern) {
    size_t characters = 0;
    for (FileSearch search(pattern); search.Found(); search.Next()) characters += search.Name().size() + 1;
    return characters;
}

// Copies the names of the matching files into a zeroed list with room for that many characters. The folder
// may have changed since it was measured: a name that no longer fits is left out.
bool CollectNames(const WCHAR* pattern, WCHAR* list, size_t room) {
    FileSearch search(pattern);
    if (!search.Opened()) return false;
    for (; search.Found(); search.Next()) {
        const WideView name = search.Name();
        if (name.size() + 1 > room) continue;
        CopyText(list, room, name);
        LogTrace("findfile: %S", name);
        list += name.size() + 1;
        room -= name.size() + 1;
    }
    return true;
}

ScanResult Scan(const WCHAR* folder, HeapArray<WCHAR>* fileNames) {
    WCHAR pattern[MAX_PATH];
    if (TextLength(folder) >= MAX_PATH) return kNoSearchPath;
    CopyText(pattern, folder);
    if (!PathAppendW(pattern, L"" ORVEX_PROFILES_FOLDER "*.zvp")) return kNoSearchPath;
    const size_t characters = MeasureNames(pattern);
    if (characters == 0) return kScanned;
    *fileNames = AllocateZeroedArray<WCHAR>(characters + 1);
    if (!*fileNames) return kSearchFailed;
    return CollectNames(pattern, fileNames->get(), characters) ? kScanned : kSearchFailed;
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

}  // namespace orvex
