// The heap as seen by a test: every block that code takes with malloc, calloc, realloc or LocalAlloc, so that
// a leak can be named, the memory be counted, and an allocation be refused.
//
// It replaces the heap functions where they are imported: in the import table of a module on Windows, and
// natively, where the driver is part of the program, in the slots of platform/posix/heap.cpp. C++ allocations
// of the tests pass it by, so neither tests nor their helpers count or fail.
//
// Only one watch may exist at a time in a process.
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

namespace orvex {

class HeapWatch {
  public:
    // The source of the blocks. On Windows a guarded block ends at a guard page and stays inaccessible for
    // a long time after it is freed; the module must no longer use such blocks when the watch ends. Natively
    // all blocks are the C library's own, which the sanitizers guard.
    enum class Blocks { kPlain, kGuarded };

    // Called before every allocation; returns whether to refuse it.
    using Refusal = std::function<bool(const char* function, size_t bytes)>;

    // Watches all further allocations of `module`; null is the program itself.
    explicit HeapWatch(HMODULE module = nullptr, Blocks blocks = Blocks::kPlain);
    ~HeapWatch();
    HeapWatch(const HeapWatch&) = delete;
    HeapWatch& operator=(const HeapWatch&) = delete;

    void OnAllocate(Refusal refuses) { refuses_ = std::move(refuses); }
    // Refuses the n-th allocation from now on, where 0 is the next.
    void FailNth(size_t n);

    size_t Allocations() const { return allocations_; }
    // Returns the blocks that have not been freed.
    std::vector<std::span<const uint8_t>> LiveBlocks() const;
    // Returns the sizes of those blocks, smallest first.
    std::vector<size_t> LiveSizes() const;
    size_t LiveBytes() const;
    // Blocks that were freed twice, or whose preceding bytes were overwritten, in words.
    const std::vector<std::string>& Misuses() const { return misuses_; }

  private:
    friend struct HeapReplacements;

    struct Block {
        size_t bytes;
        std::unique_ptr<tools::GuardedMemory> memory;  // null for a plain block
    };

    void* Allocate(const char* function, size_t bytes, bool zeroed);
    void* Reallocate(void* memory, size_t bytes);
    // Returns false if the block is not of this heap, and was not freed.
    bool Free(void* memory);
    // Keeps a freed block inaccessible for a while.
    void PutAside(std::unique_ptr<tools::GuardedMemory> memory);

    const bool guarded_;
    Refusal refuses_;
    size_t allocations_ = 0;
    std::map<const void*, Block> live_;
    std::deque<std::unique_ptr<tools::GuardedMemory>> freed_;  // the most recent ones, inaccessible
    std::vector<std::string> misuses_;
    tools::PatchSet patches_;
};

}  // namespace orvex
