#include "tools/host/debug_heap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

namespace orvex::tools {

namespace {

// The content of a fresh block.
constexpr uint8_t kFresh = 0xCD;

// Number of freed blocks that stay inaccessible.
constexpr size_t kKeptAside = 1000;

constexpr bool kGuarded =
#ifdef _WIN32
    true;
#else
    false;
#endif

}  // namespace

struct DebugHeap::Replacements {
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
        if (!current->Free(memory)) current->patches_.Original("free", &Free)(memory);
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
    static void* OriginalRealloc(void* memory, size_t bytes) {
        return current->patches_.Original("realloc", &Realloc)(memory, bytes);
    }
};

DebugHeap::DebugHeap(HMODULE module) {
    patches_.Attach(module, {{"malloc", &Replacements::Malloc},
                             {"calloc", &Replacements::Calloc},
                             {"realloc", &Replacements::Realloc},
                             {"free", &Replacements::Free},
                             {"LocalAlloc", &Replacements::LocalAlloc},
                             {"LocalFree", &Replacements::LocalFree}});
    if (patches_.Original("malloc", &Replacements::Malloc) == nullptr)
        throw std::logic_error("the module's heap is out of reach; natively it takes orvex_posix_heap");
}

std::vector<std::span<const uint8_t>> DebugHeap::LiveBlocks() const {
    std::vector<std::span<const uint8_t>> blocks;
    for (const auto& [memory, block] : live_) {
        blocks.emplace_back(static_cast<const uint8_t*>(memory), block.bytes);
    }
    return blocks;
}

void* DebugHeap::Allocate(const char* function, size_t bytes, bool zeroed) {
    if (refuses_ && refuses_(function, bytes)) return nullptr;
    Block block = {bytes, nullptr};
    void* memory = nullptr;
    if (kGuarded) {
        try {
            block.memory = std::make_unique<GuardedMemory>(bytes);
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
        memory = block.memory->Data();
    } else {
        memory = Replacements::OriginalMalloc(bytes);
    }
    if (memory == nullptr) return nullptr;
    memset(memory, zeroed ? 0 : kFresh, bytes);
    live_.emplace(memory, std::move(block));
    return memory;
}

void* DebugHeap::Reallocate(void* memory, size_t bytes) {
    void* moved = Allocate("realloc", bytes, false);
    if (moved == nullptr || memory == nullptr) return moved;
    memcpy(moved, memory, std::min(bytes, live_.at(memory).bytes));
    Replacements::Free(memory);
    return moved;
}

bool DebugHeap::Free(void* memory) {
    if (memory == nullptr) return true;
    const auto found = live_.find(memory);
    if (found == live_.end()) {
        const bool twice = std::any_of(freed_.begin(), freed_.end(),
                                       [memory](const auto& each) { return each->Data() == memory; });
        if (twice) misuses_.emplace_back("a block was freed twice");
        return twice;
    }
    Block& block = found->second;
    if (!kGuarded) {
        live_.erase(found);
        return false;  // the C library frees it
    }
    if (!block.memory->Intact()) {
        misuses_.push_back("something was written in front of a block of " + std::to_string(block.bytes) +
                           " bytes");
    }
    block.memory->Close();
    freed_.push_back(std::move(block.memory));
    if (freed_.size() > kKeptAside) freed_.pop_front();
    live_.erase(found);
    return true;
}

}  // namespace orvex::tools
