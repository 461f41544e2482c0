// Reads choices and bytes from the front of a fuzzed input. Past its end everything is 0 or empty.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

namespace orvex::fuzz {

class FuzzInput {
  public:
    explicit FuzzInput(std::span<const uint8_t> bytes) : rest_(bytes) {}

    bool Empty() const { return rest_.empty(); }

    uint8_t Byte() {
        const std::span<const uint8_t> taken = Take(1);
        return taken.empty() ? uint8_t{0} : taken[0];
    }
    bool Flag() { return (Byte() & 1) != 0; }

    // Reads a little-endian number.
    template <typename T>
    T Number() {
        uint64_t value = 0;
        for (size_t i = 0; i < sizeof(T); ++i) value |= uint64_t{Byte()} << 8 * i;
        return static_cast<T>(value);
    }

    // Takes up to `size` bytes.
    std::span<const uint8_t> Take(size_t size) {
        const std::span<const uint8_t> taken = rest_.first(std::min(size, rest_.size()));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }
    std::string_view TakeText(size_t size) {
        const std::span<const uint8_t> taken = Take(size);
        return {reinterpret_cast<const char*>(taken.data()), taken.size()};
    }
    std::span<const uint8_t> Rest() { return Take(rest_.size()); }
    std::string_view RestAsText() { return TakeText(rest_.size()); }

  private:
    std::span<const uint8_t> rest_;
};

}  // namespace orvex::fuzz
