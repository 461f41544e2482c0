// The bytes of a print file, read in order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tools/orvexview/byte_source.h"

namespace orvex::tools::view {

// An error in a print file; the message begins with the offset of the wrong byte: "offset 1234: ...".
class PrintFileError : public std::runtime_error {
  public:
    PrintFileError(uint64_t offset, const std::string& complaint)
        : std::runtime_error("offset " + std::to_string(offset) + ": " + complaint), offset_(offset) {}

    uint64_t Offset() const { return offset_; }

  private:
    uint64_t offset_;
};

// Returns the number in the first 4 bytes.
inline uint32_t LittleEndian(std::span<const uint8_t> bytes) {
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

// A position in a source. Whatever it returns is valid until the source is read again.
class ByteReader {
  public:
    explicit ByteReader(ByteSource& source, uint64_t offset = 0) : source_(&source), offset_(offset) {}

    uint64_t Offset() const { return offset_; }

    // Return the next `size` bytes, fewer at the end of the file, without taking them.
    std::span<const uint8_t> Ahead(size_t size) { return source_->At(offset_, size); }
    std::string_view TextAhead(size_t size) {
        const std::span<const uint8_t> bytes = Ahead(size);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    // Takes the next `size` bytes. Throws PrintFileError that calls them `what` if the file ends before.
    std::span<const uint8_t> Take(size_t size, std::string_view what) {
        const std::span<const uint8_t> bytes = Ahead(size);
        RequireWhole(bytes.size(), size, what);
        offset_ += size;
        return bytes;
    }

    uint8_t TakeByte(std::string_view what) { return Take(1, what)[0]; }

    uint32_t TakeNumber(std::string_view what) { return LittleEndian(Take(4, what)); }

    // Throws PrintFileError if there are fewer than `size` bytes at this place.
    void RequireWhole(size_t there, size_t size, std::string_view what) const {
        if (there >= size) return;
        throw PrintFileError(offset_, "the file ends within " + std::string(what) + ": " +
                                          std::to_string(size) + " bytes expected, " + std::to_string(there) +
                                          " left");
    }

  private:
    ByteSource* source_;
    uint64_t offset_;
};

}  // namespace orvex::tools::view
