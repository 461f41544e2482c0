#include "profile_tool/ink_preview.h"

#include "viewer/png_file.h"

namespace {

constexpr double kMetresPerInch = 0.0254;
constexpr double kUsualPixelsPerInch = 96;

}  // namespace

viewer::InkModel InkModelOf(PrintVariant variant) {
    return viewer::InkModel(variant == PrintVariant::At600 ? 600 : 300);
}

InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant) {
    const viewer::InkModel model = InkModelOf(variant);
    InkPictures print;
    print.composite = viewer::Picture(picture.width, picture.height, 3);
    for (viewer::Picture& ink : print.inks) ink = viewer::Picture(picture.width, picture.height, 1);
    print.pixelsPerInch = picture.density ? picture.density->x * kMetresPerInch : kUsualPixelsPerInch;
    const size_t pixels = size_t{picture.width} * picture.height;
    for (size_t i = 0; i < pixels; ++i) {
        const uint32_t inks = LookupColor(picture.pixels[i]);
        const viewer::Rgb color = model.OnPaper(inks);
        print.composite.samples[3 * i] = color.red;
        print.composite.samples[3 * i + 1] = color.green;
        print.composite.samples[3 * i + 2] = color.blue;
        for (int ink = 0; ink < kInks; ++ink) {
            print.inks[static_cast<size_t>(ink)].samples[i] = model.Grey(inks, ink);
        }
    }
    return print;
}

void SavePng(const viewer::Picture& picture, double pixelsPerInch, const std::filesystem::path& path) {
    viewer::WriteWholeFile(path, viewer::EncodePng(picture, pixelsPerInch));
}
