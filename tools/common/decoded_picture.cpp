#include "tools/common/decoded_picture.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#include "tools/common/number_text.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_JPEG
#define STBI_ONLY_BMP
#define STBI_ONLY_GIF
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_MAX_DIMENSIONS 200000
#include <stb/stb_image.h>

namespace orvex::tools {

namespace {

constexpr char kConvert[] = "; convert it to PNG first";

const char* NameOf(PictureKind kind) {
    switch (kind) {
        case PictureKind::kJpeg:
            return "JPEG";
        case PictureKind::kBmp:
            return "BMP";
        case PictureKind::kGif:
            return "GIF";
        case PictureKind::kTiff:
            return "TIFF";
        case PictureKind::kWebp:
            return "WebP";
        default:
            return "picture";
    }
}

}  // namespace

void DecodedPicture::Fail(const std::string& problem) const {
    throw PageError(name_ + " " + problem);
}

DecodedPicture::DecodedPicture(std::vector<uint8_t> file, std::string name, uint64_t mostPixels)
    : file_(std::move(file)), name_(std::move(name)), kind_(KindOfPicture(file_)), samples_(nullptr, &free) {
    CheckKind();
    try {
        tags_ = ReadPictureTags(kind_, file_);
    } catch (const PageError& error) {
        Fail(error.what());
    }
    if (tags_.isCmyk)
        Fail("is a JPEG file in CMYK, and the driver takes RGB; convert it to sRGB first, as ./print does");
    ReadHeader(mostPixels);
}

void DecodedPicture::CheckKind() const {
    if (kind_ == PictureKind::kJpeg || kind_ == PictureKind::kBmp || kind_ == PictureKind::kGif) return;
    Fail(std::string("is a ") + NameOf(kind_) + " file, which is not read" + kConvert + ", as ./print does");
}

void DecodedPicture::ReadHeader(uint64_t mostPixels) {
    int width = 0, height = 0, channels = 0;
    if (!stbi_info_from_memory(file_.data(), static_cast<int>(file_.size()), &width, &height, &channels)) {
        Fail(std::string("is a ") + NameOf(kind_) +
             " file that is damaged or packed in a way that is not read" + kConvert);
    }
    const int64_t rows = std::abs(int64_t{height});  // those of a BMP are negative if they begin at the top
    if (width <= 0 || rows == 0) Fail(std::string("is a ") + NameOf(kind_) + " file without pixels");
    if (width > STBI_MAX_DIMENSIONS || rows > STBI_MAX_DIMENSIONS ||
        static_cast<uint64_t>(width) * static_cast<uint64_t>(rows) > mostPixels) {
        Fail("has " + SizeText(static_cast<uint64_t>(width), static_cast<uint64_t>(rows)) +
             " pixels, and a " + NameOf(kind_) + " file, which is decoded in memory, may have " +
             GroupedNumber(mostPixels) + kConvert);
    }
    gray_ = channels < 3;
    channels_ = channels == 2 || channels == 4 ? 4 : 3;
    Orient(static_cast<uint32_t>(width), static_cast<uint32_t>(rows));
}

void DecodedPicture::Orient(uint32_t width, uint32_t height) {
    const int orientation = tags_.orientation;
    const bool turned = orientation >= 5;
    const bool fromRight = orientation == 2 || orientation == 3 || orientation >= 7;
    const bool fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    const int64_t rowPixels = width;
    rowStart_ = (fromRight ? rowPixels - 1 : 0) + (fromBottom ? (height - 1) * rowPixels : 0);
    across_ = fromRight ? -1 : 1;
    down_ = fromBottom ? -rowPixels : rowPixels;
    size_ = {width, height, tags_.density};
    if (!turned) return;
    std::swap(across_, down_);
    std::swap(size_.width, size_.height);
    if (size_.density) std::swap(size_.density->x, size_.density->y);
}

EmbeddedColors DecodedPicture::Colors() const {
    EmbeddedColors colors;
    colors.profile = tags_.profile;
    colors.grayFile = gray_;
    return colors;
}

void DecodedPicture::Decode() {
    int width = 0, height = 0, channels = 0;
    samples_.reset(stbi_load_from_memory(file_.data(), static_cast<int>(file_.size()), &width, &height,
                                         &channels, static_cast<int>(channels_)));
    if (samples_ == nullptr) {
        const std::string reason = stbi_failure_reason();
        if (reason == "outofmem") throw std::bad_alloc();
        Fail(std::string("is a damaged ") + NameOf(kind_) + " file: " + reason);
    }
    file_ = {};
}

void DecodedPicture::ReadRow(uint32_t* pixels) {
    if (samples_ == nullptr) Decode();
    int64_t at = rowStart_;
    for (uint32_t x = 0; x < size_.width; ++x, at += across_) {
        const uint8_t* const sample = samples_.get() + at * static_cast<int64_t>(channels_);
        const uint32_t alpha = channels_ == 4 ? sample[3] : 255;
        pixels[x] = alpha << 24 | uint32_t{sample[0]} << 16 | uint32_t{sample[1]} << 8 | sample[2];
    }
    rowStart_ += down_;
    if (conversion_) conversion_(pixels, size_.width);
    std::transform(pixels, pixels + size_.width, pixels, OnLabel);
}

}  // namespace orvex::tools
