#include "tools/common/picture.h"

namespace orvex::tools {

uint32_t ScaleToFit(uint32_t pixels, uint32_t limit) {
    return std::max((pixels + limit - 1) / limit, 1u);
}

Reducer::Reducer(uint32_t width, uint32_t height, uint32_t channels, uint32_t scale)
    : height_(height),
      scale_(scale),
      line_(size_t{width} * channels),
      sums_(line_.size()),
      picture_((width + scale - 1) / scale, (height + scale - 1) / scale, channels) {}

void Reducer::TakeLine() {
    if (scale_ == 1) {
        std::copy(line_.begin(), line_.end(), picture_.At(0, linesTaken_++));
        return;
    }
    for (size_t i = 0; i < line_.size(); ++i) sums_[i] += line_[i];
    ++linesTaken_;
    ++linesInGroup_;
    if (linesInGroup_ == scale_ || linesTaken_ == height_) CloseGroup();
}

// Adds up the columns of each group.
void Reducer::CloseGroup() {
    const size_t channels = picture_.channels;
    uint8_t* out = picture_.At(0, (linesTaken_ - 1) / scale_);
    for (size_t first = 0; first < sums_.size(); first += scale_ * channels) {
        const size_t end = std::min(first + scale_ * channels, sums_.size());
        const auto pixels = static_cast<uint32_t>((end - first) / channels) * linesInGroup_;
        for (size_t channel = 0; channel < channels; ++channel) {
            uint32_t sum = pixels / 2;
            for (size_t i = first + channel; i < end; i += channels) sum += sums_[i];
            *out++ = static_cast<uint8_t>(sum / pixels);
        }
    }
    std::fill(sums_.begin(), sums_.end(), 0);
    linesInGroup_ = 0;
}

Picture TurnClockwise(const Picture& picture) {
    Picture turned(picture.height, picture.width, picture.channels);
    for (uint32_t y = 0; y < picture.height; ++y) {
        for (uint32_t x = 0; x < picture.width; ++x) {
            std::copy_n(picture.At(x, y), picture.channels, turned.At(picture.height - 1 - y, x));
        }
    }
    return turned;
}

void FillRectangle(Picture& picture, int64_t left, int64_t top, int64_t width, int64_t height, Rgb color) {
    const int64_t right = std::min<int64_t>(left + width, picture.width);
    const int64_t bottom = std::min<int64_t>(top + height, picture.height);
    for (int64_t y = std::max<int64_t>(top, 0); y < bottom; ++y) {
        for (int64_t x = std::max<int64_t>(left, 0); x < right; ++x) {
            StoreColor(picture.At(static_cast<uint32_t>(x), static_cast<uint32_t>(y)), color);
        }
    }
}

void OutlineRectangle(Picture& picture, int64_t left, int64_t top, int64_t width, int64_t height, Rgb color) {
    FillRectangle(picture, left, top, width, 1, color);
    FillRectangle(picture, left, top + height - 1, width, 1, color);
    FillRectangle(picture, left, top, 1, height, color);
    FillRectangle(picture, left + width - 1, top, 1, height, color);
}

void PastePicture(Picture& picture, uint32_t left, uint32_t top, const Picture& pasted) {
    const size_t lineSize = size_t{pasted.width} * pasted.channels;
    for (uint32_t y = 0; y < pasted.height; ++y) {
        std::copy_n(pasted.At(0, y), lineSize, picture.At(left, top + y));
    }
}

}  // namespace orvex::tools
