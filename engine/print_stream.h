// The format of the stand-in print stream, shared by its writer and its readers. docs/print-stream.md is the
// complete description.
//
// Numbers are little-endian. A print file is
//
//     universal exit, PJL lines up to "@PJL ENTER LANGUAGE=...", records, universal exit
//
// and the records come in this order:
//
//     job-start { resolution-command page-start block-start rows... block-end page-end }... job-end
//
// A record is its type (1 byte), the size of its payload (4), the payload, and the Adler-32 checksum of all
// of that (4). Only the resolution command, ESC "*o" number "M", is plain text: its ESC is its type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orvex::print_stream {

inline constexpr std::string_view kUniversalExit = "\x1B%-12345X";
inline constexpr std::string_view kPjlOpening =
    "\x1B%-12345X@PJL\n"
    "@PJL COMMENT \"Stand-in print stream 1. Made for inspection and tests; a printer does not read it.\"\n"
    "@PJL ENTER LANGUAGE=STANDIN\n";
inline constexpr std::string_view kEnterLanguage = "@PJL ENTER LANGUAGE=STANDIN";

// The engine's very first chunk, which is not part of a print file: the driver drops it, since its first
// three and last three bytes add up to 0 modulo 256.
inline constexpr uint8_t kFramingChunk[] = {'F', 'R', 'M', 'S', 'T', 'A', 'N', 'D', 'I', 'N', 1, 0, 0x1A};

enum class RecordType : uint8_t {
    kResolutionCommand = 0x1B,
    kJobStart = 'J',    // version, resolution mode
    kPageStart = 'P',   // page number from 1, width and length in 1/7200 inch
    kBlockStart = 'B',  // top in rows, row width in pixels, announced rows
    kRows = 'R',        // whole encoded rows, back to back
    kBlockEnd = 'b',    // rows handed over
    kPageEnd = 'p',     // page number
    kJobEnd = 'j',      // number of pages
};

inline constexpr uint32_t kVersion = 1;
inline constexpr size_t kRecordHeaderSize = 5;
inline constexpr size_t kChecksumSize = 4;

// Resolution modes: 0 = 300 dpi, 1 = 600 dpi, 2 = any other, which counts as 150 dpi where a length is
// needed.
inline constexpr uint32_t kResolutionModes = 3;
inline constexpr uint32_t kDpi[kResolutionModes] = {300, 600, 150};

// The unit of the engine's lengths.
inline constexpr uint32_t kUnitsPerInch = 7200;
constexpr uint32_t UnitsPerPixel(uint32_t resolutionMode) {
    return kUnitsPerInch / kDpi[resolutionMode];
}

// Returns how many rows span the print head, which is 11.7 inches wide. Each raster row runs along the paper
// feed, at one place across the head.
constexpr uint32_t HeadRows(uint32_t resolutionMode) {
    return kDpi[resolutionMode] * 117 / 10;
}

// The length of a page that spans the print head. A shorter page is centered under the head.
inline constexpr uint32_t kFullPageLength = 86616;

// Returns by how many rows a block that spans the whole head may be shorter or longer than announced: the
// driver moves a centered label by changing the fill on both sides by the print-head offset, 100 mm at most.
constexpr uint32_t HeadBlockSlack(uint32_t resolutionMode) {
    return 2 * (kDpi[resolutionMode] * 1000 / 254);
}

inline constexpr uint32_t kMaxRowWidth = 32768;
inline constexpr uint32_t kMaxBlockRows = 16384;

// Payload size from which on a rows record is closed.
inline constexpr size_t kRowsRecordSize = size_t{32} * 1024;

// Stores a number in little-endian order and returns the end of its 4 bytes.
inline uint8_t* StoreNumber(uint8_t* out, uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8) *out++ = static_cast<uint8_t>(number >> shift);
    return out;
}

// Returns the Adler-32 checksum; `state` is the checksum of the bytes before these, 1 if there are none.
constexpr uint32_t Adler32(const uint8_t* bytes, size_t size, uint32_t state = 1) {
    constexpr uint32_t kModulus = 65521;
    constexpr size_t kSumsWithoutOverflow = 5552;
    uint32_t a = state & 0xFFFF;
    uint32_t b = state >> 16;
    while (size > 0) {
        const size_t part = size < kSumsWithoutOverflow ? size : kSumsWithoutOverflow;
        for (size_t i = 0; i < part; ++i) {
            a += bytes[i];
            b += a;
        }
        a %= kModulus;
        b %= kModulus;
        bytes += part;
        size -= part;
    }
    return b << 16 | a;
}

}  // namespace orvex::print_stream
