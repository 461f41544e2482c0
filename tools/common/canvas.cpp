#include "tools/common/canvas.h"

#include <algorithm>
#include <string>

#include "tools/common/letters.h"

namespace orvex::tools {

namespace {

std::string Printable(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c < ' ' || c > '~') c = '?';
    }
    return out;
}

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
    for (const LetterStroke& stroke : LetterStrokes(Printable(text))) {
        Fill(x + stroke.x * scale, y + stroke.y * scale, stroke.width * scale, stroke.height * scale, color);
    }
}

int Canvas::TextWidth(std::string_view text, int scale) {
    return TextWidthDots(Printable(text)) * scale;
}

}  // namespace orvex::tools
