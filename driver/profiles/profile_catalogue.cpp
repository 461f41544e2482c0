#include "driver/profiles/profile_catalogue.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include "driver/profiles/profile_file.h"
#include "driver/support/handle.h"
#include "driver/support/installation.h"
#include "driver/support/log.h"
#include "driver/support/settings_file.h"
#include "platform/shell.h"

namespace orvex {

namespace {

// A language and its abbreviation. A text names the language when it begins with the first letters of that.
struct Language {
    LanguageCode code;
    const WCHAR* section;
    const char* letters;
    size_t inSettings;  // letters compared; deliberately few for some: any other "E..." is Spanish
    size_t inSystem;
};

// The languages in the order in which they are compared.
// clang-format off
constexpr Language kLanguages[] = {
    {kEnglish,         L"[ENG]", "ENG", 3, 3},
    {kAmericanEnglish, L"[ENU]", "ENU", 3, 3},
    {kGerman,          L"[DEU]", "DEU", 3, 3},
    {kFrench,          L"[FRA]", "FRA", 2, 3},
    {kSpanish,         L"[ES]",  "ES",  1, 2},
    {kChinese,         L"[CH]",  "CH",  2, 2},
    {kJapanese,        L"[JPN]", "JPN", 3, 3},
};
// clang-format on

// Returns the language with whose first letters `text` begins; null when there is none.
template <typename Character>
const Language* FindLanguage(const Character* text, size_t Language::*letters) {
    for (const Language& language : kLanguages) {
        if (std::equal(language.letters, language.letters + language.*letters, text)) return &language;
    }
    return nullptr;
}

// Walks a file of UTF-16 text line by line, starting after its byte-order mark.
class WideLineReader {
  public:
    explicit WideLineReader(const OwnedHandle& file) : file_(file) {
        position_.QuadPart = kByteOrderMarkBytes;
    }

    // Reads the next line, up to its line end (CR, LF or CR LF) or to a zero character. A line longer than
    // the buffer comes in pieces. Returns false at the end or on a failure. The text lasts until the next
    // call.
    bool Next(WideView* line) {
        if (!SetFilePointerEx(file_.Get(), position_, nullptr, FILE_BEGIN)) return false;
        const WideView piece(buffer_, file_.Read(buffer_, sizeof buffer_) / sizeof(WCHAR));
        if (piece.empty()) return false;
        const size_t end = std::min(piece.find_first_of(L"\r\n"), piece.size());
        const size_t lineEnd = After(piece, end).starts_with(L"\r\n") ? 2 : 1;
        position_.QuadPart += static_cast<LONGLONG>(std::min(end + lineEnd, piece.size()) * sizeof(WCHAR));
        *line = {buffer_, TextLength(buffer_, end)};
        return true;
    }

  private:
    static constexpr LONGLONG kByteOrderMarkBytes = 2;
    static constexpr size_t kPieceCharacters = 253;

