// Stand-ins over POSIX for the Win32 functions that the driver imports, so that it runs natively under
// sanitizers.
//
// Every function goes through a slot that a host or a test can point elsewhere, as an import table's entry
// can be on Windows. A new function is one DOUBLE(...) with its POSIX body.
#pragma once

#include <string>
#include <vector>

#include "platform/windows.h"

namespace doubles {

// The slot of the function of that name; null when there is none.
void** FindSlot(const char* name);
// The names of all functions that have one.
std::vector<std::string> SlotNames();

// The folder that stands for drive C. "c:\temp\x" is its file "temp/x"; a path without a drive is taken as it
// is, with backslashes as separators. It is made on first use, below the system's temporary folder, and
// removed at exit, unless the environment names one in ORVEX_DRIVE_C.
const std::string& DriveC();

// The POSIX path of a Windows path, and the other way round.
std::string PosixPath(const char* path);
std::string PosixPath(const WCHAR* path);
std::u16string WindowsPath(const std::string& posixPath);

// Wide text as UTF-8 and back.
std::string Utf8(const WCHAR* text);
std::string Utf8(const WCHAR* text, size_t length);
std::u16string Utf16(const std::string& text);

// A kernel object behind a handle. Handles count open ones, so that a test can see a leak.
class KernelObject {
  public:
    virtual ~KernelObject() = default;
};
HANDLE OpenHandle(KernelObject* object);    // takes the object over
KernelObject* FindObject(HANDLE handle);    // null for a closed or foreign handle
KernelObject* ForgetHandle(HANDLE handle);  // the caller owns what comes back
size_t OpenHandleCount();

// Sets the last error from errno and returns FALSE.
BOOL FailWithErrno();

struct Slot {
    Slot(const char* name, void* target);
    const char* name;
    void* target;
    Slot* next;
};

}  // namespace doubles

#define DOUBLE(result, function, parameters, arguments)                                         \
    static result WINAPI function##Double parameters;                                           \
    static doubles::Slot function##Slot{#function, reinterpret_cast<void*>(&function##Double)}; \
    extern "C" result WINAPI function parameters {                                              \
        return reinterpret_cast<result(WINAPI*) parameters>(function##Slot.target) arguments;   \
    }                                                                                           \
    static result WINAPI function##Double parameters
