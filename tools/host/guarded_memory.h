// Memory between two guard pages. Its last byte lies directly before one, so that a read or write past the
// end faults at the instruction that does it. The page before the one that holds the first byte is guarded
// too; what lies between is filled with a pattern that Intact() checks, and poisoned where the build has
// AddressSanitizer. So are the few bytes behind the last one of memory that has to begin at an aligned
// address and is of another size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace orvex::tools {

class GuardedMemory {
  public:
    // `size` zero bytes, 0 included, from a multiple of `alignment`, a power of two, on. Throws
    // std::bad_alloc when the system has no room.
    explicit GuardedMemory(size_t size, size_t alignment = 1);
    // A copy of `bytes`.
    explicit GuardedMemory(std::span<const uint8_t> bytes, size_t alignment = 1);
    ~GuardedMemory();
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    uint8_t* Data() const { return data_; }
    size_t Size() const { return size_; }
    std::span<uint8_t> Bytes() const { return {data_, size_}; }

    // Whether the bytes in front of Data() and behind the last one, up to the guard pages, are as they were
    // made.
    bool Intact() const;

    // Makes all of it a guard, for good: from now on every use of it faults.
    void Close();

  private:
    // What lies between the guard pages and the memory, in front of it and behind it.
    std::span<uint8_t> Front() const;
    std::span<uint8_t> Back() const;

    uint8_t* block_ = nullptr;  // the first guard page
    size_t blockSize_ = 0;
    uint8_t* data_ = nullptr;
    size_t size_ = 0;
};

}  // namespace orvex::tools
