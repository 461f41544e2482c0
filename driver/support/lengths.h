// Units of length. Paper, labels and offsets are measured in tenths of a millimeter.
#pragma once

namespace orvex {

inline constexpr int kTenthsMmPerMm = 10;
inline constexpr int kTenthsMmPerInch = 254;

}  // namespace orvex
