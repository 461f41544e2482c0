#include <dlfcn.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "platform/posix/handles.h"
#include "platform/posix/paths.h"
#include "platform/posix/slots.h"
#include "platform/posix/unicode.h"

namespace orvex::posix {

namespace {

thread_local DWORD lastError = ERROR_SUCCESS;

// Copies text with its terminator if it fits. Returns the length without the terminator, or the size needed.
template <typename Character, typename Text>
DWORD CopyOut(Character* buffer, DWORD capacity, const Text& text) {
    if (text.size() >= capacity) return static_cast<DWORD>(text.size() + 1);
    memcpy(buffer, text.data(), text.size() * sizeof(Character));
    buffer[text.size()] = 0;
    return static_cast<DWORD>(text.size());
}

}  // namespace

WIN32_FUNCTION(DWORD, GetLastError, (), ()) {
    return lastError;
}
WIN32_FUNCTION(void, SetLastError, (DWORD code), (code)) {
    lastError = code;
}

WIN32_FUNCTION(HLOCAL, LocalAlloc, (UINT flags, SIZE_T size), (flags, size)) {
    return (flags & LMEM_ZEROINIT) ? calloc(1, size) : malloc(size);
}

WIN32_FUNCTION(HLOCAL, LocalFree, (HLOCAL memory), (memory)) {
    free(memory);
    return nullptr;
}

WIN32_FUNCTION(HMODULE, LoadLibraryW, (LPCWSTR path), (path)) {
    std::string file = PosixPath(path);
    // Windows searches the current directory, dlopen does not.
    if (file.find('/') == std::string::npos) file = "./" + file;
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) SetLastError(ERROR_MOD_NOT_FOUND);
    return static_cast<HMODULE>(library);
}

WIN32_FUNCTION(FARPROC, GetProcAddress, (HMODULE library, LPCSTR name), (library, name)) {
    void* symbol = dlsym(library, name);
    if (symbol == nullptr) SetLastError(ERROR_PROC_NOT_FOUND);
    return reinterpret_cast<FARPROC>(symbol);
}

WIN32_FUNCTION(BOOL, FreeLibrary, (HMODULE library), (library)) {
    return dlclose(library) == 0;
}

WIN32_FUNCTION(DWORD, GetCurrentDirectoryW, (DWORD capacity, LPWSTR buffer), (capacity, buffer)) {
    char path[4096];
    if (getcwd(path, sizeof path) == nullptr) {
        FailWithErrno();
        return 0;
    }
    return CopyOut(buffer, capacity, WindowsPath(path));
}

WIN32_FUNCTION(BOOL, SetCurrentDirectoryW, (LPCWSTR path), (path)) {
    return chdir(PosixPath(path).c_str()) == 0 ? TRUE : FailWithErrno();
}

WIN32_FUNCTION(DWORD, GetModuleFileNameA, (HMODULE module, LPSTR buffer, DWORD capacity),
               (module, buffer, capacity)) {
    (void)module;
    static constexpr std::string_view kModule = R"(c:\windows\system32\orvexgdi.dll)";
    const DWORD length = CopyOut(buffer, capacity, kModule);
    if (length <= capacity && length != kModule.size()) SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return length;
}

WIN32_FUNCTION(DWORD, GetTickCount, (), ()) {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

WIN32_FUNCTION(void, GetSystemTime, (LPSYSTEMTIME time), (time)) {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    tm utc;
    gmtime_r(&now.tv_sec, &utc);
    time->wYear = static_cast<WORD>(utc.tm_year + 1900);
    time->wMonth = static_cast<WORD>(utc.tm_mon + 1);
    time->wDayOfWeek = static_cast<WORD>(utc.tm_wday);
    time->wDay = static_cast<WORD>(utc.tm_mday);
    time->wHour = static_cast<WORD>(utc.tm_hour);
    time->wMinute = static_cast<WORD>(utc.tm_min);
    time->wSecond = static_cast<WORD>(utc.tm_sec);
    time->wMilliseconds = static_cast<WORD>(now.tv_nsec / 1000000);
}

WIN32_FUNCTION(DWORD, GetCurrentThreadId, (), ()) {
    return static_cast<DWORD>(syscall(SYS_gettid));
}

// The narrow code page of the native build is UTF-8.
WIN32_FUNCTION(INT, WideCharToMultiByte,
               (UINT page, DWORD flags, LPCWSTR wide, INT length, LPSTR narrow, INT capacity, LPCSTR fallback,
                LPBOOL used),
               (page, flags, wide, length, narrow, capacity, fallback, used)) {
    (void)page, (void)fallback, (void)used;
    if (flags != 0) {  // UTF-8 allows none
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    const std::string text = length < 0 ? Utf8(wide) + '\0' : Utf8(wide, static_cast<size_t>(length));
    if (capacity == 0) return static_cast<INT>(text.size());
    if (text.size() > static_cast<size_t>(capacity)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    memcpy(narrow, text.data(), text.size());
    return static_cast<INT>(text.size());
}

WIN32_FUNCTION(INT, MultiByteToWideChar,
               (UINT page, DWORD flags, LPCSTR narrow, INT length, LPWSTR wide, INT capacity),
               (page, flags, narrow, length, wide, capacity)) {
    (void)page;
    if (flags != 0) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    const std::u16string text = Utf16(length < 0 ? std::string(narrow, strlen(narrow) + 1)
                                                 : std::string(narrow, static_cast<size_t>(length)));
    if (capacity == 0) return static_cast<INT>(text.size());
    if (text.size() > static_cast<size_t>(capacity)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    memcpy(wide, text.data(), text.size() * sizeof(WCHAR));
    return static_cast<INT>(text.size());
}

}  // namespace orvex::posix
