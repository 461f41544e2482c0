// Memory between two guard pages. Its last byte is directly before one, so that a read or write past the end
// faults at the instruction that does it. The page before the first byte's page is guarded, too. The bytes
// between it and the memory are filled with a pattern that Intact() checks, and poisoned in builds with
// AddressSanitizer. The same goes for the few bytes after memory that has to begin at an aligned address and
// whose size is not a multiple of the alignment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace orvex::tools {

class GuardedMemory {
  public:
    // Reserves `size` zero bytes, possibly none, at a multiple of `alignment`, which is a power of two.
    // Throws std::bad_alloc if the system is out of memory.
    explicit GuardedMemory(size_t size, size_t alignment = 1);
    // Copies `bytes`.
    explicit GuardedMemory(std::span<const uint8_t> bytes, size_t alignment = 1);
    ~GuardedMemory();
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    uint8_t* Data() const { return data_; }
    size_t Size() const { return size_; }
    std::span<uint8_t> Bytes() const { return {data_, size_}; }

    // Returns whether the bytes between the memory and its guard pages are untouched.
    bool Intact() const;

    // Turns all of the memory into a guard for good: every further access faults.
    void Close();

  private:
    // Return the bytes before and after the memory, up to the guard pages.
    std::span<uint8_t> Front() const;
    std::span<uint8_t> Back() const;

    uint8_t* block_ = nullptr;  // the first guard page
    size_t blockSize_ = 0;
    uint8_t* data_ = nullptr;
    size_t size_ = 0;
};

}  // namespace orvex::tools
