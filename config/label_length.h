// Lengths of labels: decimal text in the label's own unit, and tenths of a millimetre.
#pragma once

#include <cstdint>
#include <string_view>

// The length that `text` gives in `units` (0 millimetres, 1 inches, other tenths of a millimetre) in whole
// tenths of a millimetre, rounded. 0 for a text that is no number and for a length that 16 bits don't hold.
int16_t LabelLengthTenthsMm(std::string_view text, uint32_t units);
