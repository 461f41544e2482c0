#include "tools/orvexprofile/ink_preview.h"

#include "driver/color/color_cache.h"
#include "tools/orvexview/png_file.h"

namespace orvex::tools::profile {

namespace {

constexpr double kMetresPerInch = 0.0254;
constexpr double kUsualPixelsPerInch = 96;

}  // namespace

tools::view::InkModel InkModelOf(PrintVariant variant) {
    return tools::view::InkModel(variant == PrintVariant::kAt600 ? 600 : 300);
}

InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant) {
    const tools::view::InkModel model = InkModelOf(variant);
    InkPictures print;
    print.composite = tools::view::Picture(picture.width, picture.height, 3);
    for (tools::view::Picture& ink : print.inks) ink = tools::view::Picture(picture.width, picture.height, 1);
    print.pixelsPerInch = picture.density ? picture.density->x * kMetresPerInch : kUsualPixelsPerInch;
    const size_t pixels = size_t{picture.width} * picture.height;
    for (size_t i = 0; i < pixels; ++i) {
        const uint32_t inks = LookupColor(picture.pixels[i]);
        const tools::view::Rgb color = model.OnPaper(inks);
        print.composite.samples[3 * i] = color.red;
        print.composite.samples[3 * i + 1] = color.green;
        print.composite.samples[3 * i + 2] = color.blue;
        for (int ink = 0; ink < kInks; ++ink) {
            print.inks[static_cast<size_t>(ink)].samples[i] = model.Gray(inks, ink);
        }
    }
    return print;
}

void SavePng(const tools::view::Picture& picture, double pixelsPerInch, const std::filesystem::path& path) {
    tools::view::WriteWholeFile(path, tools::view::EncodePng(picture, pixelsPerInch));
}

}  // namespace orvex::tools::profile
