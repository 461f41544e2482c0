// Pictures of 8 bits a channel, and what is done to them on the way to a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tools/orvexview/ink_model.h"

namespace orvex::tools::view {

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
    uint32_t channels = 0;         // 3 = red, green, blue; 1 = grey
    std::vector<uint8_t> samples;  // line by line from the top, without gaps
};

// How many pixels of a side become one, so that `pixels` of them give at most `limit`.
uint32_t ScaleToFit(uint32_t pixels, uint32_t limit);

// Takes lines one at a time and makes a picture in which every scale x scale pixels are one, their mean
// rounded to nearest. What is left over at the right and at the bottom makes smaller groups.
class Reducer {
  public:
    Reducer(uint32_t width, uint32_t height, uint32_t channels, uint32_t scale);

    // The line to fill in, width x channels samples.
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
    std::vector<uint32_t> sums_;
    std::vector<uint32_t> groupWidths_;
    Picture picture_;
};

// A quarter turn clockwise: the first line becomes the rightmost column.
Picture TurnClockwise(const Picture& picture);

// Parts that lie outside of the picture are left out.
void FillRectangle(Picture& picture, int64_t left, int64_t top, int64_t width, int64_t height, Rgb color);
// Lines of one pixel just inside the rectangle.
void OutlineRectangle(Picture& picture, int64_t left, int64_t top, int64_t width, int64_t height, Rgb color);
// Copies a picture of as many channels into another, which it fits into.
void PastePicture(Picture& picture, uint32_t left, uint32_t top, const Picture& pasted);

}  // namespace orvex::tools::view
