// The shapes of letters, as rectangles of dots.
#pragma once

#include <string_view>
#include <vector>

namespace orvex::tools {

// A rectangle in dots, from the top left corner of its line of text.
struct LetterStroke {
    int x;
    int y;
    int width;
    int height;
};

// Returns the rectangles that make up a line of printable ASCII text.
std::vector<LetterStroke> LetterStrokes(std::string_view text);

// Returns the width of a line of printable ASCII text in dots.
int TextWidthDots(std::string_view text);

}  // namespace orvex::tools
