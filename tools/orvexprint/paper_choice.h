// The paper of a job: a free size, or a label of the printer's list.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "driver/config/device_mode.h"
#include "driver/config/device_mode_fields.h"
#include "driver/config/label_sizes.h"

namespace orvex::tools::print {

// Lengths in tenths of a millimetre, as public device modes have them.
struct PaperSize {
    int width;
    int length;

    bool operator==(const PaperSize&) const = default;
};

constexpr PaperSize kLeastPaper = {kPaperWidth.values.least, kPaperLength.values.least};
constexpr PaperSize kMostPaper = {kPaperWidth.values.most, kPaperLength.values.most};

// Reads "100x150mm" or "4x6in", millimetres without a unit: width, then length. Throws OptionError, with the
// range, for anything else and for sizes that the printer can't print.
PaperSize ParsePaperSize(std::string_view text);

// "100.0 x 150.0 mm"
std::string PaperText(PaperSize size);

// Asks for a free size. `defaults` is the printer's own record: where it names a label, the private label
// fields follow it, so that the driver does not take the size for one that the label outlives.
void ChoosePaperSize(DeviceMode& mode, PaperSize size, const DeviceMode& defaults);

// Asks for the label of that name, UTF-8, out of the printer's list. Throws OptionError that names the labels
// there are.
void ChooseLabel(DeviceMode& mode, std::string_view name, const std::vector<LabelSize>& labels);

// The label's size by its texts and units.
PaperSize SizeOf(const LabelSize& label);

// A label's name as UTF-8, and its size in its own units: "4 x 6 in".
std::string NameOf(const LabelSize& label);
std::string SizeTextOf(const LabelSize& label);

}  // namespace orvex::tools::print
