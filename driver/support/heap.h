// Owners of memory from malloc. A null owner means that the allocation failed; nothing here throws.
#pragma once

#include <cstdlib>
#include <memory>

namespace orvex {

struct FreeDeleter {
    void operator()(void* memory) const { free(memory); }
};

// A malloc'ed array of T, or a malloc'ed text for T = char or WCHAR.
template <typename T>
using HeapArray = std::unique_ptr<T[], FreeDeleter>;

// Allocate `count` elements, uninitialized or of zero bytes. Return null when out of memory.
template <typename T>
HeapArray<T> AllocateArray(size_t count) {
    return HeapArray<T>(static_cast<T*>(malloc(count * sizeof(T))));
}
template <typename T>
HeapArray<T> AllocateZeroedArray(size_t count) {
    return HeapArray<T>(static_cast<T*>(calloc(count, sizeof(T))));
}

}  // namespace orvex
