#include "tools/orvexprofile/print_pictures.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <vector>

#include "driver/color/color_cache.h"
#include "tools/common/canvas.h"
#include "tools/common/number_text.h"
#include "tools/orvexprofile/ink_treatment.h"

namespace orvex::tools::profile {

namespace {

constexpr double kUsualPixelsPerInch = 96;  // of a picture that states none

constexpr uint32_t kMargin = 16;
constexpr uint32_t kGap = 8;
constexpr uint32_t kLine = 16;  // height of a line of text

constexpr uint32_t kRampWidth = 512;
constexpr uint32_t kPrintHeight = 24;
constexpr uint32_t kCurvesHeight = 64;
constexpr uint32_t kRampHeight = kLine + kPrintHeight + kCurvesHeight + kGap;
constexpr uint32_t kRampRows = (static_cast<uint32_t>(kChartRamps.size()) + 1) / 2;
constexpr uint32_t kWidth = 3 * kMargin + 2 * kRampWidth;

constexpr uint32_t kTile = (kWidth - 2 * kMargin - (kChartSlices - 1) * kGap) / kChartSlices;
constexpr uint32_t kRampsTop = kMargin + 2 * kLine;
constexpr uint32_t kSlicesTop = kRampsTop + kRampRows * kRampHeight + kGap;
constexpr uint32_t kHeight = kSlicesTop + kLine + 2 * (kTile + kGap) + kMargin;

constexpr Rgb kText = {0x40, 0x40, 0x40};
constexpr Rgb kRule = {0xE0, 0xE0, 0xE0};
constexpr std::array<Rgb, kInks> kCurveColors = {
    {{0x00, 0x00, 0x00}, {0x00, 0xA0, 0xD8}, {0xDC, 0x0A, 0x78}, {0xF0, 0xC8, 0x00}}};

void Fill(Picture& picture, const ChartPlace& place, Rgb color) {
    FillRectangle(picture, place.x, place.y, place.width, place.height, color);
}

void Write(Picture& picture, uint32_t x, uint32_t y, std::string_view text) {
    std::string shown;
    std::copy_if(text.begin(), text.end(), std::back_inserter(shown),
                 [](char c) { return c >= ' ' && c <= '~'; });
    for (const LetterStroke& stroke : LetterStrokes(shown)) {
        Fill(picture,
             {x + static_cast<uint32_t>(stroke.x), y + static_cast<uint32_t>(stroke.y),
              static_cast<uint32_t>(stroke.width), static_cast<uint32_t>(stroke.height)},
             kText);
    }
}

// Returns the color at `position`, 0 to 1, on the way from one color to another.
uint32_t Between(uint32_t from, uint32_t to, double position) {
    uint32_t color = 0;
    for (int shift : {16, 8, 0}) {
        const double a = from >> shift & 0xFF, b = to >> shift & 0xFF;
        color |= static_cast<uint32_t>(std::lround(a + (b - a) * position)) << shift;
    }
    return color;
}

void DrawCurves(Picture& picture, int ramp) {
    const ChartPlace place = RampCurves(ramp);
    Fill(picture, place, kPaperWhite);
    for (uint32_t quarter = 0; quarter <= 4; ++quarter) {
        Fill(picture, {place.x, place.y + quarter * (place.height - 1) / 4, place.width, 1}, kRule);
    }
    for (int ink = kInks - 1; ink >= 0; --ink) {
        uint32_t before = 0;
        for (uint32_t x = 0; x < place.width; ++x) {
            const uint32_t amount = InkAmount(LookupColor(RampColor(ramp, x)), ink);
            const uint32_t y = place.y + (255 - amount) * (place.height - 1) / 255;
            if (x == 0) before = y;
            const uint32_t top = std::min(before, y), bottom = std::max(before, y);
            Fill(picture, {place.x + x, top, 1, bottom - top + 1}, kCurveColors[static_cast<size_t>(ink)]);
            before = y;
        }
    }
}

void DrawRamp(Picture& picture, int ramp, const InkModel& model) {
    const ChartPlace place = RampPrint(ramp);
    Write(picture, place.x, place.y - kLine + 4, kChartRamps[static_cast<size_t>(ramp)].name);
    for (uint32_t x = 0; x < place.width; ++x) {
        Fill(picture, {place.x + x, place.y, 1, place.height},
             model.OnPaper(LookupColor(RampColor(ramp, x))));
    }
    DrawCurves(picture, ramp);
}

void DrawSlice(Picture& picture, int slice, const InkModel& model) {
    const ChartPlace print = SlicePrint(slice), total = SliceTotal(slice);
    Write(picture, print.x, print.y - kLine + 4, "Red " + std::to_string(SliceColor(slice, 0, 0) >> 16));
    for (uint32_t y = 0; y < kTile; ++y) {
        for (uint32_t x = 0; x < kTile; ++x) {
            const uint32_t inks = LookupColor(SliceColor(slice, x, y));
            const uint8_t gray = static_cast<uint8_t>(255 - TotalInk(inks) / kInks);
            Fill(picture, {print.x + x, print.y + y, 1, 1}, model.OnPaper(inks));
            Fill(picture, {total.x + x, total.y + y, 1, 1}, {gray, gray, gray});
        }
    }
}

}  // namespace

InkModel InkModelOf(PrintVariant variant) {
    return InkModel(variant == PrintVariant::kAt600 ? 600 : 300);
}

double PixelsPerInchOf(const std::optional<PixelDensity>& density) {
    return density ? density->x * kMetersPerInch : kUsualPixelsPerInch;
}

InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant) {
    const InkModel model = InkModelOf(variant);
    InkPictures print;
    print.composite = Picture(picture.width, picture.height, 3);
    for (Picture& ink : print.inks) ink = Picture(picture.width, picture.height, 1);
    print.pixelsPerInch = PixelsPerInchOf(picture.density);
    const size_t pixels = size_t{picture.width} * picture.height;
    for (size_t i = 0; i < pixels; ++i) {
        const uint32_t inks = LookupColor(picture.pixels[i]);
        StoreColor(&print.composite.samples[3 * i], model.OnPaper(inks));
        for (int ink = 0; ink < kInks; ++ink) {
            print.inks[static_cast<size_t>(ink)].samples[i] = model.Gray(inks, ink);
        }
    }
    return print;
}

