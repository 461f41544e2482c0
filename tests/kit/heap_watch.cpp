#include "tests/kit/heap_watch.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

namespace orvex {

using namespace tools;

namespace {

HeapWatch* current = nullptr;

// The content of a fresh block.
constexpr uint8_t kFresh = 0xCD;

// Number of freed blocks that stay inaccessible.
constexpr size_t kKeptAside = 1000;

#ifdef _WIN32
constexpr bool kCanGuard = true;
#else
constexpr bool kCanGuard = false;
#endif

}  // namespace

struct HeapReplacements {
    static void* Malloc(size_t bytes) { return current->Allocate("malloc", bytes, false); }
    static void* Calloc(size_t count, size_t size) {
        if (size != 0 && count > SIZE_MAX / size) return nullptr;
        return current->Allocate("calloc", count * size, true);
    }
    static void* Realloc(void* memory, size_t bytes) {
        if (memory != nullptr && !current->live_.contains(memory)) return OriginalRealloc(memory, bytes);
        return current->Reallocate(memory, bytes);
    }
    static void Free(void* memory) {
        if (!current->Free(memory)) OriginalFree(memory);
    }

    static HLOCAL WINAPI LocalAlloc(UINT flags, SIZE_T bytes) {
        void* memory = current->Allocate("LocalAlloc", bytes, (flags & LMEM_ZEROINIT) != 0);
        if (memory == nullptr) SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return memory;
    }
    static HLOCAL WINAPI LocalFree(HLOCAL memory) {
        return current->Free(memory) ? nullptr : current->patches_.Original("LocalFree", &LocalFree)(memory);
    }

    static void* OriginalMalloc(size_t bytes) { return current->patches_.Original("malloc", &Malloc)(bytes); }
    static void OriginalFree(void* memory) { current->patches_.Original("free", &Free)(memory); }
    static void* OriginalRealloc(void* memory, size_t bytes) {
        return current->patches_.Original("realloc", &Realloc)(memory, bytes);
    }
};

HeapWatch::HeapWatch(HMODULE module, Blocks blocks) : guarded_(kCanGuard && blocks == Blocks::kGuarded) {
    current = this;
    patches_.Attach(module, {{"malloc", &HeapReplacements::Malloc},
                             {"calloc", &HeapReplacements::Calloc},
                             {"realloc", &HeapReplacements::Realloc},
                             {"free", &HeapReplacements::Free},
                             {"LocalAlloc", &HeapReplacements::LocalAlloc},
                             {"LocalFree", &HeapReplacements::LocalFree}});
    if (patches_.Original("malloc", &HeapReplacements::Malloc) == nullptr)
        throw std::logic_error("the heap functions of the module are out of reach");
}

HeapWatch::~HeapWatch() {
    current = nullptr;
}

std::vector<std::span<const uint8_t>> HeapWatch::LiveBlocks() const {
    std::vector<std::span<const uint8_t>> blocks;
    for (const auto& [memory, block] : live_) {
        blocks.emplace_back(static_cast<const uint8_t*>(memory), block.bytes);
    }
    return blocks;
}

std::vector<size_t> HeapWatch::LiveSizes() const {
    std::vector<size_t> sizes;
    for (const auto& [memory, block] : live_) sizes.push_back(block.bytes);
    std::sort(sizes.begin(), sizes.end());
    return sizes;
}

size_t HeapWatch::LiveBytes() const {
    size_t bytes = 0;
    for (const auto& [memory, block] : live_) bytes += block.bytes;
    return bytes;
}

void HeapWatch::FailNth(size_t n) {
    OnAllocate([n](const char*, size_t) mutable { return n-- == 0; });
}

void* HeapWatch::Allocate(const char* function, size_t bytes, bool zeroed) {
    ++allocations_;
    if (refuses_ && refuses_(function, bytes)) return nullptr;
    Block block = {bytes, nullptr};
    void* memory = nullptr;
    if (guarded_) {
        try {
            block.memory = std::make_unique<GuardedMemory>(bytes);
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
        memory = block.memory->Data();
    } else {
        memory = HeapReplacements::OriginalMalloc(bytes);
    }
    if (memory == nullptr) return nullptr;
    memset(memory, zeroed ? 0 : kFresh, bytes);
    live_.emplace(memory, std::move(block));
    return memory;
}

void* HeapWatch::Reallocate(void* memory, size_t bytes) {
    void* moved = Allocate("realloc", bytes, false);
    if (moved == nullptr || memory == nullptr) return moved;
    memcpy(moved, memory, std::min(bytes, live_.at(memory).bytes));
    HeapReplacements::Free(memory);
    return moved;
}

bool HeapWatch::Free(void* memory) {
    if (memory == nullptr) return true;
    const auto found = live_.find(memory);
    if (found == live_.end()) {
        const bool twice = std::any_of(freed_.begin(), freed_.end(),
                                       [memory](const auto& each) { return each->Data() == memory; });
        if (twice) misuses_.emplace_back("a block was freed twice");
        return twice;
    }
    Block& block = found->second;
    if (!guarded_) {
        live_.erase(found);
        HeapReplacements::OriginalFree(memory);
        return true;
    }
    if (!block.memory->Intact()) {
        misuses_.push_back("something was written in front of a block of " + std::to_string(block.bytes) +
                           " bytes");
    }
    PutAside(std::move(block.memory));
    live_.erase(found);
    return true;
}

void HeapWatch::PutAside(std::unique_ptr<GuardedMemory> memory) {
    memory->Close();
    freed_.push_back(std::move(memory));
    if (freed_.size() > kKeptAside) freed_.pop_front();
}

}  // namespace orvex

#ifdef _WIN32
// C++ allocations of a test program would come through its import of malloc; natively they do not.
void* operator new(size_t bytes) {
    void* memory = HeapAlloc(GetProcessHeap(), 0, bytes == 0 ? 1 : bytes);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept {
    HeapFree(GetProcessHeap(), 0, memory);
}
void operator delete(void* memory, size_t) noexcept {
    HeapFree(GetProcessHeap(), 0, memory);
}
#endif
