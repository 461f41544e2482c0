// Decoding of raster rows, the inverse of EncodeRow.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "engine/row_encoder.h"
#include "tools/orvexview/byte_reader.h"

namespace orvex::tools::view {

// Decodes one row at the front of `code` and removes its bytes. `row` is the row above, of the row width, and
// is overwritten. Returns null on success, and otherwise what is wrong with the command at the front of
// `code`.
inline const char* DecodeRow(std::span<const uint8_t>& code, std::span<uint32_t> row) {
    using namespace row_code;
    while (!row.empty()) {
        if (code.empty()) return "the record ends within a row";
        std::span<const uint8_t> rest = code.subspan(1);
        const int command = code[0] >> kCommandShift;
        size_t count = code[0] & kCountMask;
        if (count == 0) {
            if (rest.size() < kPixelSize) return "the record ends within a count";
            count = LittleEndian(rest);
            rest = rest.subspan(kPixelSize);
        }
        if (count == 0 || count > row.size()) return "the command does not fit into the row";
        const size_t pixels = command == kRun ? 1 : command == kLiterals ? count : 0;
        if (rest.size() / kPixelSize < pixels) return "the record ends within ink values";
        switch (command) {
            case kAbove:
                break;
            case kRun:
                std::fill_n(row.begin(), count, LittleEndian(rest));
                break;
            case kLiterals:
                for (size_t i = 0; i < count; ++i) row[i] = LittleEndian(rest.subspan(i * kPixelSize));
                break;
            default:
                return "no such row command";
        }
        row = row.subspan(count);
        code = rest.subspan(pixels * kPixelSize);
    }
    return nullptr;
}

}  // namespace orvex::tools::view