ChartPlace RampPrint(int ramp) {
    const uint32_t row = static_cast<uint32_t>(ramp) / 2, column = static_cast<uint32_t>(ramp) % 2;
    return {kMargin + column * (kRampWidth + kMargin), kRampsTop + row * kRampHeight + kLine, kRampWidth,
            kPrintHeight};
}

ChartPlace RampCurves(int ramp) {
    const ChartPlace print = RampPrint(ramp);
    return {print.x, print.y + print.height, print.width, kCurvesHeight};
}

uint32_t RampColor(int ramp, uint32_t x) {
    const uint32_t middle = kChartRamps[static_cast<size_t>(ramp)].middle;
    const double position = 2.0 * x / (kRampWidth - 1);
    return position <= 1 ? Between(0xFFFFFF, middle, position) : Between(middle, 0, position - 1);
}

ChartPlace SlicePrint(int slice) {
    return {kMargin + static_cast<uint32_t>(slice) * (kTile + kGap), kSlicesTop + kLine, kTile, kTile};
}

ChartPlace SliceTotal(int slice) {
    const ChartPlace print = SlicePrint(slice);
    return {print.x, print.y + kTile + kGap, kTile, kTile};
}

uint32_t SliceColor(int slice, uint32_t x, uint32_t y) {
    const uint32_t red = GridValue(slice * (kGridSteps - 1) / (kChartSlices - 1));
    return ColorIndex(red, y * 255 / (kTile - 1), x * 255 / (kTile - 1));
}

Picture DrawChart(std::string_view title, PrintVariant variant) {
    const InkModel model = InkModelOf(variant);
    Picture picture(kWidth, kHeight, 3);
    Fill(picture, {0, 0, kWidth, kHeight}, kPaperWhite);
    Write(picture, kMargin, kMargin, title);
    for (int ramp = 0; ramp < static_cast<int>(kChartRamps.size()); ++ramp) DrawRamp(picture, ramp, model);
    for (int slice = 0; slice < kChartSlices; ++slice) DrawSlice(picture, slice, model);
    return picture;
}

}  // namespace orvex::tools::profile
