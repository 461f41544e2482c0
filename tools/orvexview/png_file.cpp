#include "tools/orvexview/png_file.h"

#include <lodepng.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "tools/common/output_file.h"

namespace orvex::tools::view {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kUnitMetre = 1;  // of the resolution
constexpr double kInchesPerMetre = 1 / 0.0254;

struct PngState {
    PngState() { lodepng_state_init(&state); }
    ~PngState() { lodepng_state_cleanup(&state); }
    PngState(const PngState&) = delete;
    PngState& operator=(const PngState&) = delete;

    LodePNGState state;
};

}  // namespace

std::vector<uint8_t> EncodePng(const Picture& picture, double pixelsPerInch) {
    PngState png;
    LodePNGInfo& info = png.state.info_png;
    info.color.colortype = png.state.info_raw.colortype = picture.channels == 1 ? LCT_GREY : LCT_RGB;
    png.state.encoder.auto_convert = 0;
    info.phys_defined = 1;
    info.phys_unit = kUnitMetre;
    info.phys_x = info.phys_y = static_cast<unsigned>(std::lround(pixelsPerInch * kInchesPerMetre));
    unsigned char* encoded = nullptr;
    size_t size = 0;
    const unsigned code =
        lodepng_encode(&encoded, &size, picture.samples.data(), picture.width, picture.height, &png.state);
    const std::unique_ptr<unsigned char, decltype(&free)> owner(encoded, &free);
    if (code != 0) throw std::runtime_error(std::string("can't make a PNG: ") + lodepng_error_text(code));
    return {encoded, encoded + size};
}

void WriteWholeFile(const fs::path& path, std::span<const uint8_t> bytes) {
    tools::WriteWholeFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace orvex::tools::view
