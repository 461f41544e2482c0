// The paper of a job: a custom size, or a label of the printer's list.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "driver/config/device_mode.h"
#include "driver/config/label_sizes.h"
#include "tools/common/picture.h"

namespace orvex::tools::print {

// The size of a label in tenths of a millimeter, like in the public device mode.
struct PaperSize {
    int width;
    int length;

    bool operator==(const PaperSize&) const = default;
};

constexpr PaperSize kLeastPaper = {kPaperWidth.values.least, kPaperLength.values.least};
constexpr PaperSize kMostPaper = {kPaperWidth.values.most, kPaperLength.values.most};

// The sizes that have names, for people.
constexpr char kNamedPapers[] = "A3 to A9, letter, legal, or page for the size of the first page";

// Parses a name, or width and length such as "100x150mm", "10,5 x 15 cm" or "4x6in"; the default unit is the
// millimeter. Throws OptionError, which states the range, for any other text and for sizes that the printer
// can't print.
PaperSize ParsePaperSize(std::string_view text);

// Returns the size of the label that a page fills, limited to what the printer can print. The label's length
// runs across a page that is printed in landscape.
PaperSize PaperOfPage(const PictureSize& page, const PixelDensity& density, bool landscape);

// Returns the size as text: "100.0 x 150.0 mm".
std::string PaperText(PaperSize size);

// Sets a custom size. `defaults` is the printer's default device mode: if it names a label, copies its
// private label fields, because the driver would otherwise replace the size by that label.
void ChoosePaperSize(DeviceMode& mode, PaperSize size, const DeviceMode& defaults);

// Sets the label of that name, UTF-8 in any case, or of that number, from the printer's list. Throws
// OptionError with the names that are most like it.
void ChooseLabel(DeviceMode& mode, std::string_view name, const std::vector<LabelSize>& labels);

// Returns the label's size according to its texts and units.
PaperSize SizeOf(const LabelSize& label);

// Return a label's name as UTF-8, and its size in its own units: "4 x 6 in".
std::string NameOf(const LabelSize& label);
std::string SizeTextOf(const LabelSize& label);

}  // namespace orvex::tools::print
