#include "tools/common/canvas.h"

#include <stb/stb_easy_font.h>

#include <algorithm>
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

std::string Printable(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c < ' ' || c > '~') c = '?';
    }
    return out;
}

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

void Canvas::Fill(int x, int y, int width, int height, uint32_t color) {
    const int left = std::clamp(x, 0, width_);
    const int right = std::clamp(x + width, left, width_);
    const int bottom = std::clamp(y + height, 0, height_);
    for (int row = std::max(y, 0); row < bottom; ++row) {
        uint32_t* const line = pixels_ + static_cast<size_t>(row) * stride_;
        std::fill(line + left, line + right, color);
    }
}

void Canvas::Frame(int x, int y, int width, int height, int thick, uint32_t color) {
    Fill(x, y, width, thick, color);
    Fill(x, y + height - thick, width, thick, color);
    Fill(x, y, thick, height, color);
    Fill(x + width - thick, y, thick, height, color);
}

void Canvas::Text(int x, int y, int scale, std::string_view text, uint32_t color) {
    for (const LetterStroke& stroke : LetterStrokes(Printable(text))) {
        Fill(x + stroke.x * scale, y + stroke.y * scale, stroke.width * scale, stroke.height * scale, color);
    }
}

int Canvas::TextWidth(std::string_view text, int scale) {
    return stb_easy_font_width(Printable(text).data()) * scale;
}

}  // namespace orvex::tools
