#include "bench/bench_page.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "driver/device_capabilities.h"
#include "tools/common/canvas.h"
#include "tools/orvexprint/barcode.h"

namespace orvex::bench {

using namespace tools;
using namespace tools::print;

namespace {

constexpr uint32_t kColorCount = 1u << 24;

uint32_t Pack(double red, double green, double blue) {
    const auto byte = [](double value) { return static_cast<uint32_t>(std::clamp(value, 0.0, 255.0)); };
    return byte(red) << 16 | byte(green) << 8 | byte(blue);
}

// Returns random bits for a counter.
uint32_t Scramble(uint64_t counter) {
    uint64_t x = (counter + 1) * 0x9E3779B97F4A7C15u;
    x = (x ^ x >> 30) * 0xBF58476D1CE4E5B9u;
    x = (x ^ x >> 27) * 0x94D049BB133111EBu;
    return static_cast<uint32_t>(x >> 32);
}

// Draws the label. Its lengths are for a page 100 mm wide and scale with the page.
class LabelArtist {
  public:
    explicit LabelArtist(BenchPage& page)
        : page_(page),
          canvas_(page.pixels.data(), page.width, page.height, static_cast<size_t>(page.width)) {}

    void Draw() {
        canvas_.Frame(Px(2), Px(2), page_.width - Px(4), page_.height - Px(4), Px(0.4), kBlack);
        canvas_.Fill(Px(2), Px(2), page_.width - Px(4), Px(9), 0x1F4E79);
        canvas_.Text(Px(5), Px(4), Px(0.6), "FRAGILE - KEEP UPRIGHT", kWhite);
        Logo(Px(80), Px(24), Px(10));
        Address();
        for (int line = 0; line < 3; ++line) {
            canvas_.Fill(Px(4), Px(40 + 2 * line), page_.width - Px(8), Px(0.1), kBlack);
        }
        Barcode(Px(8), Px(48), Px(22), "ORVEX 0123456789");
        canvas_.Fill(Px(4), Px(76), Px(40), Px(12), 0xF2C200);
        canvas_.Fill(Px(46), Px(76), Px(24), Px(12), 0xC00000);
        SmallPrint(Px(92));
    }

  private:
    int Px(double mm) const { return static_cast<int>(mm * page_.width / 100 + 0.5); }

    void Address() {
        const char* const lines[] = {"Orvex Works", "17 Mill Lane", "AB1 2CD Northbridge", "Weight 12.4 kg"};
        for (int i = 0; i < 4; ++i) canvas_.Text(Px(5), Px(14 + 6 * i), Px(0.4), lines[i], kBlack);
    }

    // Draws a disc with soft edges and a color gradient.
    void Logo(int cx, int cy, int radius) {
        for (int y = -radius; y <= radius; ++y) {
            for (int x = -radius; x <= radius; ++x) {
                const double cover = std::clamp(radius - std::sqrt(double(x * x + y * y)), 0.0, 1.0);
                const int column = cx + x, row = cy + y;
                if (cover == 0 || column < 0 || row < 0 || column >= page_.width || row >= page_.height) {
                    continue;
                }
                const double slope = 0.5 + 0.5 * y / radius;
                const auto ink = [&](double top, double bottom) {
                    return 255 + cover * (top + slope * (bottom - top) - 255);
                };
                page_.pixels[static_cast<size_t>(row) * static_cast<size_t>(page_.width) +
                             static_cast<size_t>(column)] = Pack(ink(0, 20), ink(160, 60), ink(90, 140));
            }
        }
    }

    void Barcode(int x, int y, int height, std::string_view text) {
        const int module = std::max(Px(0.33), 1);
        for (const char bar : Code39(text)) {
            if (bar == '1') canvas_.Fill(x, y, module, height, kBlack);
            x += module;
        }
    }

