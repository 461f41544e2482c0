// Replacements for functions of the system that fail.
#pragma once

#include <cstring>

#include "platform/windows.h"

namespace orvex {

inline BOOL WINAPI FailToSeek(HANDLE, LARGE_INTEGER, PLARGE_INTEGER, DWORD) {
    return FALSE;
}

// Leaves bytes that must not be used.
inline BOOL WINAPI FailToRead(HANDLE, LPVOID buffer, DWORD, LPDWORD came, LPOVERLAPPED) {
    *came = 5;
    memset(buffer, 'x', *came);
    return FALSE;
}

// Replaces SHGetSpecialFolderPathW.
inline BOOL WINAPI FindNoFolder(HWND, LPWSTR, int, BOOL) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

}  // namespace orvex
