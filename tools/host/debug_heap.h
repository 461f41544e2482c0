// A heap of its own for what a module allocates with malloc, calloc, realloc and LocalAlloc. Every live block
// is known with its size, so that a leak can be named, and any allocation can be refused.
//
// On Windows each block ends at a guard page, starts out filled with a pattern, and can't be touched for a
// long time after it was freed. Natively the blocks are the C library's own, which the sanitizers guard; the
// program must be linked with orvex_posix_heap.
//
// One debug heap exists at a time in a process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/windows.h"
#include "tools/host/guarded_memory.h"
#include "tools/host/patch_set.h"

namespace orvex::tools {

class DebugHeap {
  public:
    // Asked before every allocation, with the function's name; true refuses it.
    using Refusal = std::function<bool(const char* function, size_t bytes)>;

    // Serves what `module` allocates from now on. Blocks that it has already are freed as ever. On Windows
    // the blocks go with the heap, so the module must not use them any more then.
    explicit DebugHeap(HMODULE module);
    ~DebugHeap();
    DebugHeap(const DebugHeap&) = delete;
    DebugHeap& operator=(const DebugHeap&) = delete;

    void OnAllocate(Refusal refuses) { refuses_ = std::move(refuses); }

    size_t Allocations() const { return allocations_; }
    std::vector<std::span<const uint8_t>> LiveBlocks() const;
    // Blocks that were freed twice or written in front of, in words.
    const std::vector<std::string>& Misuses() const { return misuses_; }

  private:
    friend struct HeapReplacements;

    struct Block {
        size_t bytes;
        std::unique_ptr<GuardedMemory> memory;  // null natively
    };

    void* Allocate(const char* function, size_t bytes, bool zeroed);
    void* Reallocate(void* memory, size_t bytes);
    // False for a block of another heap.
    bool Free(void* memory);
    // Keeps a freed block out of reach for a while.
    void PutAside(std::unique_ptr<GuardedMemory> memory);

    Refusal refuses_;
    size_t allocations_ = 0;
    std::map<const void*, Block> live_;
    std::deque<std::unique_ptr<GuardedMemory>> freed_;  // the last ones, out of reach
    std::vector<std::string> misuses_;
    PatchSet patches_;
};

}  // namespace orvex::tools
