// Pictures of 8 bits a channel: reducing, turning and drawing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tools/common/ink_model.h"

namespace orvex::tools {

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
    std::vector<uint32_t> sums_;
    std::vector<uint32_t> groupWidths_;
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
