// Owner of a kernel handle.
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

    // Reads up to `size` bytes of the file, in one call. Returns how many came: none at the end or on
    // failure.
    DWORD Read(void* buffer, DWORD size) const {
        DWORD came = 0;
        return ReadFile(handle_, buffer, size, &came, nullptr) ? came : 0;
    }

  private:
    HANDLE handle_;
};

}  // namespace orvex
