// JPEG, BMP and GIF files: a file is refused with a sentence, or it has a size within the limit, a density if
// it states one, and every row of its pixels.

#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/made_pictures.h"
#include "tools/common/decoded_picture.h"

namespace orvex::fuzz {

using namespace tools;
namespace {

constexpr uint64_t kMostPixels = 1 << 14;

}  // namespace

void FuzzPicture(std::span<const uint8_t> input) {
    try {
        DecodedPicture picture({input.begin(), input.end()}, "it", kMostPixels);
        const PictureSize size = picture.Size();
        REQUIRE(size.width > 0 && size.height > 0);
        REQUIRE(uint64_t{size.width} * size.height <= kMostPixels);
        REQUIRE(!size.density || (size.density->x > 0 && size.density->y > 0));
        REQUIRE(picture.Colors().profile.size() <= input.size());
        std::vector<uint32_t> row(size.width);
        for (uint32_t y = 0; y < size.height; ++y) {
            picture.ReadRow(row.data());
            for (const uint32_t pixel : row) REQUIRE(pixel <= 0xFFFFFF);
        }
    } catch (const PageError& error) {
        REQUIRE(std::string_view(error.what()).starts_with("it "));
    }
}

Seeds PictureSeeds() {
    tools::Picture art(17, 9, 3);
    for (size_t i = 0; i < art.samples.size(); ++i) art.samples[i] = static_cast<uint8_t>(i * i);
    tools::Picture clear(4, 4, 4);
    for (size_t i = 0; i < clear.samples.size(); ++i) clear.samples[i] = static_cast<uint8_t>(i * 5);
    const std::string jpeg = WithJfifDensity(MakeJpeg(art), 1, 300, 300);
    return {jpeg,
            WithSegment(MakeJpeg(art, 50), 0xE1, MakeExif(6, 3000, 3000)),
            WithSegment(jpeg, 0xE2, std::string("ICC_PROFILE\0\1\1profile", 21)),
            MakeJpeg(MakePicture(8, 8, 1, Samples(64, 77))),
            MakeBmp(art, 11811),
            MakeBmp(clear),
            MakeGif(3, 2, {0, 1, 2, 3, 2, 1}, {0xFF0000, 0x00FF00, 0x0000FF, 0x123456}, 1),
            "II*"};
}

}  // namespace orvex::fuzz
