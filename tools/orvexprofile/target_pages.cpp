#include "tools/orvexprofile/target_pages.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "tools/common/canvas.h"
#include "tools/common/number_text.h"

namespace orvex::tools::profile {

namespace {

// Millimeters around the patches: the letters are on the left, a title and the numbers above.
constexpr double kLeft = 9;
constexpr double kTop = 11;
constexpr double kEdge = 4;  // right and below

constexpr double kTextTop = 3;
constexpr double kDot = 0.3;  // side of a dot of the letters
constexpr int kLetterDots = 7;

// Returns a row's letters: A to Z, then AA, AB and so on.
std::string RowLetters(size_t row) {
    std::string letters;
    for (++row; row > 0; row = (row - 1) / 26)
        letters.insert(letters.begin(), static_cast<char>('A' + (row - 1) % 26));
    return letters;
}

uint32_t Pixels(double mm, uint32_t pixelsPerInch) {
    return static_cast<uint32_t>(std::lround(mm / kMmPerInch * pixelsPerInch));
}

uint32_t TextColor(std::span<const TargetPatch> patches) {
    const auto solid = std::find_if(patches.begin(), patches.end(), [](const TargetPatch& patch) {
        return patch.inks == PackInks(255, 0, 0, 0);
    });
    return solid->color;
}

}  // namespace

TargetLayout::TargetLayout(const TargetFormat& format, size_t patches)
    : patches_(patches),
      pixelsPerInch_(format.pixelsPerInch),
      width_(Pixels(format.widthMm, pixelsPerInch_)),
      height_(Pixels(format.lengthMm, pixelsPerInch_)),
      side_(Pixels(format.patchMm, pixelsPerInch_)),
      columns_(static_cast<size_t>(std::max((format.widthMm - kLeft - kEdge) / format.patchMm, 0.0))),
      rowsOfPage_(static_cast<size_t>(std::max((format.lengthMm - kTop - kEdge) / format.patchMm, 0.0))) {
    if (columns_ > 0 && rowsOfPage_ > 0) return;
    throw std::invalid_argument("a page of " + DecimalText(format.widthMm, 1) + " x " +
                                DecimalText(format.lengthMm, 1) + " mm has no room for a patch of " +
                                DecimalText(format.patchMm, 1) + " mm beside its margins");
}

size_t TargetLayout::Pages() const {
    return (Rows() + rowsOfPage_ - 1) / rowsOfPage_;
}

TargetLayout::Place TargetLayout::PlaceOf(size_t patch) const {
    const size_t row = patch / columns_;
    return {row / rowsOfPage_,
            Pixels(kLeft, pixelsPerInch_) + static_cast<uint32_t>(patch % columns_) * side_,
            Pixels(kTop, pixelsPerInch_) + static_cast<uint32_t>(row % rowsOfPage_) * side_};
}

std::string TargetLayout::LocationOf(size_t patch) const {
    return RowLetters(patch / columns_) + std::to_string(patch % columns_ + 1);
}

RasterImage TargetLayout::Draw(std::span<const TargetPatch> patches, size_t page) const {
    RasterImage image = MakeImage(width_, height_);
    Canvas canvas(image.pixels.get(), static_cast<int>(width_), static_cast<int>(height_), width_);
    const int side = static_cast<int>(side_), left = static_cast<int>(Pixels(kLeft, pixelsPerInch_)),
              top = static_cast<int>(Pixels(kTop, pixelsPerInch_)),
              dot = std::max(static_cast<int>(Pixels(kDot, pixelsPerInch_)), 1);
    const uint32_t ink = TextColor(patches);
    const size_t firstRow = page * rowsOfPage_, endRow = std::min(firstRow + rowsOfPage_, Rows());
    canvas.Text(left, static_cast<int>(Pixels(kTextTop, pixelsPerInch_)), dot,
                "Target " + std::to_string(page + 1) + "/" + std::to_string(Pages()) + ", " +
                    std::to_string(pixelsPerInch_) + " dpi",
                ink);
    for (size_t column = 0; column < columns_; ++column) {
        const std::string number = std::to_string(column + 1);
        canvas.Text(left + static_cast<int>(column) * side + (side - Canvas::TextWidth(number, dot)) / 2,
                    top - (kLetterDots + 2) * dot, dot, number, ink);
    }
    for (size_t row = firstRow; row < endRow; ++row) {
        const std::string letters = RowLetters(row);
        canvas.Text(left - Canvas::TextWidth(letters, dot) - 2 * dot,
                    top + static_cast<int>(row - firstRow) * side + (side - kLetterDots * dot) / 2, dot,
                    letters, ink);
    }
    const size_t end = std::min(endRow * columns_, patches_);
    for (size_t patch = firstRow * columns_; patch < end; ++patch) {
        const Place place = PlaceOf(patch);
        canvas.Fill(static_cast<int>(place.x), static_cast<int>(place.y), side, side, patches[patch].color);
    }
    return image;
}

}  // namespace orvex::tools::profile
