#include "tests/system/endurance/driver_memory.h"

#ifdef _WIN32
#include <cstdlib>
#include <unordered_map>
#endif

namespace orvex {

#ifdef _WIN32

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

DriverMemory::DriverMemory(const DriverLibrary& driver) {
    calls = &calls_;
    calls_.Attach(driver.Module(), {{"malloc", &Allocate},
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

DriverMemory::DriverMemory(const DriverLibrary& driver) : heap_(driver.Module()) {}
DriverMemory::~DriverMemory() = default;

size_t DriverMemory::LiveBytes() const {
    size_t bytes = 0;
    for (const auto& block : heap_.LiveBlocks()) bytes += block.size();
    return bytes;
}

#endif

}  // namespace orvex
