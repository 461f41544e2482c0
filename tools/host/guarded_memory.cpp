#include "tools/host/guarded_memory.h"

#include <algorithm>
#include <cstring>
#include <new>

#ifdef _WIN32
#include "platform/windows.h"
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#endif

namespace orvex::tools {

namespace {

constexpr uint8_t kPadding = 0xA5;

#ifdef _WIN32

size_t PageSize() {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return system.dwPageSize;
}

uint8_t* Reserve(size_t size) {
    return static_cast<uint8_t*>(VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS));
}

bool Open(uint8_t* begin, size_t size) {
    return VirtualAlloc(begin, size, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

void Shut(uint8_t* block, size_t size) {
    VirtualFree(block, size, MEM_DECOMMIT);
}

void Release(uint8_t* block, size_t) {
    VirtualFree(block, 0, MEM_RELEASE);
}

#else

size_t PageSize() {
    return static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

uint8_t* Reserve(size_t size) {
    void* block = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return block == MAP_FAILED ? nullptr : static_cast<uint8_t*>(block);
}

bool Open(uint8_t* begin, size_t size) {
    return mprotect(begin, size, PROT_READ | PROT_WRITE) == 0;
}

void Shut(uint8_t* block, size_t size) {
    mprotect(block, size, PROT_NONE);
}

void Release(uint8_t* block, size_t size) {
    munmap(block, size);
}

#endif

// Returns whether all bytes have the pattern; lifts their poison while it reads them.
bool IsPadding(std::span<uint8_t> bytes) {
    ASAN_UNPOISON_MEMORY_REGION(bytes.data(), bytes.size());
    const bool untouched =
        std::all_of(bytes.begin(), bytes.end(), [](uint8_t each) { return each == kPadding; });
    ASAN_POISON_MEMORY_REGION(bytes.data(), bytes.size());
    return untouched;
}

}  // namespace

GuardedMemory::GuardedMemory(size_t size, size_t alignment) : size_(size) {
    const size_t page = PageSize();
    if (size > SIZE_MAX - 4 * page) throw std::bad_alloc();
    const size_t open = std::max(page, (size + page - 1) / page * page);
    blockSize_ = open + 2 * page;
    block_ = Reserve(blockSize_);
    if (block_ == nullptr) throw std::bad_alloc();
    uint8_t* const begin = block_ + page;
    if (!Open(begin, open)) {
        Release(block_, blockSize_);
        throw std::bad_alloc();
    }
    data_ = begin + open - (size + alignment - 1) / alignment * alignment;
    for (const std::span<uint8_t> padding : {Front(), Back()}) {
        std::fill(padding.begin(), padding.end(), kPadding);
        ASAN_POISON_MEMORY_REGION(padding.data(), padding.size());
    }
}

GuardedMemory::GuardedMemory(std::span<const uint8_t> bytes, size_t alignment)
    : GuardedMemory(bytes.size(), alignment) {
    if (!bytes.empty()) memcpy(data_, bytes.data(), bytes.size());
}

GuardedMemory::~GuardedMemory() {
    ASAN_UNPOISON_MEMORY_REGION(block_, blockSize_);
    Release(block_, blockSize_);
}

std::span<uint8_t> GuardedMemory::Front() const {
    return {block_ + PageSize(), data_};
}

std::span<uint8_t> GuardedMemory::Back() const {
    return {data_ + size_, block_ + blockSize_ - PageSize()};
}

bool GuardedMemory::Intact() const {
    return IsPadding(Front()) && IsPadding(Back());
}

void GuardedMemory::Close() {
    Shut(block_, blockSize_);
}

}  // namespace orvex::tools
