// A separate heap for what a module allocates with malloc, calloc, realloc and LocalAlloc. It knows every
// live block with its size, so that a leak can be named, and can refuse any allocation.
//
// On Windows each block ends at a guard page, starts out filled with a pattern, and stays inaccessible for a
// long time after it is freed. Natively the blocks are the C library's own, which the sanitizers guard; the
// program must be linked with orvex_posix_heap.
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
#include "tools/host/import_patch.h"

namespace orvex::tools {

class DebugHeap : public ImportService<DebugHeap> {
  public:
    // Function that is called before every allocation and returns whether to refuse it.
    using Refusal = std::function<bool(const char* function, size_t bytes)>;

    // Serves all further allocations of `module`. Its earlier blocks are freed as before. On Windows the
    // heap's destruction frees all of its blocks, so the module must no longer use them.
    explicit DebugHeap(HMODULE module);

    void OnAllocate(Refusal refuses) { refuses_ = std::move(refuses); }

    std::vector<std::span<const uint8_t>> LiveBlocks() const;
    // Returns in words which blocks were freed twice, or had their preceding bytes overwritten.
    const std::vector<std::string>& Misuses() const { return misuses_; }

  private:
    struct Replacements;

    struct Block {
        size_t bytes;
        std::unique_ptr<GuardedMemory> memory;  // null natively
    };

    void* Allocate(const char* function, size_t bytes, bool zeroed);
    void* Reallocate(void* memory, size_t bytes);
    // Returns false if the block is not of this heap, and was not freed.
    bool Free(void* memory);

    Refusal refuses_;
    std::map<const void*, Block> live_;
    std::deque<std::unique_ptr<GuardedMemory>> freed_;  // the most recent ones, inaccessible
    std::vector<std::string> misuses_;
};

}  // namespace orvex::tools
