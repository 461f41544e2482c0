// Owners of what a scope takes from the system and gives back: a kernel handle, the thread's last error.
#pragma once

#include "platform/windows.h"

namespace orvex {

// Closes a file or other kernel handle when it goes out of scope.
class OwnedHandle {
  public:
    explicit OwnedHandle(HANDLE handle) : handle_(handle) {}
    ~OwnedHandle() {
        if (*this) CloseHandle(handle_);
    }
    OwnedHandle(const OwnedHandle&) = delete;
    OwnedHandle& operator=(const OwnedHandle&) = delete;

    explicit operator bool() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle_; }

    // Reads up to `size` bytes, in one call. Returns how many came: none at the file's end or on failure.
    DWORD Read(void* buffer, DWORD size) const {
        DWORD came = {};
        return ReadFile(handle_, buffer, size, &came, nullptr) ? came : 0;
    }

  private:
    HANDLE handle_;
};

// Restores the last error at the end of its scope, after calls that must not change it.
class PreservedLastError {
  public:
    PreservedLastError() : code_(GetLastError()) {}
    ~PreservedLastError() { SetLastError(code_); }
    PreservedLastError(const PreservedLastError&) = delete;
    PreservedLastError& operator=(const PreservedLastError&) = delete;

  private:
    DWORD code_;
};

}  // namespace orvex
