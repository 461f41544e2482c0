// Pictures: of 32 bits a pixel for pages, and of 8 bits a channel for previews, which are reduced, turned and
// drawn on.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

#include "driver/support/heap.h"
#include "tools/common/ink_model.h"

namespace orvex::tools {

// The reason why a page can't be printed, in words.
class PageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Pixels per meter along each axis.
struct PixelDensity {
    double x = 0;
    double y = 0;
};

struct PictureSize {
    uint32_t width = 0;                                  // pixels
    uint32_t height = 0;                                 // pixels
    std::optional<PixelDensity> density = std::nullopt;  // empty if the file does not say
};

// A picture of pixels 0x00RRGGBB, in rows from the top without gaps.
struct RasterImage {
    uint32_t width = 0;
    uint32_t height = 0;
    HeapArray<uint32_t> pixels = nullptr;
    std::optional<PixelDensity> density = std::nullopt;  // empty if the file does not say

    const uint32_t* Row(uint32_t y) const { return pixels.get() + size_t{y} * width; }
    uint32_t* Row(uint32_t y) { return pixels.get() + size_t{y} * width; }
};

// Returns an image of white pixels. Throws std::bad_alloc.
inline RasterImage MakeImage(uint32_t width, uint32_t height) {
    const size_t pixels = size_t{width} * height;
    RasterImage image{.width = width, .height = height};
    image.pixels = AllocateArray<uint32_t>(std::max<size_t>(pixels, 1));
    if (!image.pixels) throw std::bad_alloc();
    std::fill_n(image.pixels.get(), pixels, 0xFFFFFFu);
    return image;
}

// Puts a color into three samples: red, green, blue.
inline void StoreColor(uint8_t* samples, Rgb color) {
    samples[0] = color.red;
    samples[1] = color.green;
    samples[2] = color.blue;
}

struct Picture {
    Picture() = default;
    Picture(uint32_t pictureWidth, uint32_t pictureHeight, uint32_t channelCount)
        : width(pictureWidth),
          height(pictureHeight),
          channels(channelCount),
          samples(size_t{pictureWidth} * pictureHeight * channelCount) {}

    uint8_t* At(uint32_t x, uint32_t y) { return &samples[(size_t{y} * width + x) * channels]; }
    const uint8_t* At(uint32_t x, uint32_t y) const { return &samples[(size_t{y} * width + x) * channels]; }
    std::span<uint8_t> Line(uint32_t y) { return {At(0, y), size_t{width} * channels}; }

    uint32_t width = 0;            // pixels
    uint32_t height = 0;           // pixels
    uint32_t channels = 0;         // 3 = red, green, blue; 1 = gray
    std::vector<uint8_t> samples;  // line by line from the top, without gaps
};

// Returns the least scale at which `pixels` become at most `limit`, `scale` of them taken together.
uint32_t ScaleToFit(uint32_t pixels, uint32_t limit);

// A picture made smaller line by line: each group of scale x scale pixels becomes one, their mean rounded to
// nearest. Groups at the right and bottom edges may be smaller.
class Reducer {
  public:
    Reducer(uint32_t width, uint32_t height, uint32_t channels, uint32_t scale);

    // Returns the line to fill in before TakeLine(), width x channels samples.
    std::span<uint8_t> Line() { return line_; }
    void TakeLine();
    Picture Finish() { return std::move(picture_); }

  private:
    void CloseGroup();

    uint32_t height_;
    uint32_t scale_;
    uint32_t linesTaken_ = 0;
    uint32_t linesInGroup_ = 0;
    std::vector<uint8_t> line_;
    std::vector<uint32_t> sums_;  // of the group's lines, sample by sample
    Picture picture_;
};

// Turns a picture by a quarter clockwise: the first line becomes the rightmost column.
Picture TurnClockwise(const Picture& picture);

// Fills a rectangle, clipped to the picture, which has 3 channels.
void FillRectangle(Picture& picture, int64_t left, int64_t top, int64_t width, int64_t height, Rgb color);
// Draws lines of one pixel just inside the rectangle.
void OutlineRectangle(Picture& picture, int64_t left, int64_t top, int64_t width, int64_t height, Rgb color);
// Copies a picture into another one of as many channels, in which it must fit.
void PastePicture(Picture& picture, uint32_t left, uint32_t top, const Picture& pasted);

}  // namespace orvex::tools
