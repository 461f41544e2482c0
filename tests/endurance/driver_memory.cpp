#include "tests/endurance/driver_memory.h"

#ifdef _WIN32

#include <cstdlib>
#include <unordered_map>

namespace {

std::unordered_map<void*, size_t> live;
const PatchSet* calls = nullptr;

void* Note(void* memory, size_t size) {
    if (memory != nullptr) live[memory] = size;
    return memory;
}

void* Allocate(size_t size) {
    return Note(calls->Original("malloc", &Allocate)(size), size);
}
void* AllocateZeroed(size_t count, size_t size) {
    return Note(calls->Original("calloc", &AllocateZeroed)(count, size), count * size);
}
void Free(void* memory) {
    live.erase(memory);
    calls->Original("free", &Free)(memory);
}
void* Reallocate(void* memory, size_t size) {
    void* const moved = calls->Original("realloc", &Reallocate)(memory, size);
    if (moved != nullptr || size == 0) live.erase(memory);
    return Note(moved, size);
}
HLOCAL WINAPI AllocateLocal(UINT flags, SIZE_T size) {
    return Note(calls->Original("LocalAlloc", &AllocateLocal)(flags, size), size);
}
HLOCAL WINAPI FreeLocal(HLOCAL memory) {
    live.erase(memory);
    return calls->Original("LocalFree", &FreeLocal)(memory);
}

}  // namespace

DriverMemory::DriverMemory(DriverSession& session) : session_(session) {
    calls = &patches_;
    patches_.Attach(session.Driver().Module(), {{"malloc", &Allocate},
                                                {"calloc", &AllocateZeroed},
                                                {"realloc", &Reallocate},
                                                {"free", &Free},
                                                {"LocalAlloc", &AllocateLocal},
                                                {"LocalFree", &FreeLocal}});
}

DriverMemory::~DriverMemory() {
    live.clear();
}

size_t DriverMemory::LiveBytes() const {
    size_t bytes = 0;
    for (const auto& each : live) bytes += each.second;
    return bytes;
}

#else

#include <dlfcn.h>
#include <malloc.h>

// AddressSanitizer's, in a build that has it: its header does not come with every compiler.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace {

size_t AllocatedBytes() {
    return __sanitizer_get_current_allocated_bytes != nullptr ? __sanitizer_get_current_allocated_bytes()
                                                              : mallinfo2().uordblks;
}

}  // namespace

// The engine's library stays loaded meanwhile: AddressSanitizer notes down each load of a library that has
// something to destroy, and forgets it at the program's end only.
DriverMemory::DriverMemory(DriverSession& session)
    : session_(session), engine_(dlopen((ProgramFolder() / "hpcrlib.dll").c_str(), RTLD_NOW)) {}
DriverMemory::~DriverMemory() {
    if (engine_ != nullptr) dlclose(engine_);
}

size_t DriverMemory::LiveBytes() const {
    return AllocatedBytes() - session_.Graphics().Erasures().capacity() * sizeof(Erasure) -
           session_.Engine().Books().pages.capacity() * sizeof(EnginePage);
}

#endif
