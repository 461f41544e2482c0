// Pages printed through a profile that lacks grid points. Their inks depend on the order of the look-ups, so
// a row or a block like an earlier one can print other inks.

#include <algorithm>
#include <utility>

#include "tests/driver/profiles/profile_bytes.h"
#include "tests/kit/driver_fixture.h"
#include "tests/plain/page_order.h"
#include "tests/plain/plain_rows.h"

namespace orvex {

using namespace tools;

namespace {

using Rows = std::vector<std::vector<uint32_t>>;

// The missing grid points 0xF0E0F0 and 0xF0F0FF. A look-up fills the second; a third color is between them.
constexpr uint32_t kMissing = 1 << 10 | 1 << 14;
constexpr uint32_t kFilled = 0xF0F0FF, kBetween = 0xF0E8F8;

uint32_t InkOf(uint32_t color) {
    return color % 5 == 0 ? 0 : plain::Scramble(color) & 0x7FFFFFFF;
}

// A page in squares of 17 pixels, so that rows, columns and blocks repeat. The color that a look-up fills is
// in the middle, and the color that it changes is on all four sides of it.
struct Art {
    explicit Art(const plain::Neighborhood& around) : pixels(width * height) {
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                pixels[y * width + x] = Square(around, x / 17, y / 17) | 0xAB000000;
            }
        }
    }
    static uint32_t Square(const plain::Neighborhood& around, int32_t column, int32_t row) {
        if (column == 6 && row == 5) return kFilled;
        const uint32_t place = plain::Scramble(static_cast<uint32_t>(16 * row + column));
        const uint32_t color = around.Color(place % plain::Neighborhood::kColors);
        return column == 6 || row == 5 || color == kFilled ? kBetween : color;
    }
    uint32_t Pixel(int32_t x, int32_t y) const { return pixels[y * width + x] & 0xFFFFFF; }

    static constexpr int32_t width = 12 * 17, height = 11 * 17 + 3;
    std::vector<uint32_t> pixels;
};

class MissingPoints : public DriverTest {
  protected:
    MissingPoints() {
        around_.Fill(kMissing, InkOf, table_.data());
        const auto stored = [&](uint32_t color, bool) {
            // No point farther away is missing.
            return std::min({plain::Red(color), plain::Green(color), plain::Blue(color)}) < 0xE0
                       ? InkOf(color)
                       : table_[color];
        };
        installation.Write(std::filesystem::path("profiles") / kProfile,
                           ProfileBytes(5, TagArea(NameTag("Gaps")), GridColors(stored)));
    }

    // Returns the rows that a page of a new job must print. Notes whether any of them prints other inks than
    // the row of the same pixels before it.
    Rows PlainRows(const Art& art, const DeviceMode& mode, RowOrder order) {
        around_.Fill(kMissing, InkOf, table_.data());
        const int32_t count = order.landscape ? Art::height : Art::width;
        const int32_t length = order.landscape ? Art::width : Art::height;
        Rows rows;
        std::vector<uint32_t> last;
        for (int32_t row = 0; row < count; ++row) {
            std::vector<uint32_t> pixels;
            for (int32_t i = 0; i < length; ++i) pixels.push_back(plain::PagePixel(art, order, row, i));
            rows.push_back(plain::PrintRow(
                pixels, {mode.priv.kws, 0, static_cast<uint32_t>(mode.priv.colorMode)}, 5, table_.data()));
            if (row > 1 && pixels == last) repeatsChange_ |= rows[row] != rows[row - 1];
            last = std::move(pixels);
        }
        if (rows[0][0] == 0) rows[0][0] = 2;
        return rows;
    }

    Rows Print(Art& art, const DeviceMode& mode) {
        const auto device = StartPage(mode);
        SURFOBJ surface = *device->Surface();
        surface.sizlBitmap = {Art::width, Art::height};
        surface.pvBits = surface.pvScan0 = art.pixels.data();
        surface.lDelta = Art::width * 4;
        surface.cjBits = static_cast<ULONG>(art.pixels.size() * 4);
        EXPECT_TRUE(Session().Hooks().sendPage(&surface));
        Session().EndDoc(*device);
        return engine.rows;
    }

    const plain::Neighborhood around_ = plain::Neighborhood(5);
    bool repeatsChange_ = false;

  private:
    std::vector<uint32_t> table_ = std::vector<uint32_t>(kCacheEntries, kNotComputed);
};

}  // namespace

TEST_F(MissingPoints, PrintThePlainInksInEveryRowOrder) {
    Art art(around_);
    for (int choices = 0; choices < 48; ++choices) {
        const RowOrder order{(choices & 1) != 0, (choices & 2) != 0, (choices & 4) != 0};
        DeviceMode mode = Mode();
        if (order.landscape) mode.pub.dmOrientation = DMORIENT_LANDSCAPE;
        mode.priv.rotate180 = order.rotate180;
        mode.priv.mirrorImage = order.mirrorImage;
        mode.priv.kws = choices >> 3 & 1;
        mode.priv.colorMode = choices / 16;
        SCOPED_TRACE(testing::Message() << "landscape " << order.landscape << " rotated " << order.rotate180
                                        << " mirrored " << order.mirrorImage << " kws " << mode.priv.kws
                                        << " color mode " << mode.priv.colorMode);
        repeatsChange_ = false;
        const auto want = PlainRows(art, mode, order);
        const auto have = Print(art, mode);
        ASSERT_EQ(have.size(), want.size());
        size_t wrong = 0;
        for (size_t row = 0; row < want.size(); ++row) wrong += have[row] != want[row];
        EXPECT_EQ(wrong, 0u) << "rows differ";
        if (mode.priv.kws == 0 && mode.priv.colorMode == 0) {
            EXPECT_TRUE(repeatsChange_) << "every row that repeats prints the same again";
        }
    }
}

}  // namespace orvex
