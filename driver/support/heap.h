// Owners for what the driver allocates: memory from malloc and kernel handles. A null owner means that the
// allocation failed; nothing here throws.
#pragma once

#include <cstdlib>
#include <memory>

#include "platform/windows.h"

namespace orvex {

struct FreeDeleter {
    void operator()(void* memory) const { free(memory); }
};

// A malloc'ed array of T, or a malloc'ed text for T = char or WCHAR.
template <typename T>
using HeapArray = std::unique_ptr<T[], FreeDeleter>;

// `count` uninitialised elements, or null.
template <typename T>
HeapArray<T> AllocateArray(size_t count) {
    return HeapArray<T>(static_cast<T*>(malloc(count * sizeof(T))));
}

// `count` elements of zero bytes, or null.
template <typename T>
HeapArray<T> AllocateZeroedArray(size_t count) {
    return HeapArray<T>(static_cast<T*>(calloc(count, sizeof(T))));
}

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

  private:
    HANDLE handle_;
};

}  // namespace orvex
