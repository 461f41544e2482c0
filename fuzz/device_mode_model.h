// The plain definition of what becomes of a caller's device mode: whether it is taken, what the printer's
// record is then, and what is written into the caller's.
//
// A caller's record is bytes, 72 at least. Those past the end that it declares read as zero and are not
// written.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "driver/config/device_mode.h"

namespace orvex::fuzz {

// A label of the printer's list.
struct ListedLabel {
    int16_t number;
    const char* name;
    int16_t width, length;  // tenths of a millimetre
};

// Whether a record is taken: its size is that of a public layout, or it states a version.
bool IsTaken(std::span<const uint8_t> bytes);

// The printer's record, `printers` before, after a caller's was merged into it.
DeviceMode Merged(const DeviceMode& printers, std::span<const uint8_t> record,
                  std::span<const ListedLabel> labels);

// The caller's record afterwards: one without a profile got the printer's, one without a label of the
// printer's list the printer's label.
std::vector<uint8_t> GivenBack(const DeviceMode& printers, std::span<const uint8_t> bytes);

// The offset of the first byte that tells two records apart, their size when none does. What stands behind
// the end of a form's or label's name means nothing.
size_t FirstDifference(DeviceMode a, DeviceMode b);

}  // namespace orvex::fuzz
