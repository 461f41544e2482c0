// Device modes as they come from outside, in memory that ends where the record does.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

#include "driver/config/device_mode.h"
#include "driver/support/heap.h"

namespace orvex {

// A record of `publicSize` + `privateSize` bytes, at least the 72 up to dmDriverExtra and not one more, so
// that a sanitizer sees every access past its end. It holds as much of `values` as fits.
class ForeignDevMode {
  public:
    ForeignDevMode(WORD publicSize, WORD privateSize, const DeviceMode& values)
        : size_(std::max<size_t>(size_t{publicSize} + privateSize, kHeaderSize)),
          memory_(AllocateZeroedArray<BYTE>(size_)) {
        BYTE* bytes = memory_.get();
        memcpy(bytes, &values.pub, std::min<size_t>(publicSize, sizeof values.pub));
        if (publicSize >= kHeaderSize) {
            memcpy(bytes + publicSize, &values.priv, std::min<size_t>(privateSize, sizeof values.priv));
        }
        Record()->dmSize = publicSize;
        Record()->dmDriverExtra = privateSize;
    }

    DEVMODEW* Record() { return reinterpret_cast<DEVMODEW*>(memory_.get()); }
    // All its bytes, to see what was written.
    std::string Bytes() const { return {reinterpret_cast<const char*>(memory_.get()), size_}; }

  private:
    static constexpr size_t kHeaderSize = 72;  // up to and with dmDriverExtra

    size_t size_;
    HeapArray<BYTE> memory_;
};

inline std::u16string Text(const WCHAR* text) {
    return reinterpret_cast<const char16_t*>(text);
}

}  // namespace orvex
