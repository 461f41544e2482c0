#include "tools/common/png_file.h"

#include <lodepng.h>

#include <cmath>
#include <fstream>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/common/number_text.h"
#include "tools/common/png_writer.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kUnitMeter = 1;  // of pHYs

// Owner of LodePNG's state.
class PngState {
  public:
    PngState() { lodepng_state_init(&state); }
    ~PngState() { lodepng_state_cleanup(&state); }
    PngState(const PngState&) = delete;
    PngState& operator=(const PngState&) = delete;

    LodePNGState state;
};

RasterImage ReadImage(PngReader& reader) {
    const PictureSize size = reader.Size();
    RasterImage image = MakeImage(size.width, size.height);
    reader.ReadAll(image.pixels.get(), size.width);
    image.density = size.density;
    return image;
}

}  // namespace

RasterImage DecodePng(std::span<const uint8_t> file) {
    PngReader reader(std::make_unique<std::istringstream>(std::string(file.begin(), file.end())), "");
    return ReadImage(reader);
}

PngReader OpenPng(const fs::path& path) {
    return PngReader(OpenFile(path), Utf8FromPath(path));
}

RasterImage LoadPng(const fs::path& path) {
    try {
        PngReader reader = OpenPng(path);
        return ReadImage(reader);
    } catch (const std::bad_alloc&) {
        throw PageError(Utf8FromPath(path) + " needs more memory than there is");
    }
}

std::vector<uint8_t> EncodePng(const Picture& picture, double pixelsPerInch) {
    PngState png;
    LodePNGInfo& info = png.state.info_png;
    info.color.colortype = png.state.info_raw.colortype = picture.channels == 1 ? LCT_GREY : LCT_RGB;
    png.state.encoder.auto_convert = 0;
    info.phys_defined = 1;
    info.phys_unit = kUnitMeter;
    info.phys_x = info.phys_y = static_cast<unsigned>(std::lround(pixelsPerInch / kMetersPerInch));
    unsigned char* encoded = nullptr;
    size_t size = 0;
    const unsigned code =
        lodepng_encode(&encoded, &size, picture.samples.data(), picture.width, picture.height, &png.state);
    const HeapArray<unsigned char> owner(encoded);
    if (code != 0) throw std::runtime_error(std::string("can't make a PNG: ") + lodepng_error_text(code));
    return {encoded, encoded + size};
}

void SavePng(const Picture& picture, double pixelsPerInch, const fs::path& path) {
    PngWriter writer(path, {.width = picture.width,
                            .height = picture.height,
                            .channels = picture.channels,
                            .pixelsPerInch = pixelsPerInch});
    writer.WriteRows(picture);
    writer.Complete();
}

}  // namespace orvex::tools
