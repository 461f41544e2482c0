#include <cstring>

#include "platform/posix/slots.h"
#include "platform/shell.h"

namespace orvex::posix {

namespace {

size_t Length(const WCHAR* text) {
    size_t length = 0;
    while (text[length] != 0) ++length;
    return length;
}

}  // namespace

WIN32_FUNCTION(BOOL, SHGetSpecialFolderPathW, (HWND window, LPWSTR path, INT folder, BOOL create),
               (window, path, folder, create)) {
    (void)window, (void)create;
    if (folder != CSIDL_COMMON_APPDATA) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    static constexpr WCHAR kFolder[] = L"c:\\ProgramData";
    memcpy(path, kFolder, sizeof kFolder);
    return TRUE;
}

WIN32_FUNCTION(BOOL, PathAppendW, (LPWSTR path, LPCWSTR more), (path, more)) {
    size_t length = Length(path);
    while (*more == L'\\') ++more;
    const size_t added = Length(more);
    if (length + 1 + added >= MAX_PATH) return FALSE;
    if (length > 0 && path[length - 1] != L'\\') path[length++] = L'\\';
    memcpy(path + length, more, (added + 1) * sizeof(WCHAR));
    return TRUE;
}

WIN32_FUNCTION(INT, GetLocaleInfoW, (LCID locale, LCTYPE type, LPWSTR buffer, INT capacity),
               (locale, type, buffer, capacity)) {
    (void)locale;
    static constexpr WCHAR kLanguage[] = L"ENU";
    if (type != LOCALE_SABBREVLANGNAME || capacity < 4) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    memcpy(buffer, kLanguage, sizeof kLanguage);
    return 4;
}

}  // namespace orvex::posix
