#include "tools/common/letters.h"

#include <stb/stb_easy_font.h>

#include <string>

namespace orvex::tools {

namespace {

// A corner of the rectangles that the font draws letters with, four to a rectangle.
struct Corner {
    float x;
    float y;
    float z;
    unsigned char color[4];
};

constexpr size_t kCornersPerLetter = 64;  // more than any letter has

}  // namespace

std::vector<LetterStroke> LetterStrokes(std::string_view text) {
    std::string line(text);  // the font takes a writable text
    std::vector<Corner> corners(line.size() * kCornersPerLetter + 1);
    const int count = stb_easy_font_print(0, 0, line.data(), nullptr, corners.data(),
                                          static_cast<int>(corners.size() * sizeof(Corner)));
    std::vector<LetterStroke> strokes;
    for (int i = 0; i < count; ++i) {
        const Corner& first = corners[static_cast<size_t>(i) * 4];
        const Corner& opposite = corners[static_cast<size_t>(i) * 4 + 2];
        const auto x = static_cast<int>(first.x);
        const auto y = static_cast<int>(first.y);
        strokes.push_back({x, y, static_cast<int>(opposite.x) - x, static_cast<int>(opposite.y) - y});
    }
    return strokes;
}

int TextWidthDots(std::string_view text) {
    std::string line(text);
    return stb_easy_font_width(line.data());
}

}  // namespace orvex::tools
