#include "tools/common/png_reader.h"

#include <spng.h>

#include <algorithm>
#include <cstring>

#include "tools/common/number_text.h"

namespace orvex::tools {

namespace {

// The largest label is 297 mm wide and 902 mm long: 150 million pixels at 600 dpi.
constexpr uint64_t kMaxPixels = 160'000'000;
constexpr uint32_t kMaxSide = 200'000;  // bounds a row, whatever the picture's shape
constexpr size_t kMaxChunkBytes = size_t{16} << 20;
constexpr size_t kMaxChunksBytes = size_t{32} << 20;
constexpr uint8_t kUnitMeter = 1;  // of pHYs

constexpr size_t kStartBytes = 4096;  // of an SVG, in which its first tag is looked for

int ReadBytes(spng_ctx*, void* user, void* bytes, size_t size) {
    auto& file = *static_cast<std::istream*>(user);
    if (file.read(static_cast<char*>(bytes), static_cast<std::streamsize>(size))) return 0;
    return file.bad() ? SPNG_IO_ERROR : SPNG_IO_EOF;
}

// Returns 0xAARRGGBB for the bytes R, G, B, A, read as a number.
uint32_t ArgbOf(uint32_t rgba) {
    return (rgba & 0xFF00FF00) | (rgba & 0xFF) << 16 | (rgba >> 16 & 0xFF);
}

void ExpandRgb(const uint8_t* samples, uint32_t* pixels, size_t count) {
    for (size_t i = 0; i < count; ++i, samples += 3)
        pixels[i] = uint32_t{samples[0]} << 16 | uint32_t{samples[1]} << 8 | samples[2];
}

void ExpandGray(const uint8_t* samples, uint32_t* pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) pixels[i] = samples[i] * 0x010101u;
}

// Returns what a file is that is no PNG, by its first bytes, and what to do with it; `noPng` if that can't be
// told.
std::string DescribeOther(std::istream& file, const char* noPng) {
    constexpr char kAdvice[] = "; ./print renders it first";
    std::string start(kStartBytes, '\0');
    file.clear();
    file.seekg(0);
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<size_t>(file.gcount()));
    if (start.starts_with("%PDF-")) return std::string("is a PDF") + kAdvice;
    const size_t first = start.find_first_not_of("\xEF\xBB\xBF \t\r\n");  // after a mark of UTF-8
    if (first != std::string::npos && start[first] == '<' && start.find("<svg") != std::string::npos)
        return std::string("is an SVG") + kAdvice;
    return noPng;
}

}  // namespace

void PngReader::Closer::operator()(spng_ctx* png) const {
    spng_ctx_free(png);
}

void PngReader::Fail(const std::string& problem) const {
    throw PageError(prefix_ + problem);
}

void PngReader::Check(int code) const {
    if (code == SPNG_OK) return;
    if (code == SPNG_ESIGNATURE) Fail(DescribeOther(*file_, noPng_));
    if (code == SPNG_IO_ERROR) Fail("can't be read");
    if (code == SPNG_EMEM) Fail("needs more memory than there is");
    if (code == SPNG_EUSER_WIDTH || code == SPNG_EUSER_HEIGHT)
        Fail("is larger than any label: a side has more than " + std::to_string(kMaxSide) + " pixels");
    Fail(std::string("is a damaged PNG file: ") + spng_strerror(code));
}

PngReader::PngReader(std::unique_ptr<std::istream> file, const std::string& name, size_t windowPixels,
                     const char* noPng)
    : file_(std::move(file)),
      prefix_(name.empty() ? "" : name + " "),
      noPng_(noPng),
      windowPixels_(windowPixels) {
    if (file_->peek() == std::istream::traits_type::eof()) Fail("is empty");
    Begin();
}

void PngReader::Begin() {
    png_.reset(spng_ctx_new(0));
    if (!png_) throw std::bad_alloc();
    spng_set_image_limits(png_.get(), kMaxSide, kMaxSide);
    spng_set_chunk_limits(png_.get(), kMaxChunkBytes, kMaxChunksBytes);
    Check(spng_set_png_stream(png_.get(), &ReadBytes, file_.get()));
    ReadHeader();
    ChooseFormat();
}

void PngReader::ReadHeader() {
    spng_ihdr header = {};
    Check(spng_get_ihdr(png_.get(), &header));
    size_.width = header.width;
    size_.height = header.height;
    interlaced_ = header.interlace_method != SPNG_INTERLACE_NONE;
    if (uint64_t{header.width} * header.height > kMaxPixels)
        Fail("is larger than any label: " + SizeText(header.width, header.height) + " pixels");
    spng_phys density = {};
    const int code = spng_get_phys(png_.get(), &density);
    if (code == SPNG_ECHUNKAVAIL) return;
    Check(code);
    if (density.unit_specifier == kUnitMeter && density.ppu_x > 0 && density.ppu_y > 0) {
        size_.density = PixelDensity{static_cast<double>(density.ppu_x), static_cast<double>(density.ppu_y)};
    }
}

