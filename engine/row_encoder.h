// Lossless compression of raster rows: pixels that repeat the row above or their neighbors are not sent
// again.
//
// A row of `width` ink values of 32 bits is encoded against the row above it; the first row of a block is
// encoded against a row without ink. The code is a sequence of commands that together cover exactly `width`
// pixels:
//
//     command byte: bits 7-6 what, bits 5-0 count
//       0 = above     `count` pixels are as in the row above
//       1 = run       one ink value (4 bytes, little-endian) follows, the ink of `count` pixels
//       2 = literals  `count` ink values follow
//       3 = not used
//     a count from 1 to 63 is in the byte itself; 0 means that a 4-byte count follows the byte
//
// An unchanged row is one `above` command. A coded row is never longer than its pixels plus one command with
// a long count. A decoder accepts any choice of commands; this encoder takes `above` from 2 pixels on and
// `run` from 3, whichever is longer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "engine/print_stream.h"

namespace orvex {

namespace row_code {

enum Command : uint8_t { kAbove = 0, kRun = 1, kLiterals = 2 };

inline constexpr int kCommandShift = 6;
inline constexpr uint8_t kCountMask = 0x3F;
inline constexpr size_t kLongCommandSize = 5;
inline constexpr size_t kPixelSize = 4;

inline constexpr uint32_t kMinAbove = 2;
inline constexpr uint32_t kMinRun = 3;

constexpr size_t MaxEncodedRowSize(uint32_t width) {
    return kLongCommandSize + kPixelSize * width;
}

}  // namespace row_code

// Encodes one row of `width` pixels against the row above it into `out`, which has room for
// MaxEncodedRowSize(width) bytes. Returns the number of bytes written.
inline size_t EncodeRow(const uint32_t* above, const uint32_t* row, uint32_t width, uint8_t* out);

namespace row_code {

inline uint8_t* PutCommand(uint8_t* out, Command command, uint32_t count) {
    const auto kind = static_cast<uint8_t>(command << kCommandShift);
    if (count <= kCountMask) {
        *out++ = static_cast<uint8_t>(kind | count);
        return out;
    }
    *out++ = kind;
    return print_stream::StoreNumber(out, count);
}

inline uint8_t* PutLiterals(uint8_t* out, const uint32_t* pixels, uint32_t count) {
    if (count == 0) return out;
    out = PutCommand(out, kLiterals, count);
    for (uint32_t i = 0; i < count; ++i) out = print_stream::StoreNumber(out, pixels[i]);
    return out;
}

inline uint64_t LoadPair(const uint32_t* pixels) {
    uint64_t pair;
    memcpy(&pair, pixels, sizeof pair);
    return pair;
}

// Returns how many pixels from the start on are the same in both; compares two at a time.
inline uint32_t SameLength(const uint32_t* a, const uint32_t* b, uint32_t limit) {
    uint32_t length = 0;
    while (length + 2 <= limit && LoadPair(a + length) == LoadPair(b + length)) length += 2;
    while (length < limit && a[length] == b[length]) ++length;
    return length;
}

// Returns how many pixels from the start on are like the first one.
inline uint32_t RunLength(const uint32_t* pixels, uint32_t limit) {
    return limit == 0 ? 0 : 1 + SameLength(pixels, pixels + 1, limit - 1);
}

}  // namespace row_code

inline size_t EncodeRow(const uint32_t* above, const uint32_t* row, uint32_t width, uint8_t* out) {
    using namespace row_code;
    uint8_t* end = out;
    uint32_t sent = 0;  // the pixels from here to `at` become literals
    for (uint32_t at = 0; at < width;) {
        const uint32_t same = SameLength(above + at, row + at, width - at);
        const uint32_t run = RunLength(row + at, width - at);
        const bool takeAbove = same >= kMinAbove && same >= run;
        if (!takeAbove && run < kMinRun) {
            ++at;
            continue;
        }
        end = PutLiterals(end, row + sent, at - sent);
        end = PutCommand(end, takeAbove ? kAbove : kRun, takeAbove ? same : run);
        if (!takeAbove) end = print_stream::StoreNumber(end, row[at]);
        at += takeAbove ? same : run;
        sent = at;
    }
    return static_cast<size_t>(PutLiterals(end, row + sent, width - sent) - out);
}

}  // namespace orvex
