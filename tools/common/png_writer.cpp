#include "tools/common/png_writer.h"

#include <spng.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <new>
#include <stdexcept>
#include <string>

#include "tools/common/number_text.h"
#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace {

constexpr uint8_t kUnitMeter = 1;             // of pHYs
constexpr uint8_t kRelativeColorimetric = 1;  // of sRGB
constexpr std::string_view kSoftwareKeyword = "Software";
constexpr size_t kHeadBytes = 256;  // of a file, at least those before its pixels

// Filtered rows of pages are runs. Looking for longer matches, too, made the files of labels a quarter
// smaller and took half as long again.
constexpr int kStrategy = Z_RLE;

int WriteBytes(spng_ctx*, void* user, void* bytes, size_t size) {
    auto& file = *static_cast<OutputFile*>(user);
    return file.Write({static_cast<const char*>(bytes), size}) ? 0 : SPNG_IO_ERROR;
}

uint32_t DistanceFromZero(int difference) {
    const auto sample = static_cast<uint8_t>(difference);
    return sample < 128 ? sample : 256u - sample;
}

// Returns libspng's choice of the filter that compresses a row best, the one with the least sum of distances.
// libspng's own search takes several times as long. Filters with three neighbors make pictures of pages
// little smaller, for much time.
int BestFilter(std::span<const uint8_t> row, const uint8_t* above, size_t channels) {
    // Labels repeat many rows.
    if (std::equal(row.begin(), row.end(), above)) return SPNG_FILTER_CHOICE_UP;
    const uint8_t* const samples = row.data();
    const size_t size = row.size();
    uint32_t none = 0, sub = 0, up = 0;
    for (size_t i = 0; i < size; ++i) none += DistanceFromZero(samples[i]);
    for (size_t i = 0; i < size; ++i) up += DistanceFromZero(samples[i] - above[i]);
    for (size_t i = channels; i < size; ++i) sub += DistanceFromZero(samples[i] - samples[i - channels]);
    for (size_t i = 0; i < channels; ++i) sub += DistanceFromZero(samples[i]);
    if (none <= sub && none <= up) return SPNG_FILTER_CHOICE_NONE;
    return sub <= up ? SPNG_FILTER_CHOICE_SUB : SPNG_FILTER_CHOICE_UP;
}

}  // namespace

bool IsPngMadeBy(std::string_view software, const std::filesystem::path& path) {
    std::string head(kHeadBytes, '\0');
    std::ifstream(path, std::ios::binary).read(head.data(), kHeadBytes);
    // Starts with the last byte of the chunk's size, since no program's name takes more than one.
    std::string chunk(1, static_cast<char>(kSoftwareKeyword.size() + 1 + software.size()));
    chunk.append("tEXt").append(kSoftwareKeyword).append(1, '\0').append(software);
    return head.find(chunk) != std::string::npos;
}

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
    : path_(path),
      file_(path),
      png_(spng_ctx_new(SPNG_CTX_ENCODER)),
      channels_(settings.channels),
      above_(size_t{settings.width} * settings.channels) {
    if (!png_) throw std::bad_alloc();
    Check(spng_set_png_stream(png_.get(), &WriteBytes, &file_));
    Check(spng_set_option(png_.get(), SPNG_IMG_COMPRESSION_STRATEGY, kStrategy));
    Describe(settings);
}

// Writes everything before the pixels.
void PngWriter::Describe(const PngSettings& settings) {
    spng_ihdr header = {};
    header.width = settings.width;
    header.height = settings.height;
    header.bit_depth = 8;
    header.color_type = settings.channels == 1 ? SPNG_COLOR_TYPE_GRAYSCALE : SPNG_COLOR_TYPE_TRUECOLOR;
    Check(spng_set_ihdr(png_.get(), &header));
    const auto density = static_cast<uint32_t>(std::lround(settings.pixelsPerInch / kMetersPerInch));
    spng_phys resolution = {.ppu_x = density, .ppu_y = density, .unit_specifier = kUnitMeter};
    Check(spng_set_phys(png_.get(), &resolution));
    if (settings.srgb) Check(spng_set_srgb(png_.get(), kRelativeColorimetric));
    std::string software(settings.software);
    if (!software.empty()) {
        spng_text text = {};
        text.type = SPNG_TEXT;
        text.length = software.size();
        text.text = software.data();
        kSoftwareKeyword.copy(text.keyword, sizeof text.keyword - 1);
        Check(spng_set_text(png_.get(), &text, 1));
    }
    Check(spng_encode_image(png_.get(), nullptr, 0, SPNG_FMT_PNG,
                            SPNG_ENCODE_PROGRESSIVE | SPNG_ENCODE_FINALIZE));
}

void PngWriter::WriteRow(std::span<const uint8_t> samples) {
    if (samples.size() != above_.size()) Check(SPNG_EBUFSIZ);
    Check(spng_set_option(png_.get(), SPNG_FILTER_CHOICE, BestFilter(samples, above_.data(), channels_)));
    std::copy(samples.begin(), samples.end(), above_.begin());
    const int code = spng_encode_row(png_.get(), samples.data(), samples.size());
    if (code != SPNG_EOI) Check(code);  // the last row ends the file
}

void PngWriter::WriteRows(const Picture& rows) {
    const size_t size = size_t{rows.width} * rows.channels;
    for (uint32_t y = 0; y < rows.height; ++y) WriteRow({rows.At(0, y), size});
}

void PngWriter::Complete() {
    file_.Complete();
}

}  // namespace orvex::tools
