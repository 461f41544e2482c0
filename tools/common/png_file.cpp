#include "tools/common/png_file.h"

#include <lodepng.h>

#include <cmath>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/common/number_text.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

// The largest label is 297 mm wide and 902 mm long: 150 million pixels at 600 dpi.
constexpr uint64_t kMaxPixels = 160'000'000;
constexpr uint64_t kMaxRawBytes = uint64_t{1} << 30;
constexpr size_t kMaxFileBytes = size_t{1} << 30;
constexpr unsigned kWrongSignature = 28;  // LodePNG's code for a file that is not a PNG at all
constexpr unsigned kUnitMeter = 1;        // of pHYs
constexpr uint32_t kBytesPerPixel = 4;

// Owner of LodePNG's state.
class PngState {
  public:
    PngState() {
        lodepng_state_init(&state);
        state.decoder.read_text_chunks = 0;
        state.decoder.remember_unknown_chunks = 0;
    }
    ~PngState() { lodepng_state_cleanup(&state); }
    PngState(const PngState&) = delete;
    PngState& operator=(const PngState&) = delete;

    LodePNGState state;
};

[[noreturn]] void Fail(unsigned code) {
    if (code == kWrongSignature) throw PageError("is no PNG file");
    throw PageError(std::string("is a damaged PNG file: ") + lodepng_error_text(code));
}

// Reads the header, and limits the memory that decoding may take.
void Inspect(PngState& png, std::span<const uint8_t> file, unsigned& width, unsigned& height) {
    if (const unsigned code = lodepng_inspect(&width, &height, &png.state, file.data(), file.size()))
        Fail(code);
    const uint64_t bits = lodepng_get_bpp(&png.state.info_png.color);
    const uint64_t rowBytes = (uint64_t{width} * bits + 7) / 8;
    const uint64_t rawBytes = rowBytes * height;
    if (uint64_t{width} * height > kMaxPixels || rawBytes > kMaxRawBytes) {
        throw PageError("is larger than any label: " + std::to_string(width) + " x " +
                        std::to_string(height) + " pixels");
    }
    // Each row has a filter byte, and an interlaced file has up to twice as many rows.
    png.state.decoder.zlibsettings.max_output_size = static_cast<size_t>(2 * (rowBytes + 2) * height + 64);
}

// Mixes a channel's value with white; an `alpha` of 255 keeps the value.
uint32_t OverWhite(uint32_t value, uint32_t alpha) {
    return (value * alpha + 255 * (255 - alpha) + 127) / 255;
}

// Converts bytes R, G, B, A to pixels in the same memory.
void FlattenInPlace(uint8_t* bytes, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i) {
        uint8_t* const each = bytes + i * kBytesPerPixel;
        const uint32_t alpha = each[3];
        const uint32_t pixel =
            OverWhite(each[0], alpha) << 16 | OverWhite(each[1], alpha) << 8 | OverWhite(each[2], alpha);
        memcpy(each, &pixel, sizeof pixel);
    }
}

}  // namespace

RasterImage DecodePng(std::span<const uint8_t> file) {
    PngState png;
    png.state.info_raw.colortype = LCT_RGBA;
    unsigned width = 0;
    unsigned height = 0;
    Inspect(png, file, width, height);
    unsigned char* decoded = nullptr;
    const unsigned code = lodepng_decode(&decoded, &width, &height, &png.state, file.data(), file.size());
    HeapArray<uint8_t> bytes(decoded);
    if (code != 0) Fail(code);
    FlattenInPlace(bytes.get(), size_t{width} * height);
    RasterImage image{.width = width, .height = height};
    image.pixels.reset(reinterpret_cast<uint32_t*>(bytes.release()));
    const LodePNGInfo& info = png.state.info_png;
    if (info.phys_defined && info.phys_unit == kUnitMeter && info.phys_x > 0 && info.phys_y > 0) {
        image.density = PixelDensity{static_cast<double>(info.phys_x), static_cast<double>(info.phys_y)};
    }
    return image;
}

RasterImage LoadPng(const fs::path& path) {
    try {
        return DecodePng(ReadWholeFile(path, kMaxFileBytes));
    } catch (const PageError& error) {
        throw PageError(Utf8FromPath(path) + " " + error.what());
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
    WriteWholeFile(path, EncodePng(picture, pixelsPerInch));
}

}  // namespace orvex::tools
