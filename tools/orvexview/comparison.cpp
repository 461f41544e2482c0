#include "tools/orvexview/comparison.h"

#include <algorithm>
#include <stdexcept>

#include "tools/common/number_text.h"
#include "tools/orvexview/table.h"

namespace orvex::tools::view {

Comparison Compare(const Picture& picture, const RasterImage& image) {
    if (picture.width != image.width || picture.height != image.height) {
        throw std::runtime_error("the page is " + SizeText(picture.width, picture.height) +
                                 " pixels, the picture " + SizeText(image.width, image.height) +
                                 "; they can't be compared");
    }
    Comparison result;
    result.pixels = uint64_t{picture.width} * picture.height;
    uint64_t sums[3] = {};
    uint32_t worst = 0;
    for (uint32_t y = 0; y < picture.height; ++y) {
        for (uint32_t x = 0; x < picture.width; ++x) {
            const uint8_t* pixel = picture.At(x, y);
            uint32_t most = 0;
            for (int channel = 0; channel < 3; ++channel) {
                const auto expected = static_cast<uint8_t>(image.Row(y)[x] >> (16 - 8 * channel));
                const uint32_t difference = static_cast<uint32_t>(std::abs(pixel[channel] - expected));
                result.largest[channel] = std::max(result.largest[channel], difference);
                sums[channel] += difference;
                most = std::max(most, difference);
            }
            result.different += most > 0;
            if (most <= worst) continue;
            worst = most;
            result.worstX = x;
            result.worstY = y;
        }
    }
    for (int channel = 0; channel < 3; ++channel) {
        result.mean[channel] = static_cast<double>(sums[channel]) / static_cast<double>(result.pixels);
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
