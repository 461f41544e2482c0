#include "tools/host/metafile_player.h"

#include <gmock/gmock.h>

#include <set>

#include "tests/tools/common/box_font.h"
#include "tests/tools/common/made_metafile.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/common/picture.h"

namespace orvex::tools {

using testing::HasSubstr;

namespace {

constexpr uint32_t kWhite = 0xFFFFFF;

std::span<const uint8_t> Bytes(const std::string& file) {
    return {reinterpret_cast<const uint8_t*>(file.data()), file.size()};
}

// A white page, with more pixels in memory than in its rows.
struct Page {
    Page(uint32_t pageWidth, uint32_t pageHeight)
        : width(pageWidth), height(pageHeight), pixels(size_t{pageWidth + 3} * pageHeight, kWhite) {}

    PlayedPage Played(bool turned = false) { return {pixels.data(), width + 3, width, height, turned}; }
    uint32_t At(uint32_t x, uint32_t y) const { return pixels[size_t{y} * (width + 3) + x]; }

    uint32_t width;
    uint32_t height;
    std::vector<uint32_t> pixels;
};

// A metafile of 60 x 40 pixels at 254 dpi, 6 mm x 4 mm.
MadeMetafile Drawing() {
    return MadeMetafile({0, 0, 600, 400}, {60, 40, 6, 4});
}

constexpr RECT kFrame = {0, 0, 60, 40};

}  // namespace

#ifdef _WIN32

TEST(MetafilePlayer, DrawsToThePixel) {
    const std::string file =
        Drawing().Bar(2, 3, 10, 5).Bitmap(20, 30, 2, {0xFF0000, 0x00FF00, 0x0000FF, 0x123456}).File();
    Page page(60, 40);
    EXPECT_EQ(PlayMetafile(Bytes(file), kFrame, page.Played()), 0u);
    for (uint32_t y = 0; y < 40; ++y) {
        for (uint32_t x = 0; x < 60; ++x) {
            uint32_t expected = kWhite;
            if (x >= 2 && x < 12 && y >= 3 && y < 8) expected = 0;
            if (x >= 20 && x < 22 && y >= 30 && y < 32) {
                constexpr uint32_t kBitmap[] = {0xFF0000, 0x00FF00, 0x0000FF, 0x123456};
                expected = kBitmap[(y - 30) * 2 + (x - 20)];
            }
            ASSERT_EQ(page.At(x, y), expected) << x << " " << y;
        }
        ASSERT_EQ(page.At(60, y), kWhite) << "beside the page";
    }
}

TEST(MetafilePlayer, FillsTheRectangleWithTheFrame) {
    const std::string file = Drawing().Bar(0, 0, 60, 40).File();
    Page page(100, 100);
    PlayMetafile(Bytes(file), {20, 10, 80, 90}, page.Played());
    EXPECT_EQ(page.At(20, 10), 0u);
    EXPECT_EQ(page.At(79, 89), 0u);
    EXPECT_EQ(page.At(19, 50), kWhite);
    EXPECT_EQ(page.At(80, 50), kWhite);
    EXPECT_EQ(page.At(50, 9), kWhite);
    EXPECT_EQ(page.At(50, 90), kWhite);
}

TEST(MetafilePlayer, DrawsTheSameInBands) {
    LoadedFonts fonts;
    ASSERT_TRUE(fonts.Load(Bytes(MakeBoxFont("Orvex Player Boxes"))));
    const std::string file =
        Drawing().Bar(2, 3, 10, 33).Text(20, 5, 7, "Orvex Player Boxes", "ABC").Bar(0, 39, 60, 1).File();
    Page whole(60, 40), bands(60, 40);
    PlayMetafile(Bytes(file), kFrame, whole.Played());
    PlayMetafile(Bytes(file), kFrame, bands.Played(), 60 * 4 * 7);
    EXPECT_EQ(whole.pixels, bands.pixels);
    EXPECT_EQ(whole.At(59, 39), 0u);
    PlayMetafile(Bytes(file), kFrame, bands.Played(), 1);
    EXPECT_EQ(whole.pixels, bands.pixels) << "a row at a time";
}

TEST(MetafilePlayer, TurnsByAQuarterClockwise) {
    const std::string file = Drawing().Bar(2, 3, 10, 5).Bar(50, 39, 10, 1).File();
    Page upright(60, 40), turned(40, 60);
    PlayMetafile(Bytes(file), kFrame, upright.Played());
    PlayMetafile(Bytes(file), kFrame, turned.Played(true), 60 * 4 * 7);
    for (uint32_t y = 0; y < 40; ++y) {
        for (uint32_t x = 0; x < 60; ++x) ASSERT_EQ(turned.At(39 - y, x), upright.At(x, y)) << x << " " << y;
    }
}

TEST(MetafilePlayer, KeepsWhatIsOnThePage) {
    Page page(60, 40);
    page.pixels[5] = 0x112233;
    PlayMetafile(Bytes(Drawing().Bar(10, 0, 1, 1).File()), kFrame, page.Played());
    EXPECT_EQ(page.At(5, 0), 0x112233u);
    EXPECT_EQ(page.At(10, 0), 0u);
}

TEST(MetafilePlayer, UsesTheFontsThatAreLoaded) {
    const auto blackPixels = [](const char* family) {
        Page page(60, 40);
        PlayMetafile(Bytes(Drawing().Text(10, 10, 20, family, "A").File()), kFrame, page.Played());
        return std::count(page.pixels.begin(), page.pixels.end(), 0u);
    };
    LoadedFonts fonts;
    EXPECT_FALSE(fonts.Load(Bytes("no font")));
    ASSERT_TRUE(fonts.Load(Bytes(MakeBoxFont("Orvex Loaded Boxes"))));
    EXPECT_EQ(blackPixels("Orvex Loaded Boxes"), 400) << "the em is a black square";
    EXPECT_NE(blackPixels("Orvex Other Boxes"), 400);
}

TEST(MetafilePlayer, DrawsTextWithHardEdges) {
    LoadedFonts fonts;
    ASSERT_TRUE(fonts.Load(Bytes(MakeBoxFont("Orvex Edge Boxes"))));
    // Scaled so that no edge of the square is on a pixel's.
    const std::string file = Drawing().Text(10, 10, 20, "Orvex Edge Boxes", "A").File();
    Page page(60, 40);
    PlayMetafile(Bytes(file), {0, 0, 49, 33}, page.Played());
    const std::set<uint32_t> colors(page.pixels.begin(), page.pixels.end());
    EXPECT_EQ(colors, (std::set<uint32_t>{0, kWhite})) << "no gray, as for a printer";
}

TEST(MetafilePlayer, RefusesWhatIsNoMetafile) {
    Page page(60, 40);
    EXPECT_EQ(ThrownText<PageError>([&] { PlayMetafile(Bytes("nothing"), kFrame, page.Played()); }),
              "can't be drawn: GDI does not take this metafile");
}

#else

// There is no GDI to draw with natively.
TEST(MetafilePlayer, SaysWhichBuildDraws) {
    Page page(60, 40);
    LoadedFonts fonts;
    EXPECT_FALSE(fonts.Load(Bytes(MakeBoxFont("Boxes"))));
    const std::string file = Drawing().Bar(0, 0, 1, 1).File();
    EXPECT_THAT(ThrownText<PageError>([&] { PlayMetafile(Bytes(file), kFrame, page.Played()); }),
                HasSubstr("metafiles need the Windows build, which has GDI"));
    EXPECT_EQ(page.At(0, 0), kWhite);
}

#endif

}  // namespace orvex::tools
