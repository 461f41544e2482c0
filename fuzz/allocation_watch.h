// Watches what the driver takes from the heap. A program that links the fuzzed functions allocates through
// here.
#pragma once

#include <cstddef>
#include <vector>

namespace orvex::fuzz {

// While it lives, knows the blocks that the code linked into this program takes with malloc and calloc, and
// which of them it has not freed. One lives at a time, over a part of the driver that keeps few blocks.
class AllocationWatch {
  public:
    AllocationWatch();
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    // How many blocks have been taken so far.
    static size_t Taken();
    // The sizes of the blocks that are not freed yet, smallest first.
    static std::vector<size_t> Live();
};

// While it lives, what is taken is nobody's business: for what the driver calls back.
class AllocationWatchPause {
  public:
    AllocationWatchPause();
    ~AllocationWatchPause();
    AllocationWatchPause(const AllocationWatchPause&) = delete;
    AllocationWatchPause& operator=(const AllocationWatchPause&) = delete;

  private:
    bool before_;
};

}  // namespace orvex::fuzz