// Opaque gray and RGB files are decoded as they are, since libspng is slower at making them RGBA.
void PngReader::ChooseFormat() {
    spng_ihdr header = {};
    Check(spng_get_ihdr(png_.get(), &header));
    spng_trns transparent = {};
    int format = SPNG_FMT_RGBA8;
    if (!interlaced_ && header.bit_depth <= 8 && spng_get_trns(png_.get(), &transparent) != SPNG_OK) {
        if (header.color_type == SPNG_COLOR_TYPE_GRAYSCALE) {
            format = SPNG_FMT_G8;
            channels_ = 1;
        } else if (header.color_type == SPNG_COLOR_TYPE_TRUECOLOR) {
            format = SPNG_FMT_RGB8;
            channels_ = 3;
        }
    }
    Check(spng_decode_image(png_.get(), nullptr, 0, format, SPNG_DECODE_PROGRESSIVE | SPNG_DECODE_TRNS));
    if (channels_ != 4) samples_.resize(size_t{size_.width} * channels_);
}

EmbeddedColors PngReader::Colors() const {
    EmbeddedColors colors;
    spng_ihdr header = {};
    spng_get_ihdr(png_.get(), &header);
    colors.grayFile = (header.color_type & SPNG_COLOR_TYPE_TRUECOLOR) == 0;
    uint8_t intent = 0;
    colors.srgb = spng_get_srgb(png_.get(), &intent) == SPNG_OK;
    spng_iccp profile = {};
    if (spng_get_iccp(png_.get(), &profile) == SPNG_OK)
        colors.profile.assign(profile.profile, profile.profile + profile.profile_len);
    double gamma = 0;
    if (spng_get_gama(png_.get(), &gamma) == SPNG_OK) colors.gamma = gamma;
    spng_chrm chrm = {};
    if (spng_get_chrm(png_.get(), &chrm) == SPNG_OK) {
        colors.primaries = {{chrm.white_point_x, chrm.white_point_y},
                            {chrm.red_x, chrm.red_y},
                            {chrm.green_x, chrm.green_y},
                            {chrm.blue_x, chrm.blue_y}};
    }
    return colors;
}

bool PngReader::Decode(void* samples, size_t size) {
    const int code = spng_decode_row(png_.get(), samples, size);
    if (code == SPNG_OK) return false;
    if (code != SPNG_EOI) Check(code);
    Check(spng_decode_chunks(png_.get()));
    return true;
}

void PngReader::FinishRgba(uint32_t* pixels) const {
    const size_t count = size_.width;
    if (conversion_) {
        std::transform(pixels, pixels + count, pixels, ArgbOf);
        conversion_(pixels, count);
        std::transform(pixels, pixels + count, pixels, OnLabel);
    } else {
        std::transform(pixels, pixels + count, pixels, [](uint32_t rgba) { return OnLabel(ArgbOf(rgba)); });
    }
}

void PngReader::ReadRow(uint32_t* pixels) {
    const size_t width = size_.width;
    if (interlaced_) {
        std::copy_n(NextOfWindow(), width, pixels);
        return;
    }
    ++nextRow_;
    if (channels_ == 4) {
        Decode(pixels, width * sizeof *pixels);
        FinishRgba(pixels);
        return;
    }
    Decode(samples_.data(), samples_.size());
    if (channels_ == 3) {
        ExpandRgb(samples_.data(), pixels, width);
    } else {
        ExpandGray(samples_.data(), pixels, width);
    }
    if (conversion_) conversion_(pixels, width);
}

void PngReader::ReadAll(uint32_t* pixels, size_t stride) {
    if (!interlaced_) {
        for (uint32_t y = 0; y < size_.height; ++y) ReadRow(pixels + y * stride);
        return;
    }
    DecodePasses(0, size_.height, pixels, stride);
}

// Each pass fills in some of the pixels, and all of them are there after the last one.
void PngReader::DecodePasses(uint32_t first, uint32_t count, uint32_t* pixels, size_t stride) {
    std::vector<uint32_t> other(size_.width);  // takes the rows that are not kept
    bool last = false;
    while (!last) {
        spng_row_info row = {};
        const int code = spng_get_row_info(png_.get(), &row);
        if (code != SPNG_EOI) Check(code);
        const bool kept = row.row_num >= first && row.row_num - first < count;
        last = Decode(kept ? pixels + (row.row_num - first) * stride : other.data(),
                      size_.width * sizeof *pixels);
    }
    for (uint32_t y = 0; y < count; ++y) FinishRgba(pixels + y * stride);
}

const uint32_t* PngReader::NextOfWindow() {
    if (nextRow_ == windowTop_ + window_.height) {
        if (nextRow_ > 0) {
            file_->clear();
            file_->seekg(0);
            Begin();
        }
        const auto most = static_cast<uint32_t>(std::max<size_t>(windowPixels_ / size_.width, 1));
        window_ = {};
        window_ = MakeImage(size_.width, std::min(most, size_.height - nextRow_));
        windowTop_ = nextRow_;
        DecodePasses(windowTop_, window_.height, window_.pixels.get(), size_.width);
    }
    return window_.Row(nextRow_++ - windowTop_);
}

}  // namespace orvex::tools
