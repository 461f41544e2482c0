// Device modes from outside, and what tests compare in them.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

#include "driver/config/device_mode.h"
#include "driver/support/heap.h"

namespace orvex {

// A record of `publicSize` + `privateSize` bytes, at least the 72 through dmDriverExtra, with as much of
// `values` as fits. Its memory ends with it, so that a sanitizer sees every access past its end.
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
    // Returns all its bytes, to show what was written.
    std::string Bytes() const { return {reinterpret_cast<const char*>(memory_.get()), size_}; }

  private:
    static constexpr size_t kHeaderSize = 72;  // through dmDriverExtra

    size_t size_;
    HeapArray<BYTE> memory_;
};

inline bool SameRecord(const DeviceMode& a, const DeviceMode& b) {
    return memcmp(&a, &b, sizeof a) == 0;
}

inline std::u16string Text(const WCHAR* text) {
    return reinterpret_cast<const char16_t*>(text);
}

}  // namespace orvex