    const OwnedHandle& file_;
    LARGE_INTEGER position_;
    WCHAR buffer_[kPieceCharacters];
};

constexpr size_t kPathCapacity = 512;         // of the folder and of the file's name, in narrow characters
constexpr size_t kDisplayNameCapacity = 512;  // in characters

// Gets the name that the profile itself has, or else the file's name.
void ReadOwnName(const WCHAR* fileName, const WCHAR* folder, WCHAR* name, size_t capacity) {
    char narrowFolder[kPathCapacity], narrowFile[kPathCapacity];
    char path[2 * kPathCapacity + sizeof ORVEX_PROFILES_FOLDER];
    NarrowText(narrowFolder, sizeof narrowFolder, folder);
    NarrowText(narrowFile, sizeof narrowFile, fileName);
    snprintf(path, sizeof path, "%s\\" ORVEX_PROFILES_FOLDER "%s", narrowFolder, narrowFile);
    LogError("GetQRVProfileName [%S] [%s]", fileName, path);

    char own[kListedNameCapacity] = "";
    BlockReader file(path);
    ProfileHeader header;
    ReadProfileHead(file, path, LogLevel::kInfo, {own, sizeof own, nullptr, false}, &header);
    if (own[0] == '\0') NarrowText(own, sizeof own, fileName);  // an empty name would end the list
    WidenText(name, capacity, own);
}

// Calls `use` with the name of each file that matches a pattern. Returns false when there is none.
template <typename Use>
bool ForEachFile(const WCHAR* pattern, Use use) {
    WIN32_FIND_DATAW data = {};
    const HANDLE search = FindFirstFileW(pattern, &data);
    if (search == INVALID_HANDLE_VALUE) return false;
    do {
        use(FieldText(data.cFileName));
    } while (FindNextFileW(search, &data));
    FindClose(search);
    return true;
}

// Copies the names of the matching files into a zeroed list with room for that many characters. The folder
// may have changed since it was measured: a name that no longer fits is left out.
bool CollectNames(const WCHAR* pattern, WCHAR* list, size_t room) {
    return ForEachFile(pattern, [&](WideView name) {
        if (name.size() + 1 > room) return;
        CopyText(list, room, name);
        LogTrace("findfile: %S", name);
        list += name.size() + 1;
        room -= name.size() + 1;
    });
}

ScanResult Scan(const WCHAR* folder, HeapArray<WCHAR>* fileNames) {
    WCHAR pattern[MAX_PATH];
    CopyText(pattern, folder);
    if (!PathAppendW(pattern, L"" ORVEX_PROFILES_FOLDER "*.zvp")) return kNoSearchPath;
    size_t characters = 0;
    ForEachFile(pattern, [&](WideView name) { characters += name.size() + 1; });
    if (characters == 0) return kScanned;
    *fileNames = AllocateZeroedArray<WCHAR>(characters + 1);
    if (!*fileNames) return kSearchFailed;
    return CollectNames(pattern, fileNames->get(), characters) ? kScanned : kSearchFailed;
}

}  // namespace

LanguageCode QRV_Get_Locale(int* fromSettings) {
    const TraceScope trace("QRV_Get_Locale");
    char value[20] = {};
    if (LookupString("[UI]", "Language=", value, sizeof value) > 0) {
        LogInfo("settings lang:%s", value);
        if (const Language* language = FindLanguage(value, &Language::inSettings)) {
            *fromSettings = 1;
            return language->code;
        }
    }
    WCHAR abbreviation[10] = {};
    GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, abbreviation, std::size(abbreviation));
    LogInfo("GetLocaleInfo lang:%S", FieldText(abbreviation));
    const Language* language = FindLanguage(abbreviation, &Language::inSystem);
    return language != nullptr ? language->code : kAmericanEnglish;
}

const WCHAR* LanguageSection(LanguageCode code) {
    for (const Language& language : kLanguages) {
        if (language.code == code) return language.section;
    }
    return LanguageSection(kAmericanEnglish);
}

size_t QRV_GetProfileFieldW(const WCHAR* section, const WCHAR* fileName, WCHAR* name, size_t capacity) {
    if (capacity == 0) return 0;
    name[0] = 0;
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    const OwnedHandle file(OpenInstallationFile(folder.get(), L"profilenames.inf"));
    if (!file) return 0;
    WideLineReader lines(file);
    const auto valueOf = [key = WideView(fileName)](WideView line) {
        const bool found = line.starts_with(key) && After(line, key.size()).starts_with(L'=');
        return found ? After(line, key.size() + 1) : WideView();
    };
    return FindInSection(lines, WideView(section), valueOf, name, capacity);
}

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

int ListProfiles(void* context, HeapArray<WCHAR>* fileNames, HeapArray<WCHAR>* displayNames) {
    (void)context;
    fileNames->reset();
    displayNames->reset();
    const HeapArray<WCHAR> folder = FindInstallationFolder();
    if (!folder) return 0;
    const ScanResult result = QRV_ScanDirectoryWithPattern(folder.get(), L"*.zvp", fileNames);
    int fromSettings = {};
    const WCHAR* section = LanguageSection(QRV_Get_Locale(&fromSettings));
    size_t bytes = {};
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
