#include "tools/common/png_writer.h"

#include <spng.h>

#include <cmath>
#include <new>
#include <stdexcept>
#include <string>

#include "tools/common/number_text.h"
#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace {

constexpr uint8_t kUnitMeter = 1;             // of pHYs
constexpr uint8_t kRelativeColorimetric = 1;  // of sRGB

int WriteBytes(spng_ctx*, void* user, void* bytes, size_t size) {
    auto& file = *static_cast<OutputFile*>(user);
    return file.Write({static_cast<const char*>(bytes), size}) ? 0 : SPNG_IO_ERROR;
}

}  // namespace

void PngWriter::Closer::operator()(spng_ctx* png) const {
    spng_ctx_free(png);
}

void PngWriter::Check(int code) {
    if (code == SPNG_OK) return;
    file_.CheckWrites();
    if (code == SPNG_EMEM) throw std::bad_alloc();
    throw std::runtime_error(Utf8FromPath(path_) + " can't be written: " + spng_strerror(code));
}

PngWriter::PngWriter(const std::filesystem::path& path, const PngSettings& settings)
    : path_(path), file_(path), png_(spng_ctx_new(SPNG_CTX_ENCODER)) {
    if (!png_) throw std::bad_alloc();
    Check(spng_set_png_stream(png_.get(), &WriteBytes, &file_));
    spng_ihdr header = {};
    header.width = settings.width;
    header.height = settings.height;
    header.bit_depth = 8;
    header.color_type = SPNG_COLOR_TYPE_TRUECOLOR;
    Check(spng_set_ihdr(png_.get(), &header));
    const auto density = static_cast<uint32_t>(std::lround(settings.pixelsPerInch / kMetersPerInch));
    spng_phys resolution = {.ppu_x = density, .ppu_y = density, .unit_specifier = kUnitMeter};
    Check(spng_set_phys(png_.get(), &resolution));
    if (settings.srgb) Check(spng_set_srgb(png_.get(), kRelativeColorimetric));
    Check(spng_encode_image(png_.get(), nullptr, 0, SPNG_FMT_PNG,
                            SPNG_ENCODE_PROGRESSIVE | SPNG_ENCODE_FINALIZE));
}

void PngWriter::WriteRow(std::span<const uint8_t> samples) {
    const int code = spng_encode_row(png_.get(), samples.data(), samples.size());
    if (code != SPNG_EOI) Check(code);  // the last row ends the file
}

void PngWriter::Complete() {
    file_.Complete();
}

}  // namespace orvex::tools
