#include "tests/kit/allocation_failure.h"

#include <cstdint>
#include <new>

namespace orvex {

namespace {

constexpr size_t kNone = SIZE_MAX;

size_t failingBytes = kNone;
int failures = 0;

bool Fails(size_t bytes) {
    if (bytes != failingBytes) return false;
    ++failures;
    return true;
}

}  // namespace

// The linker's --wrap sends every call of malloc and calloc here.
extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t size);
void* __wrap_malloc(size_t bytes) {
    return Fails(bytes) ? nullptr : __real_malloc(bytes);
}
void* __wrap_calloc(size_t count, size_t size) {
    return Fails(count * size) ? nullptr : __real_calloc(count, size);
}
}

AllocationFailure::AllocationFailure(size_t bytes) {
    failingBytes = bytes;
    failures = 0;
}

AllocationFailure::~AllocationFailure() {
    failingBytes = kNone;
}

int AllocationFailure::Count() const {
    return failures;
}

}  // namespace orvex

#ifdef _WIN32
// The allocations of std::string and its like never fail. Natively they don't come through malloc's symbol at
// all.
void* operator new(size_t bytes) {
    void* memory = orvex::__real_malloc(bytes == 0 ? 1 : bytes);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
#endif
