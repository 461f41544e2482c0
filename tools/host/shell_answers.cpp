#include "tools/host/shell_answers.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "platform/shell.h"
#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

// The two names that the driver appends to the common application data folder.
constexpr std::u16string_view kInstallationNames[] = {u"Quorvane", u"Orvex Series"};

// Characters that have to fit after the folder: "\profiles\" and a profile's name.
constexpr size_t kRoomAfterFolder = 64;

}  // namespace

struct ShellAnswers::Replacements {
    static BOOL WINAPI SpecialFolder(HWND window, LPWSTR path, int folder, BOOL create) {
        if (folder != CSIDL_COMMON_APPDATA) {
            const auto original = current->patches_.Original("SHGetSpecialFolderPathW", &SpecialFolder);
            return original(window, path, folder, create);
        }
        if (current->folderError_ != 0) {
            SetLastError(current->folderError_);
            return FALSE;
        }
        memcpy(path, current->folder_.c_str(), (current->folder_.size() + 1) * sizeof(WCHAR));
        return TRUE;
    }

    // Leaves out the two names that are appended to the bare folder, which already is the installation
    // folder.
    static BOOL WINAPI Append(LPWSTR path, LPCWSTR more) {
        if (AsView(path) == current->folder_) {
            for (const std::u16string_view name : kInstallationNames) {
                if (AsView(more) == name) return TRUE;
            }
        }
        return current->patches_.Original("PathAppendW", &Append)(path, more);
    }

    static int WINAPI LocaleInfo(LCID locale, LCTYPE type, LPWSTR buffer, int capacity) {
        if (type != LOCALE_SABBREVLANGNAME || !current->language_) {
            return current->patches_.Original("GetLocaleInfoW", &LocaleInfo)(locale, type, buffer, capacity);
        }
        const int needed = static_cast<int>(current->language_->size()) + 1;
        if (capacity == 0) return needed;
        if (capacity < needed) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
        memcpy(buffer, current->language_->c_str(), static_cast<size_t>(needed) * sizeof(WCHAR));
        return needed;
    }

    static HANDLE WINAPI Open(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes,
                              DWORD disposition, DWORD flags, HANDLE pattern) {
        if (path == current->lentName_) {
            const std::u16string lent = WindowsPath(current->lentFile_);
            return CreateFileW(AsWchar(lent), access, share, attributes, disposition, flags, pattern);
        }
        const auto original = current->lending_.Original("CreateFileA", &Open);
        return original(path, access, share, attributes, disposition, flags, pattern);
    }
};

ShellAnswers::ShellAnswers(const fs::path& installation) {
    fs::path folder = fs::absolute(installation).lexically_normal();
    if (!folder.has_filename()) folder = folder.parent_path();
    folder_ = WindowsPath(folder);
    if (folder_.size() + kRoomAfterFolder > MAX_PATH) {
        throw std::runtime_error("the path of the installation folder is too long for the driver: " +
                                 Utf8FromPath(installation));
    }
}

void ShellAnswers::Attach(HMODULE module) {
    modules_.push_back(module);
    patches_.Attach(module, {{"SHGetSpecialFolderPathW", &Replacements::SpecialFolder},
                             {"PathAppendW", &Replacements::Append},
                             {"GetLocaleInfoW", &Replacements::LocaleInfo}});
}

void ShellAnswers::LendFile(const std::string& name, const fs::path& path) {
    if (lentFile_.empty()) {
        for (HMODULE module : modules_) lending_.Attach(module, {{"CreateFileA", &Replacements::Open}});
    }
    lentName_ = name;
    lentFile_ = path;
}

void ShellAnswers::SetLanguage(std::optional<std::string> abbreviation) {
    language_.reset();
    if (abbreviation) language_ = Wide(*abbreviation);
}

}  // namespace orvex::tools
