#include "tools/orvexprofile/ink_preview.h"

#include "driver/color/color_cache.h"
#include "tools/common/number_text.h"

namespace orvex::tools::profile {

namespace {

constexpr double kUsualPixelsPerInch = 96;

}  // namespace

InkModel InkModelOf(PrintVariant variant) {
    return InkModel(variant == PrintVariant::kAt600 ? 600 : 300);
}

InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant) {
    const InkModel model = InkModelOf(variant);
    InkPictures print;
    print.composite = Picture(picture.width, picture.height, 3);
    for (Picture& ink : print.inks) ink = Picture(picture.width, picture.height, 1);
    print.pixelsPerInch = picture.density ? picture.density->x * kMetersPerInch : kUsualPixelsPerInch;
    const size_t pixels = size_t{picture.width} * picture.height;
    for (size_t i = 0; i < pixels; ++i) {
        const uint32_t inks = LookupColor(picture.pixels[i]);
        const Rgb color = model.OnPaper(inks);
        print.composite.samples[3 * i] = color.red;
        print.composite.samples[3 * i + 1] = color.green;
        print.composite.samples[3 * i + 2] = color.blue;
        for (int ink = 0; ink < kInks; ++ink) {
            print.inks[static_cast<size_t>(ink)].samples[i] = model.Gray(inks, ink);
        }
    }
    return print;
}

}  // namespace orvex::tools::profile
