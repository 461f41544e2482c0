// The plain definition of device modes: the defaults, written out by offset and value, and how a caller's
// record is merged into the printer's: whether it is taken, what the printer's record becomes, and what is
// written into the caller's.
//
// A caller's record is bytes, 72 at least. Those past the end that it declares read as zero and are not
// written.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "driver/config/device_mode.h"

namespace orvex::plain {

// Returns the record that a printer without a name has before validation when nothing is installed.
DeviceMode DefaultDeviceMode();

// Returns that record after validation.
DeviceMode ValidDeviceMode();

// Returns the valid record for a small label: 30 x 40 mm, centered, with that profile and no print-head
// offset.
DeviceMode SmallLabelMode(std::string_view profile);

// A public field that is taken from a caller's record when its bit of dmFields is set.
struct FlaggedField {
    uint32_t flag;
    size_t offset, size;
};
std::span<const FlaggedField> FlaggedFields();

// A label of the printer's list.
struct ListedLabel {
    int16_t number;
    const char* name;
    int16_t width, length;  // tenths of a millimeter
};

// Returns whether a record is taken: its size is that of a public layout, or it has a version.
bool IsTaken(std::span<const uint8_t> bytes);

// Returns the printer's record after a caller's was merged into it; `printers` is the one before.
DeviceMode Merged(const DeviceMode& printers, std::span<const uint8_t> record,
                  std::span<const ListedLabel> labels);

// Returns the caller's record afterwards: if it had no profile, it got the printer's; if it had no label of
// the printer's list, it got the printer's label.
std::vector<uint8_t> GivenBack(const DeviceMode& printers, std::span<const uint8_t> bytes);

// Returns the offset of the first byte in which two records differ, or their size. Bytes after the end of a
// form's or label's name do not matter.
size_t FirstDifference(DeviceMode a, DeviceMode b);

}  // namespace orvex::plain
