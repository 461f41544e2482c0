// Makes memory run short. A test program that links orvex_allocation_failure allocates through here.
#pragma once

#include <cstddef>

namespace orvex {

// While it lives, every malloc and calloc of exactly `bytes` bytes by the code linked into this program
// fails.
class AllocationFailure {
  public:
    explicit AllocationFailure(size_t bytes);
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    // How many allocations have failed so far.
    int Count() const;
};

}  // namespace orvex
