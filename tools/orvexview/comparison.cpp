#include "tools/orvexview/comparison.h"

#include <algorithm>
#include <stdexcept>

#include "tools/common/number_text.h"
#include "tools/orvexview/table.h"

namespace orvex::tools::view {

Comparer::Comparer(uint32_t width, uint32_t height, PngReader& art) : art_(art), artLine_(width) {
    const PictureSize size = art.Size();
    if (width != size.width || height != size.height) {
        throw std::runtime_error("the page is " + SizeText(width, height) + " pixels, the picture " +
                                 SizeText(size.width, size.height) + "; they can't be compared");
    }
    result_.pixels = uint64_t{width} * height;
}

void Comparer::TakeLines(const Picture& lines) {
    for (uint32_t y = 0; y < lines.height; ++y, ++linesTaken_) {
        art_.ReadRow(artLine_.data());
        for (uint32_t x = 0; x < lines.width; ++x) TakePixel(lines.At(x, y), artLine_[x], x, linesTaken_);
    }
}

void Comparer::TakePixel(const uint8_t* samples, uint32_t expectedColor, uint32_t x, uint32_t y) {
    uint32_t most = 0;
    for (int channel = 0; channel < 3; ++channel) {
        const auto expected = static_cast<uint8_t>(expectedColor >> (16 - 8 * channel));
        const auto difference = static_cast<uint32_t>(std::abs(samples[channel] - expected));
        result_.largest[channel] = std::max(result_.largest[channel], difference);
        sums_[channel] += difference;
        most = std::max(most, difference);
    }
    result_.different += most > 0;
    if (most <= worst_) return;
    worst_ = most;
    result_.worstX = x;
    result_.worstY = y;
}

Comparison Comparer::Result() const {
    Comparison result = result_;
    for (int channel = 0; channel < 3; ++channel) {
        result.mean[channel] = static_cast<double>(sums_[channel]) / static_cast<double>(result.pixels);
    }
    return result;
}

std::string DescribeComparison(const Comparison& comparison) {
    Table table({"Channel", "Largest difference", "Mean difference"});
    const char* const kChannels[] = {"red", "green", "blue"};
    for (int channel = 0; channel < 3; ++channel) {
        table.Add({kChannels[channel], std::to_string(comparison.largest[channel]) + " of 255",
                   DecimalText(comparison.mean[channel], 3)});
    }
    std::string text = table.Text() + std::to_string(comparison.different) + " of " +
                       std::to_string(comparison.pixels) + " pixels differ";
    if (comparison.different == 0) return text + "\n";
    return text + ", most at (" + std::to_string(comparison.worstX) + ", " +
           std::to_string(comparison.worstY) + ")\n";
}

}  // namespace orvex::tools::view