    void SmallPrint(int y) {
        const int dot = std::max(Px(0.2), 1);
        for (int line = 0; y + kTextLineDots * dot < page_.height - Px(12); ++line) {
            // Paragraphs of six lines alternate with six empty lines.
            if (line % 12 < 6) {
                canvas_.Text(Px(5), y, dot,
                             "Store dry and cool. Batch 2024-" + std::to_string(1000 + line) +
                                 " best before see lid. Contents may settle.",
                             0x202020);
            }
            y += kTextLineDots * dot;
        }
    }

    BenchPage& page_;
    Canvas canvas_;
};

// One color component of the photo: a sum of a few long waves.
class Waves {
  public:
    Waves(int32_t width, int component) {
        for (int i = 0; i < kCount; ++i) {
            frequencyY_[i] = (0.9 + 0.7 * ((i * 5 + component * 3) % 7)) / 700;
            const double frequencyX = (0.6 + 0.9 * ((i * 3 + component * 5) % 7)) / 800;
            for (int32_t x = 0; x < width; ++x) {
                across_.push_back(static_cast<float>(std::sin(frequencyX * x + component + i)));
            }
        }
        width_ = static_cast<size_t>(width);
    }
    void Begin(int32_t y) {
        for (int i = 0; i < kCount; ++i) {
            down_[i] = static_cast<float>(std::cos(frequencyY_[i] * y + i) * (i == 0 ? 70 : 24));
        }
    }
    double At(int32_t x) const {
        float sum = 128;
        for (size_t i = 0; i < kCount; ++i) sum += across_[i * width_ + static_cast<size_t>(x)] * down_[i];
        return sum;
    }

  private:
    static constexpr int kCount = 4;
    double frequencyY_[kCount];
    std::vector<float> across_;
    float down_[kCount] = {};
    size_t width_;
};

void DrawPhoto(BenchPage& page) {
    Waves red(page.width, 0), green(page.width, 1), blue(page.width, 2);
    size_t i = 0;
    for (int32_t y = 0; y < page.height; ++y) {
        red.Begin(y);
        green.Begin(y);
        blue.Begin(y);
        for (int32_t x = 0; x < page.width; ++x, ++i) {
            const uint32_t bits = Scramble(i);
            const auto grain = [&](int shift) { return static_cast<int>(bits >> shift & 3) - 1.5; };
            page.pixels[i] = Pack(red.At(x) + grain(0), green.At(x) + grain(2), blue.At(x) + grain(4));
        }
    }
}

void DrawNoise(BenchPage& page) {
    for (size_t i = 0; i < page.pixels.size(); ++i) page.pixels[i] = Scramble(i) % kColorCount;
}

}  // namespace

std::string_view NameOf(PageArt art) {
    switch (art) {
        case PageArt::kLabel:
            return "label";
        case PageArt::kPhoto:
            return "photo";
        default:
            return "noise";
    }
}

BenchPage DrawPage(PageArt art, const PageSize& size, bool landscape) {
    BenchPage page;
    page.width = static_cast<int32_t>(PixelCount(size.dpi, static_cast<uint32_t>(size.widthTenthsMm)));
    page.height = static_cast<int32_t>(PixelCount(size.dpi, static_cast<uint32_t>(size.heightTenthsMm)));
    if (landscape) std::swap(page.width, page.height);
    page.pixels.assign(static_cast<size_t>(page.width) * static_cast<size_t>(page.height), kWhite);
    if (art == PageArt::kLabel) LabelArtist(page).Draw();
    if (art == PageArt::kPhoto) DrawPhoto(page);
    if (art == PageArt::kNoise) DrawNoise(page);
    return page;
}

size_t DistinctColors(const BenchPage& page) {
    std::vector<bool> seen(kColorCount);
    size_t count = 0;
    for (const uint32_t pixel : page.pixels) {
        if (seen[pixel]) continue;
        seen[pixel] = true;
        ++count;
    }
    return count;
}

}  // namespace orvex::bench
