// The place of a picture or a metafile on a page: it is refused with a sentence, or its place is within the
// page, and the frame of a metafile is that place but for the pixel that the page may cut off.

#include <cstdlib>

#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/tools/common/byte_maker.h"
#include "tools/orvexprint/metafile_page.h"

namespace orvex::fuzz {

using namespace tools;
using namespace tools::print;
namespace {

constexpr uint32_t kMostPagePx = 22000;
constexpr uint32_t kMostPicturePx = 1 << 16;

PagePlacing PlacingOf(FuzzInput& input) {
    const uint8_t choices = input.Byte();
    PagePlacing placing;
    placing.dpi = (choices & 1) != 0 ? 600 : 300;
    placing.fit = (choices & 2) != 0;
    placing.turning = (choices & 4) != 0 ? Turning::kToFit : Turning::kNever;
    placing.pageWidth = input.Number<uint16_t>() % kMostPagePx + 1;
    placing.pageHeight = input.Number<uint16_t>() % kMostPagePx + 1;
    placing.untaggedDpi = input.Number<uint16_t>() % 9991 + 10.0;
    return placing;
}

// Returns the size of a picture, with a density that files can state, or with none.
PictureSize PictureOf(FuzzInput& input) {
    PictureSize size = {input.Number<uint32_t>() % kMostPicturePx + 1,
                        input.Number<uint32_t>() % kMostPicturePx + 1, std::nullopt};
    const auto across = input.Number<uint32_t>();
    const auto down = input.Number<uint32_t>();
    if (across != 0 && down != 0) size.density = PixelDensity{1.0 * across, 1.0 * down};
    return size;
}

void CheckFrame(const RECT& frame, const PagePlacing& placing, const PagePlace& place) {
    const uint32_t left = place.turned ? place.top : place.left;
    const uint32_t top = place.turned ? placing.pageWidth - place.left - place.Width() : place.top;
    REQUIRE(frame.left == static_cast<LONG>(left) && frame.top == static_cast<LONG>(top));
    REQUIRE(frame.right - frame.left - static_cast<LONG>(place.across.length) <= 2);
    REQUIRE(frame.bottom - frame.top - static_cast<LONG>(place.down.length) <= 2);
    REQUIRE(frame.right > frame.left && frame.bottom > frame.top);
}

void CheckPlace(const PictureSize& size, const PagePlacing& placing, bool isMetafile) {
    try {
        const PagePlace place = FindPlace(size, placing);
        REQUIRE(place.Width() > 0 && place.left + place.Width() <= placing.pageWidth);
        REQUIRE(place.Height() > 0 && place.top + place.Height() <= placing.pageHeight);
        REQUIRE(place.across.used <= size.width && place.down.used <= size.height);
        const bool resampled = place.across.scale != 1 || place.down.scale != 1;
        REQUIRE(ResamplingText(size, placing, place).empty() != resampled);
        if (isMetafile) CheckFrame(FrameAt(size, placing, place), placing, place);
    } catch (const PageError& error) {
        REQUIRE(*error.what() != '\0');
    }
}

// Checks a metafile of any frame, by itself and as a page of a spool file.
void CheckMetafile(FuzzInput& input, const PagePlacing& placing) {
    Metafile metafile;
    const auto number = [&] { return static_cast<LONG>(input.Number<uint32_t>()); };
    metafile.frame = {number(), number(), number(), number()};
    metafile.device = {number(), number()};
    metafile.deviceMm = {number(), number()};
    if (metafile.frame.right <= metafile.frame.left || metafile.frame.bottom <= metafile.frame.top) return;
    CheckPlace(SizeOf(metafile, placing.dpi), placing, true);
    const RECT frame = FrameOnPage(metafile, placing.pageWidth, placing.pageHeight, placing.dpi);
    REQUIRE(frame.left <= frame.right && frame.top <= frame.bottom);
    REQUIRE(std::abs(frame.left) <= 1 << 27 && std::abs(frame.bottom) <= 1 << 27);
}

// Returns the bytes of a placing on a page of 1181 x 1772 pixels.
std::string PlacingSeed(uint8_t choices) {
    return std::string(1, static_cast<char>(choices)) + ByteMaker().U16(1180).U16(1771).U16(290).Bytes();
}

}  // namespace

void FuzzPlacement(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    const PagePlacing placing = PlacingOf(choices);
    if (choices.Flag()) {
        CheckMetafile(choices, placing);
    } else {
        CheckPlace(PictureOf(choices), placing, false);
    }
}

Seeds PlacementSeeds() {
    const auto picture = [](uint32_t width, uint32_t height, uint32_t density) {
        return std::string(1, '\0') +
               ByteMaker().U32(width - 1).U32(height - 1).U32(density).U32(density).Bytes();
    };
    const std::string metafile =
        '\1' + ByteMaker().U32(0).U32(0).U32(10000).U32(15000).U32(1181).U32(1772).U32(100).U32(150).Bytes();
    return {PlacingSeed(0) + picture(1182, 1773, 11811),
            PlacingSeed(4) + picture(1772, 1181, 11811),
            PlacingSeed(6) + picture(203, 100, 0),
            PlacingSeed(3) + picture(60000, 1, 100),
            PlacingSeed(0) + metafile,
            PlacingSeed(6) + metafile};
}

}  // namespace orvex::fuzz
