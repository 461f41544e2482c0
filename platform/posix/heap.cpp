// Slots for the C library's heap: the linker's --wrap sends every call from code of this program here. Calls
// before the slots exist, or after they are gone, go to the C library itself.

#include <cstddef>

#include "platform/posix/slots.h"

extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* memory, size_t bytes);
void __real_free(void* memory);
}

namespace orvex::posix {

namespace {

template <typename Function>
struct HeapSlot : Slot {
    HeapSlot(const char* function, Function* original) : Slot(function, reinterpret_cast<void*>(original)) {}

    Function* Target(Function* original) const {
        return target == nullptr ? original : reinterpret_cast<Function*>(target);
    }
};

HeapSlot<void*(size_t)> mallocSlot("malloc", &__real_malloc);
HeapSlot<void*(size_t, size_t)> callocSlot("calloc", &__real_calloc);
HeapSlot<void*(void*, size_t)> reallocSlot("realloc", &__real_realloc);
HeapSlot<void(void*)> freeSlot("free", &__real_free);

}  // namespace

extern "C" {
void* __wrap_malloc(size_t bytes) {
    return mallocSlot.Target(&__real_malloc)(bytes);
}
void* __wrap_calloc(size_t count, size_t size) {
    return callocSlot.Target(&__real_calloc)(count, size);
}
void* __wrap_realloc(void* memory, size_t bytes) {
    return reallocSlot.Target(&__real_realloc)(memory, bytes);
}
void __wrap_free(void* memory) {
    freeSlot.Target (&__real_free)(memory);
}
}

}  // namespace orvex::posix
