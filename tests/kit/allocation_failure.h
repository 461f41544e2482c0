// Refuses allocations of one size.
#pragma once

#include "tests/kit/heap_watch.h"

namespace orvex {

// While it lives, every allocation of exactly `bytes` bytes by the code linked into this program fails.
class AllocationFailure {
  public:
    explicit AllocationFailure(size_t bytes) {
        heap_.OnAllocate([this, bytes](const char*, size_t asked) { return asked == bytes && ++count_ > 0; });
    }

    // Returns how many allocations have failed so far.
    int Count() const { return count_; }

  private:
    int count_ = 0;
    HeapWatch heap_;
};

}  // namespace orvex
