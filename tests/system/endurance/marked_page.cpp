#include "tests/system/endurance/marked_page.h"

#include <numeric>

#include "driver/color/color_cache.h"
#include "tests/plain/plain_colors.h"

namespace orvex {

namespace {

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr int64_t kStep = 37;  // pixels from the mark of a scan line to that of the next

// Returns a color of the profiles' grid, never white. Neighbors and places whose offsets differ by a power of
// two differ in color.
uint32_t MarkColor(int32_t x, int32_t y) {
    const uint32_t number = plain::Scramble(static_cast<uint32_t>(x) << 16 ^ static_cast<uint32_t>(y), 1);
    return number & 0xF0F0F0;
}

void CountUp(int32_t count, std::vector<int32_t>& numbers) {
    numbers.resize(static_cast<size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
}

}  // namespace

MarkedPage::MarkedPage(int32_t widthPx, int32_t heightPx)
    : width(widthPx), height(heightPx), linesOfColumn_(static_cast<size_t>(widthPx)) {
    for (int32_t y = 0; y < height; ++y) linesOfColumn_[static_cast<size_t>(InnerMark(y))].push_back(y);
}

int32_t MarkedPage::InnerMark(int32_t y) const {
    return static_cast<int32_t>(y * kStep % width);
}

uint32_t MarkedPage::Color(int32_t x, int32_t y) const {
    const bool framed = x == 0 || x == width - 1 || y == 0 || y == height - 1;
    return framed || x == InnerMark(y) ? MarkColor(x, y) : kWhite;
}

void MarkedPage::Draw(SURFOBJ& surface) const {
    std::vector<int32_t> marks;
    for (int32_t y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(surface.pvBits) +
                                                 y * ptrdiff_t{surface.lDelta});
        MarksOfLine(y, marks);
        for (const int32_t x : marks) line[x] = Color(x, y);
    }
}

void MarkedPage::MarksOfLine(int32_t y, std::vector<int32_t>& marks) const {
    if (y == 0 || y == height - 1) return CountUp(width, marks);
    marks.assign({0, InnerMark(y), width - 1});
}

void MarkedPage::MarksOfColumn(int32_t x, std::vector<int32_t>& marks) const {
    if (x == 0 || x == width - 1) return CountUp(height, marks);
    marks = linesOfColumn_[static_cast<size_t>(x)];
    marks.push_back(0);
    marks.push_back(height - 1);
}

}  // namespace orvex
