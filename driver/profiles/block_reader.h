// Reads a file front to back through a buffer, so that many small reads cost few of the system's.
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
    // writers, as with C's fopen: an installer or a virus scanner may have it open for writing.
    explicit BlockReader(const char* path);
    explicit operator bool() const { return static_cast<bool>(file_); }

    // The file's length in bytes, -1 when it can't be told (it is no file then).
    int64_t Size() const;
    // Where the next byte is read from.
    int64_t Position() const { return position_; }
    // Goes on reading from another place. When that can't be reached, no more bytes come.
    void Seek(int64_t position);
    // Whether the file could not be read, or a place in it not be reached; its end is no failure.
    bool Failed() const { return failed_; }

    // Reads `size` bytes and returns how many came; fewer only at the file's end or when reading fails. With
    // nothing buffered a large read goes straight into `destination`, in one piece.
    size_t Read(void* destination, size_t size);
    // The next bytes, at least one and at most `atMost` of them, good until the next call; none when there
    // are none.
    std::span<const uint8_t> Take(size_t atMost);

  private:
    size_t ReadFromFile(void* destination, size_t size);

    OwnedHandle file_;
    int64_t position_ = 0;
    size_t next_ = 0;  // in the buffer
    size_t end_ = 0;   // of what it holds
    bool failed_ = false;
    uint8_t buffer_[kBlock];
};

}  // namespace orvex
