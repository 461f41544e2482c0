// The bytes of a print file, read in order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvex::tools::view {

// An error in a print file; the message begins with the offset of the wrong byte: "offset 1234: ...".
class PrintFileError : public std::runtime_error {
  public:
    PrintFileError(size_t offset, const std::string& complaint)
        : std::runtime_error("offset " + std::to_string(offset) + ": " + complaint), offset_(offset) {}

    size_t Offset() const { return offset_; }

  private:
    size_t offset_;
};

// Returns the number in the first 4 bytes.
inline uint32_t LittleEndian(std::span<const uint8_t> bytes) {
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

class ByteReader {
  public:
    explicit ByteReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    size_t Offset() const { return offset_; }
    std::span<const uint8_t> Rest() const { return bytes_.subspan(offset_); }
    std::string_view RestAsText() const {
        return {reinterpret_cast<const char*>(bytes_.data()) + offset_, bytes_.size() - offset_};
    }

    // Returns the next `size` bytes. Throws PrintFileError that calls them `what` if the file ends before.
    std::span<const uint8_t> Take(size_t size, std::string_view what) {
        if (size > bytes_.size() - offset_) {
            throw PrintFileError(offset_, "the file ends within " + std::string(what) + ": " +
                                              std::to_string(size) + " bytes expected, " +
                                              std::to_string(bytes_.size() - offset_) + " left");
        }
        const std::span<const uint8_t> taken = bytes_.subspan(offset_, size);
        offset_ += size;
        return taken;
    }

    uint8_t TakeByte(std::string_view what) { return Take(1, what)[0]; }

    uint32_t TakeNumber(std::string_view what) { return LittleEndian(Take(4, what)); }

  private:
    std::span<const uint8_t> bytes_;
    size_t offset_ = 0;
};

}  // namespace orvex::tools::view
