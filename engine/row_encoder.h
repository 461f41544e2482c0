// Lossless compression of raster rows: what stays the same down the page and along the row is not sent again.
//
// A row of `width` ink values of 32 bits is encoded against the row above it; the first row of a block is
// encoded against a row without ink. The code is a sequence of commands that together cover exactly `width`
// pixels:
//
//     command byte: bits 7-6 what, bits 5-0 count
//       0 = above     `count` pixels are as in the row above
//       1 = run       one ink value (4 bytes, little-endian) follows and stands for `count` pixels
//       2 = literals  `count` ink values follow
//       3 = not used
//     count 1 to 63 stands in the byte itself; 0 says that a 4-byte count follows the byte
//
// An unchanged row is one `above` command. A row is never longer than its pixels and one command with a long
// count. Any choice of commands decodes; this encoder takes `above` from 2 pixels on and `run` from 3, the
// longer of both.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

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

inline uint8_t* PutLittleEndian(uint8_t* out, uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) *out++ = static_cast<uint8_t>(value >> shift);
    return out;
}

inline uint8_t* PutCommand(uint8_t* out, Command command, uint32_t count) {
    const auto kind = static_cast<uint8_t>(command << kCommandShift);
    if (count <= kCountMask) {
        *out++ = static_cast<uint8_t>(kind | count);
        return out;
    }
    *out++ = kind;
    return PutLittleEndian(out, count);
}

inline uint8_t* PutLiterals(uint8_t* out, const uint32_t* pixels, uint32_t count) {
    if (count == 0) return out;
    out = PutCommand(out, kLiterals, count);
    for (uint32_t i = 0; i < count; ++i) out = PutLittleEndian(out, pixels[i]);
    return out;
}

inline uint64_t LoadPair(const uint32_t* pixels) {
    uint64_t pair;
    memcpy(&pair, pixels, sizeof pair);
    return pair;
}

// Pixels from the start on that are the same in both, two at a time as long as they last.
inline uint32_t SameLength(const uint32_t* a, const uint32_t* b, uint32_t limit) {
    uint32_t length = 0;
    while (length + 2 <= limit && LoadPair(a + length) == LoadPair(b + length)) length += 2;
    while (length < limit && a[length] == b[length]) ++length;
    return length;
}

// Pixels from the start on that are like the first one.
inline uint32_t RunLength(const uint32_t* pixels, uint32_t limit) {
    return limit == 0 ? 0 : 1 + SameLength(pixels, pixels + 1, limit - 1);
}

}  // namespace row_code

inline size_t EncodeRow(const uint32_t* above, const uint32_t* row, uint32_t width, uint8_t* out) {
    using namespace row_code;
    uint8_t* end = out;
    uint32_t sent = 0;  // what lies between this and `at` goes out as literals
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
        if (!takeAbove) end = PutLittleEndian(end, row[at]);
        at += takeAbove ? same : run;
        sent = at;
    }
    return static_cast<size_t>(PutLiterals(end, row + sent, width - sent) - out);
}

}  // namespace orvex
