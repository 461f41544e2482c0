// Drawing on a page: rectangles and text, clipped to the page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace orvex::tools {

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kBlack = 0x000000;

constexpr int kTextLineDots = 12;  // from one line of text to the next; letters are about 7 dots high

// A rectangle in dots that is part of a letter, from the top left corner of its line of text.
struct LetterStroke {
    int x;
    int y;
    int width;
    int height;
};

// Returns the rectangles that make up a line of printable ASCII text.
std::vector<LetterStroke> LetterStrokes(std::string_view text);

class Canvas {
  public:
    // `pixels` are 0x00RRGGBB; `stride` is the number of pixels from row to row.
    Canvas(uint32_t* pixels, int width, int height, size_t stride)
        : pixels_(pixels), width_(width), height_(height), stride_(stride) {}

    int Width() const { return width_; }
    int Height() const { return height_; }

    void Fill(int x, int y, int width, int height, uint32_t color);
    // Draws the outline of a rectangle, `thick` pixels inwards.
    void Frame(int x, int y, int width, int height, int thick, uint32_t color);

    // Draws a line of text from its top left corner; `scale` is the side of a dot in pixels. Characters other
    // than printable ASCII appear as "?".
    void Text(int x, int y, int scale, std::string_view text, uint32_t color);
    static int TextWidth(std::string_view text, int scale);

  private:
    uint32_t* pixels_;
    int width_;
    int height_;
    size_t stride_;
};

}  // namespace orvex::tools
