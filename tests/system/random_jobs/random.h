// Random choices that are the same in every build for a seed, as long as no expression makes two of them in
// an order that is the compiler's choice.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

namespace orvex {

class Random {
  public:
    explicit Random(uint64_t seed) : bits_(static_cast<uint32_t>(seed ^ seed >> 32)) {}

    uint32_t Bits() { return bits_(); }
    // Returns a number from 0 to `limit` - 1.
    size_t Below(size_t limit) { return bits_() % limit; }
    int Between(int least, int most) {
        return least + static_cast<int>(Below(static_cast<size_t>(most - least + 1)));
    }
    // Returns true once in `times`.
    bool OnceIn(size_t times) { return Below(times) == 0; }

    template <typename T>
    T OneOf(std::initializer_list<T> values) {
        return values.begin()[Below(values.size())];
    }
    template <typename T>
    const T& OneOf(const std::vector<T>& values) {
        return values[Below(values.size())];
    }
    std::string Text(std::initializer_list<const char*> values) { return OneOf(values); }

  private:
    std::mt19937 bits_;
};

}  // namespace orvex
