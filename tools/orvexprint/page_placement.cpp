#include "tools/orvexprint/page_placement.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "tools/common/number_text.h"

namespace orvex::tools::print {

namespace {

// Tolerance for a picture that another program made for this label, and rounded to a pixel more.
constexpr double kSparePx = 1.5;

// Returns the picture's extent along one axis in device pixels, not rounded.
double DevicePixels(uint32_t pixels, double perMeter, uint32_t dpi) {
    return pixels / perMeter * (dpi / kMetersPerInch);
}

std::string RealSize(double width, double height, uint32_t dpi) {
    return MmText(width, dpi) + " x " + MmText(height, dpi) + " mm";
}

uint32_t Rounded(double pixels, uint32_t most) {
    return static_cast<uint32_t>(std::clamp(std::floor(pixels + 0.5), 1.0, static_cast<double>(most)));
}

}  // namespace

PagePlace FindPlace(const RasterImage& image, const PagePlacing& placing) {
    const double untagged = placing.untaggedDpi / kMetersPerInch;
    const PixelDensity density = image.density.value_or(PixelDensity{untagged, untagged});
    double width = DevicePixels(image.width, density.x, placing.dpi);
    double height = DevicePixels(image.height, density.y, placing.dpi);
    if (placing.fit) {
        const double scale = std::min(placing.pageWidth / width, placing.pageHeight / height);
        width *= scale;
        height *= scale;
    } else if (width > placing.pageWidth + kSparePx || height > placing.pageHeight + kSparePx) {
        throw PageError("measures " + RealSize(width, height, placing.dpi) +
                        " and is larger than the label of " +
                        RealSize(placing.pageWidth, placing.pageHeight, placing.dpi) + "; --fit scales it");
    } else if (width < 0.5 || height < 0.5) {
        throw PageError("is smaller than a pixel of the printer: " + SizeText(image.width, image.height) +
                        " pixels at " + DecimalText(density.x * kMetersPerInch, 0) + " x " +
                        DecimalText(density.y * kMetersPerInch, 0) + " dpi; --fit scales it");
    }
    PagePlace place;
    place.width = Rounded(width, placing.pageWidth);
    place.height = Rounded(height, placing.pageHeight);
    place.left = (placing.pageWidth - place.width) / 2;
    place.top = (placing.pageHeight - place.height) / 2;
    return place;
}

void DrawPage(const RasterImage& image, const PagePlacing& placing, uint32_t* bits, size_t stride) {
    const PagePlace place = FindPlace(image, placing);
    const bool asItIs = place.width == image.width && place.height == image.height;
    RasterImage resampled;
    if (!asItIs) resampled = Resample(image, place.width, place.height, placing.enlarging);
    const RasterImage& sized = asItIs ? image : resampled;
    for (uint32_t y = 0; y < place.height; ++y) {
        std::copy_n(sized.Row(y), place.width, bits + (place.top + y) * stride + place.left);
    }
}

}  // namespace orvex::tools::print
