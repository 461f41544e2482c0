#include "tests/plain/long_hand_adjustment.h"

#include <algorithm>
#include <cmath>

#include "tests/plain/plain_colors.h"

namespace orvex::plain {

namespace {

double Linear(double v) {
    return v <= 0.0404482362771076 ? v / 12.92 : pow((v + 0.055) / 1.055, 2.4);
}

double Curve(double t) {
    return t >= 0.008856451679035631 ? pow(t, 0.333333333333333)
                                     : t * 7.787037037037037 + 0.13793103448275862;
}

double Inverse(double f) {
    return f >= 0.20689655172413793 ? f * f * f : (f - 0.13793103448275862) * 0.12841854934601665;
}

double Displayed(double v) {
    return v <= 0.0031306684425005883 ? 12.92 * v : 1.055 * pow(v, 0.4166666666666667) - 0.055;
}

double Clamp(double value, double low, double high) {
    if (!(value >= low)) value = low;  // NaN, too
    if (value > high) value = high;
    return value;
}

// Returns the amount of one ink between eight grid points.
uint32_t InterpolatedByte(const std::vector<uint32_t>& grid, int blue, int green, int red, int place) {
    const auto fraction = [](int v) { return v == 255 ? 1.0 : (v - v / 16 * 16) * 0.0625; };
    const auto at = [&](int i, int j, int k) {
        const int r = std::min(red / 16 + i, 16), g = std::min(green / 16 + j, 16),
                  b = std::min(blue / 16 + k, 16);
        return double(InkByte(grid[static_cast<size_t>(289 * r + 17 * g + b)], place));
    };
    const double fb = fraction(blue), fg = fraction(green), fr = fraction(red);
    double plane[2];
    for (int i = 0; i < 2; ++i) {
        double line[2];
        for (int j = 0; j < 2; ++j) line[j] = at(i, j, 0) * (1 - fb) + at(i, j, 1) * fb;
        plane[i] = line[0] * (1 - fg) + line[1] * fg;
    }
    return static_cast<uint8_t>(plane[0] * (1 - fr) + plane[1] * fr);
}

}  // namespace

uint32_t InterpolatedInk(const std::vector<uint32_t>& grid, int blue, int green, int red) {
    return Ink(InterpolatedByte(grid, blue, green, red, 0), InterpolatedByte(grid, blue, green, red, 1),
               InterpolatedByte(grid, blue, green, red, 2), InterpolatedByte(grid, blue, green, red, 3));
}

// The names are the symbols of the color spaces.
// NOLINTBEGIN(readability-identifier-naming)
std::vector<uint32_t> AdjustedGrid(const std::vector<uint32_t>& grid, const Adjustment& v,
                                   const AdjustmentScales& s) {
    const double ca = -48.1 / sqrt(-48.1 * -48.1 + -14.1 * -14.1),
                 cb = -14.1 / sqrt(-48.1 * -48.1 + -14.1 * -14.1);
    const double ma = 98.2 / sqrt(98.2 * 98.2 + -60.8 * -60.8),
                 mb = -60.8 / sqrt(98.2 * 98.2 + -60.8 * -60.8);
    const double ya = -21.6 / sqrt(-21.6 * -21.6 + 94.5 * 94.5),
                 yb = 94.5 / sqrt(-21.6 * -21.6 + 94.5 * 94.5);
    const double T = v.tone / s.tone * 7000 * 0.5;
    const double S = v.saturation / s.saturation;
    const double B = v.brightness / s.brightness * 0.5;
    const double K = 9341 / s.black * 0.5 * v.black;
    const double Yv = v.yellow * s.yellow * 0.5, Cv = v.cyan * s.cyan * 0.5, Mv = v.magenta * s.magenta * 0.5;
    double gamma = 1 - 0.75 * B;
    if (B < 0) gamma = 1 - 3 * B;

    std::vector<uint32_t> adjusted;
    for (int i = 0; i <= 16; ++i) {
        for (int j = 0; j <= 16; ++j) {
            for (int k = 0; k <= 16; ++k) {
                const double R = Linear(16 * i), G = Linear(16 * j), Bl = Linear(16 * k);
                const double X0 =
                    (0.41239558896741424 * R + 0.3575834307637148 * G + 0.18049264738170157 * Bl) / 0.950456;
                const double Y0 = 0.21258623078559555 * R + 0.7151703037034108 * G + 0.07220049864333623 * Bl;
                const double Z0 =
                    (0.019297215491746945 * R + 0.11918386458084854 * G + 0.9504971251315798 * Bl) / 1.088754;
                const double L = 116 * Curve(Y0) - 16;
                const double a = 500 * (Curve(X0) - Curve(Y0));
                const double b = 200 * (Curve(Y0) - Curve(Z0));

                const double L1 = Clamp((pow(L / 9340, gamma) * 9340 - L) + L - K, 1, 9341);
                const double a1 = Clamp(a * S + a + (ca * Cv + ya * Yv + ma * Mv), -6595, 7926);
                const double b1 = Clamp(b * S + b + T + (cb * Cv + yb * Yv + mb * Mv), -8701, 7621);

                const double fy = (L1 + 16) / 116, fx = a1 / 500 + fy, fz = fy - b1 / 200;
                const double X = Inverse(fx) * 0.950456, Y = Inverse(fy), Z = Inverse(fz) * 1.088754;
                double r = 3.2406 * X - 1.5372 * Y - 0.4986 * Z;
                double g = -0.9689 * X + 1.8758 * Y + 0.0415 * Z;
                double bl = 0.0557 * X - 0.204 * Y + 1.057 * Z;
                const double low = std::min(std::min(r, g), bl);
                if (low < 0) r += -low, g += -low, bl += -low;
                const int red = static_cast<int>(std::min(Displayed(r), 255.0));
                const int green = static_cast<int>(std::min(Displayed(g), 255.0));
                const int blue = static_cast<int>(std::min(Displayed(bl), 255.0));
                adjusted.push_back(InterpolatedInk(grid, blue, green, red));
            }
        }
    }
    adjusted.back() = grid.back();
    return adjusted;
}
// NOLINTEND(readability-identifier-naming)

}  // namespace orvex::plain
