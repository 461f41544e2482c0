// Bytes of made files, put together number by number.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orvex::tools {

class ByteMaker {
  public:
    // Append numbers of 1, 2, 4 or 8 bytes, the least significant first.
    ByteMaker& U16(uint64_t number) { return Little(number, 2); }
    ByteMaker& U32(uint64_t number) { return Little(number, 4); }
    ByteMaker& U64(uint64_t number) { return Little(number, 8); }
    // Append numbers, the most significant byte first, as fonts have them.
    ByteMaker& Big16(uint64_t number) { return Big(number, 2); }
    ByteMaker& Big32(uint64_t number) { return Big(number, 4); }

    ByteMaker& Text(std::string_view bytes) {
        bytes_ += bytes;
        return *this;
    }
    // Appends ASCII as UTF-16, with its terminator.
    ByteMaker& Wide(std::string_view ascii) {
        for (const char each : ascii) U16(static_cast<uint8_t>(each));
        return U16(0);
    }
    ByteMaker& Zeros(size_t count) {
        bytes_.append(count, '\0');
        return *this;
    }
    ByteMaker& FillUpTo(size_t multiple) {
        while (bytes_.size() % multiple != 0) bytes_ += '\0';
        return *this;
    }

    size_t Size() const { return bytes_.size(); }
    const std::string& Bytes() const { return bytes_; }

  private:
    ByteMaker& Little(uint64_t number, size_t size) {
        for (size_t i = 0; i < size; ++i) bytes_ += static_cast<char>(number >> 8 * i);
        return *this;
    }
    ByteMaker& Big(uint64_t number, size_t size) {
        for (size_t i = size; i-- > 0;) bytes_ += static_cast<char>(number >> 8 * i);
        return *this;
    }

    std::string bytes_;
};

}  // namespace orvex::tools
