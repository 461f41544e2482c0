#include "tools/orvexprint/page_placement.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "tools/common/number_text.h"

namespace orvex::tools::print {

namespace {

// Tolerance for a picture that another program made for this label: it may have a pixel too many.
constexpr double kSparePx = 1.5;

// Tolerance for the device's own resolution, which files state in whole pixels per meter or per centimeter.
constexpr double kSameResolution = 0.001;

constexpr uint32_t kTurnedRows = 16;  // drawn together as columns, a cache line wide

std::string RealSize(double width, double height, uint32_t dpi) {
    return MmText(width, dpi) + " x " + MmText(height, dpi) + " mm";
}

std::string DpiText(const PixelDensity& density) {
    const std::string x = DecimalText(density.x * kMetersPerInch, 0);
    const std::string y = DecimalText(density.y * kMetersPerInch, 0);
    return (x == y ? x : x + " x " + y) + " dpi";
}

uint32_t Rounded(double pixels, uint32_t most) {
    return static_cast<uint32_t>(std::clamp(std::floor(pixels + 0.5), 1.0, static_cast<double>(most)));
}

// A picture's extents in device pixels, not rounded, along its own axes, on a page that may be turned.
struct Extents {
    double width;
    double height;
    uint32_t pageWidth;
    uint32_t pageHeight;
};

// Returns the extents on the page, upright or turned.
Extents FindExtents(const PictureSize& picture, const PagePlacing& placing, bool turned) {
    const PixelDensity density = DensityOf(picture, placing.untaggedDpi);
    const double dotsPerMeter = placing.dpi / kMetersPerInch;
    Extents extents = {picture.width / density.x * dotsPerMeter, picture.height / density.y * dotsPerMeter,
                       turned ? placing.pageHeight : placing.pageWidth,
                       turned ? placing.pageWidth : placing.pageHeight};
    if (placing.fit) {
        const double scale = std::min(extents.pageWidth / extents.width, extents.pageHeight / extents.height);
        extents.width *= scale;
        extents.height *= scale;
    }
    return extents;
}

// Returns whether that many pixels are printed as they are.
bool AsTheyAre(uint32_t pixels, double extent, bool fit) {
    return std::abs(extent - pixels) <= (fit ? kSparePx : kSameResolution * pixels);
}

// The tolerance is in pixels of the picture, which may be larger than those of the device.
bool AxisFits(uint32_t pixels, double extent, uint32_t page, bool fit) {
    if (AsTheyAre(pixels, extent, fit)) extent = pixels;
    return extent <= page + kSparePx * extent / pixels;
}

bool Fits(const PictureSize& picture, const Extents& extents, bool fit) {
    return AxisFits(picture.width, extents.width, extents.pageWidth, fit) &&
           AxisFits(picture.height, extents.height, extents.pageHeight, fit);
}

PlacedAxis PlaceAxis(uint32_t pixels, double extent, uint32_t page, bool fit) {
    if (AsTheyAre(pixels, extent, fit)) {
        const uint32_t used = std::min(pixels, page);
        return {used, used, 1};
    }
    return {pixels, Rounded(extent, page), extent / pixels};
}

bool TurnHelps(const PictureSize& picture, const PagePlacing& placing) {
    const Extents upright = FindExtents(picture, placing, false);
    const Extents turned = FindExtents(picture, placing, true);
    if (placing.fit) return turned.width > upright.width * (1 + kSameResolution);
    return !Fits(picture, upright, false) && Fits(picture, turned, false);
}

void CheckSize(const PictureSize& picture, const PagePlacing& placing, const Extents& extents) {
    if (!Fits(picture, extents, placing.fit)) {
        const std::string turn =
            TurnHelps(picture, placing) ? "; --rotate auto turns it by a quarter, and then it fits" : "";
        throw PageError("measures " + RealSize(extents.width, extents.height, placing.dpi) +
                        " and is larger than the label of " +
                        RealSize(placing.pageWidth, placing.pageHeight, placing.dpi) + turn +
                        "; --fit scales it");
    }
    if (!placing.fit && std::min(extents.width, extents.height) < 0.5) {
        throw PageError("is smaller than a pixel of the printer: " + SizeText(picture.width, picture.height) +
                        " pixels at " + DpiText(DensityOf(picture, placing.untaggedDpi)) +
                        "; --fit scales it");
    }
}

std::string ScaleText(double scale) {
    const double times = scale < 1 ? 1 / scale : scale;
    return (scale < 1 ? "reduced " : "enlarged ") + DecimalText(times, times < 1.005 ? 4 : 2) + " times";
}

// Draws rows as columns, from right to left: `next` reads the picture's rows, which have `width` pixels.
void DrawTurned(const RowReader& next, uint32_t width, uint32_t height, uint32_t* bits, size_t stride) {
    std::vector<uint32_t> rows(size_t{kTurnedRows} * width);
    for (uint32_t first = 0; first < height; first += kTurnedRows) {
        const uint32_t count = std::min(kTurnedRows, height - first);
        for (uint32_t i = 0; i < count; ++i) next(&rows[size_t{i} * width]);
        for (uint32_t x = 0; x < width; ++x) {
            uint32_t* const target = bits + x * stride + (height - 1 - first);
            for (uint32_t i = 0; i < count; ++i) *(target - i) = rows[size_t{i} * width + x];
        }
    }
}

// Draws `height` rows of `width` pixels.
void DrawRows(const RowReader& next, uint32_t width, uint32_t height, bool turned, uint32_t* bits,
              size_t stride) {
    if (turned) return DrawTurned(next, width, height, bits, stride);
    for (uint32_t y = 0; y < height; ++y) next(bits + y * stride);
}

}  // namespace

PixelDensity DensityOf(const PictureSize& picture, double untaggedDpi) {
    const double untagged = untaggedDpi / kMetersPerInch;
    return picture.density.value_or(PixelDensity{untagged, untagged});
}

PagePlace FindPlace(const PictureSize& picture, const PagePlacing& placing) {
    const bool turned = placing.turning == Turning::kToFit && TurnHelps(picture, placing);
    const Extents extents = FindExtents(picture, placing, turned);
    CheckSize(picture, placing, extents);
    PagePlace place;
    place.turned = turned;
    place.across = PlaceAxis(picture.width, extents.width, extents.pageWidth, placing.fit);
    place.down = PlaceAxis(picture.height, extents.height, extents.pageHeight, placing.fit);
    place.left = (placing.pageWidth - place.Width()) / 2;
    place.top = (placing.pageHeight - place.Height()) / 2;
    return place;
}

std::string ResamplingText(const PictureSize& picture, const PagePlacing& placing, const PagePlace& place) {
    const double across = place.across.scale;
    const double down = place.down.scale;
    if (across == 1 && down == 1) return {};
    std::string change = ScaleText(across == 1 ? down : across);
    if (across == 1) {
        change += " in height";
    } else if (down == 1) {
        change += " in width";
    } else if (ScaleText(down) != change) {
        change += " in width and " + ScaleText(down) + " in height";
    }
    if (placing.fit) return change + ": --fit scales it to the label";
    return change + ": its resolution is " + DpiText(DensityOf(picture, placing.untaggedDpi)) +
           ", the job's is " + std::to_string(placing.dpi) + " dpi";
}

void DrawPage(PictureReader& picture, const PagePlacing& placing, uint32_t* bits, size_t stride) {
    const PictureSize size = picture.Size();
    const PagePlace place = FindPlace(size, placing);
    uint32_t* const target = bits + place.top * stride + place.left;
    const PlacedAxis& across = place.across;
    const PlacedAxis& down = place.down;
    const bool resampled = across.scale != 1 || down.scale != 1;
    if (!resampled && !place.turned && across.used == size.width && down.used == size.height) {
        return picture.ReadAll(target, stride);
    }
    std::vector<uint32_t> row(size.width);
    const RowReader used = [&](uint32_t* pixels) {
        picture.ReadRow(row.data());
        std::copy_n(row.begin(), across.used, pixels);
    };
    if (resampled) {
        Resampler resampler(across.used, down.used, across.length, down.length, placing.enlarging, used);
        const RowReader next = [&](uint32_t* pixels) { resampler.ReadRow(pixels); };
        DrawRows(next, across.length, down.length, place.turned, target, stride);
    } else {
        DrawRows(used, across.length, down.length, place.turned, target, stride);
    }
    // Rows that are not printed are read as well, so that a truncated file is noticed.
    for (uint32_t y = down.used; y < size.height; ++y) picture.ReadRow(row.data());
}

}  // namespace orvex::tools::print
