// The paper of a job: a custom size, or a label of the printer's list.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "driver/config/device_mode.h"
#include "driver/config/label_sizes.h"

namespace orvex::tools::print {

// The size of a label in tenths of a millimeter, like in the public device mode.
struct PaperSize {
    int width;
    int length;

    bool operator==(const PaperSize&) const = default;
};

constexpr PaperSize kLeastPaper = {kPaperWidth.values.least, kPaperLength.values.least};
constexpr PaperSize kMostPaper = {kPaperWidth.values.most, kPaperLength.values.most};

// Parses width and length, "100x150mm" or "4x6in"; the default unit is the millimeter. Throws OptionError,
// which states the range, for any other text and for sizes that the printer can't print.
PaperSize ParsePaperSize(std::string_view text);

// Returns the size as text: "100.0 x 150.0 mm".
std::string PaperText(PaperSize size);

// Sets a custom size. `defaults` is the printer's default device mode: if it names a label, copies its
// private label fields, because the driver would otherwise replace the size by that label.
void ChoosePaperSize(DeviceMode& mode, PaperSize size, const DeviceMode& defaults);

// Sets the label of that name, UTF-8, from the printer's list. Throws OptionError that names all labels of
// the list.
void ChooseLabel(DeviceMode& mode, std::string_view name, const std::vector<LabelSize>& labels);

// Returns the label's size according to its texts and units.
PaperSize SizeOf(const LabelSize& label);

// Return a label's name as UTF-8, and its size in its own units: "4 x 6 in".
std::string NameOf(const LabelSize& label);
std::string SizeTextOf(const LabelSize& label);

}  // namespace orvex::tools::print
