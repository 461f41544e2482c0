// Plain definition of the stand-in engine's row code, pixel by pixel.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orvex::plain {

using InkRow = std::vector<uint32_t>;

// Returns the code of a row, given the row above it, of the same width.
std::vector<uint8_t> EncodedRow(const InkRow& above, const InkRow& row);

// Decodes the row at the front of `code`, given the row above it, and removes its bytes. Returns nothing if
// that is not the code of a row of that width; `code` then begins with the command that is wrong.
std::optional<InkRow> DecodedRow(const InkRow& above, std::span<const uint8_t>& code);

}  // namespace orvex::plain
