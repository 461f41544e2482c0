// A buffered reader of files, which turns many small reads into few calls of the system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "driver/support/handle.h"
#include "platform/windows.h"

namespace orvex {

class BlockReader {
  public:
    // The bytes that it buffers. A reader fits on a small stack: profiles are listed on any thread, also
    // while a job loads one, so that the buffer can't be static.
    static constexpr size_t kBlock = 8192;

    // Opens the file for reading; the reader is false when that fails. The file is shared with readers and
    // writers, as with C's fopen, since an installer or a virus scanner may have it open for writing.
    explicit BlockReader(const char* path);
    explicit operator bool() const { return static_cast<bool>(file_); }

    // Returns the file's length in bytes, -1 when it can't be told: it is no regular file then.
    int64_t Size() const;
    // Returns the offset of the next byte.
    int64_t Position() const { return position_; }
    // Continues at another offset. If that fails, so does every later read.
    void Seek(int64_t position);
    // Returns whether a read or a seek has failed. The end of the file is no failure.
    bool Failed() const { return failed_; }

    // Reads `size` bytes and returns how many came: fewer only at the file's end or when reading fails. While
    // nothing is buffered, a large read goes straight into `destination`, in one piece.
    size_t Read(void* destination, size_t size);
    // Returns the next bytes, at most `atMost` of them, valid until the next call; none at the file's end
    // or after a failure.
    std::span<const uint8_t> Take(size_t atMost);

  private:
    size_t ReadFromFile(void* destination, size_t size);

    OwnedHandle file_;
    int64_t position_ = 0;
    size_t next_ = 0;  // offset of the next byte in the buffer
    size_t end_ = 0;   // bytes in the buffer
    bool failed_ = false;
    uint8_t buffer_[kBlock];
};

}  // namespace orvex
