#include "tests/plain/driver/thumbnail.h"

#include "tests/plain/driver/settings_text.h"
#include "tests/plain/plain_reduction.h"

namespace orvex::plain {

namespace {

int32_t Halvings(int32_t side, double limit) {
    int32_t count = 0;
    while (side > static_cast<int32_t>(limit)) side /= 2, ++count;
    return count;
}

int32_t ScaleOf(const PageBits& page, double mostWidth, double mostHeight) {
    if (!(mostWidth >= 100 && mostHeight >= 100)) return 0;
    return page.width / mostWidth > page.height / mostHeight ? Halvings(page.width, mostWidth)
                                                             : Halvings(page.height, mostHeight);
}

}  // namespace

std::string PictureText(int32_t width, int32_t height, const std::string& rgba) {
    return kPicture + std::to_string(width) + "x" + std::to_string(height) + ":" + rgba;
}

std::string Thumbnail(const Installation& installation, const PageBits& page, Log& log) {
    log.Info("add page thumb %dx%d", page.width, page.height);
    const double mostWidth = SettingNumber(installation, "[Driver]", "thumb_max_width=", 800, log);
    const double mostHeight = SettingNumber(installation, "[Driver]", "thumb_max_height=", 600, log);
    const int32_t scale = ScaleOf(page, mostWidth, mostHeight);
    const int32_t width = page.width >> scale, height = page.height >> scale;
    log.Info("thumb scale %d", scale);
    if (scale > 0) log.Info("scaled image %dx%d %d\n", width, height, 1 << scale);
    log.Info("pngencode 0");
    log.Info("generated base64 png");
    // The encoder makes a file of a picture without pixels, too, which nobody can decode.
    if (width == 0 || height == 0) return PictureText(0, 0, "");

    std::vector<uint32_t> pixels;
    for (size_t i = 0; i < static_cast<size_t>(page.width) * static_cast<size_t>(page.height); ++i) {
        const uint8_t* at = page.bytes.data() + 4 * i;
        pixels.push_back(at[0] | uint32_t{at[1]} << 8 | uint32_t{at[2]} << 16);
    }
    std::string rgba;
    for (const uint32_t pixel : Reduced(pixels, page.width, page.height, scale)) {
        for (int shift = 0; shift < 24; shift += 8) rgba += static_cast<char>(pixel >> shift);
        rgba += '\xFF';
    }
    return PictureText(width, height, rgba);
}

}  // namespace orvex::plain
