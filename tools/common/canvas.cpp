#include "tools/common/canvas.h"

#include <stb/stb_easy_font.h>

#include <algorithm>
#include <string>
#include <vector>

namespace orvex::tools {

namespace {

// What the font knows, and a length that its buffer surely holds.
std::string Printable(std::string_view text) {
    constexpr size_t kMaxLine = 500;
    std::string out(text.substr(0, kMaxLine));
    for (char& c : out) {
        if (c < ' ' || c > '~') c = '?';
    }
    return out;
}

// A corner of the quads that the font draws letters with.
struct Corner {
    float x;
    float y;
    float z;
    unsigned char color[4];
};

}  // namespace

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
    std::string line = Printable(text);
    std::vector<Corner> corners(line.size() * 64 + 64);
    const int quads = stb_easy_font_print(0, 0, line.data(), nullptr, corners.data(),
                                          static_cast<int>(corners.size() * sizeof(Corner)));
    for (int i = 0; i < quads; ++i) {
        const Corner& first = corners[static_cast<size_t>(i) * 4];
        const Corner& opposite = corners[static_cast<size_t>(i) * 4 + 2];
        const auto left = static_cast<int>(first.x);
        const auto top = static_cast<int>(first.y);
        Fill(x + left * scale, y + top * scale, (static_cast<int>(opposite.x) - left) * scale,
             (static_cast<int>(opposite.y) - top) * scale, color);
    }
}

int Canvas::TextWidth(std::string_view text, int scale) {
    std::string line = Printable(text);
    return stb_easy_font_width(line.data()) * scale;
}

}  // namespace orvex::tools
