#include "tests/driver/send_page_fixture.h"
#include "tests/plain/page_order.h"
#include "tests/plain/plain_rows.h"

namespace orvex {

using namespace tools;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

using SendPage = SendPageTest;

TEST_F(SendPage, SendsThePixelsOfEveryRowOrder) {
    struct {
        const SURFOBJ* surface;
        int32_t width, height;
        uint32_t Pixel(int32_t x, int32_t y) const { return DriverTest::Pixel(*surface, x, y) & 0xFFFFFF; }
    } page;
    for (int choices = 0; choices < 8; ++choices) {
        const RowOrder order{(choices & 4) != 0, (choices & 2) != 0, (choices & 1) != 0};
        DeviceMode mode = order.landscape ? Landscape() : Mode();
        mode.priv.rotate180 = order.rotate180;
        mode.priv.mirrorImage = order.mirrorImage;
        SCOPED_TRACE(choices);
        const Rows rows = Print(mode);
        const SURFOBJ& surface = *Current().Surface();
        page = {&surface, surface.sizlBitmap.cx, surface.sizlBitmap.cy};
        ExpectRows(rows, kW, kH, [&](int32_t row, int32_t i) {
            return ProfileColor(plain::PagePixel(page, order, row, i), false);
        });
        Session().EndDoc(Current());
    }
}

TEST_F(SendPage, SendsA24BitBitmapToo) {
    const auto device = StartPage(Landscape());
    std::vector<uint8_t> bytes(static_cast<size_t>(kH) * 3 * kW, 0xFF);
    constexpr uint8_t kTwoPixels[] = {0x30, 0x20, 0x10, 0xD0, 0xE0, 0xF0};
    std::copy(std::begin(kTwoPixels), std::end(kTwoPixels), bytes.begin());
    SURFOBJ surface = *device->Surface();
    surface.iBitmapFormat = BMF_24BPP;
    surface.pvBits = surface.pvScan0 = bytes.data();
    surface.lDelta = kH * 3;
    ASSERT_TRUE(Session().Hooks().sendPage(&surface));
    EXPECT_EQ(engine.rows[0][0], ProfileColor(0x102030, false));
    EXPECT_EQ(engine.rows[0][1], ProfileColor(0xF0E0D0, false));
    EXPECT_EQ(engine.rows[0][2], 0u);
    Session().EndDoc(*device);
}

TEST_F(SendPage, ReadsABottomUpBitmapFromItsTopScanLine) {
    const auto device = StartPage(Landscape());
    std::vector<uint32_t> pixels = {0x000000, 0xFFFFFF, 0x102030, 0xF0E0D0};  // the lower line comes first
    SURFOBJ surface = *device->Surface();
    surface.sizlBitmap = {2, 2};
    surface.pvBits = pixels.data();
    surface.pvScan0 = pixels.data() + 2;
    surface.lDelta = -8;
    ASSERT_TRUE(Session().Hooks().sendPage(&surface));
    EXPECT_THAT(engine.rows, ElementsAre(Row{ProfileColor(0x102030, false), ProfileColor(0xF0E0D0, false)},
                                         Row{ProfileColor(0x000000, false), 0}));
    Session().EndDoc(*device);
}

TEST_F(SendPage, SendsTheFillOfAPageWithoutRowsAndClosesBlockAndPage) {
    DeviceMode mode = Mode();
    mode.priv.kws = 1;
    mode.priv.kws_fullwidth = 1;
    EXPECT_EQ(PrintSize(mode, 0, 100).size(), 3510u);
    EXPECT_THAT(engine.calls, ElementsAre("JobStart 0 0", "PageStart 4800 86616",
                                          "RasterBlockStart 0 0 100 3510", "RasterBlockEnd", "PageEnd"));
    EXPECT_EQ(PageCount(), 1u);
    Session().EndDoc(Current());
    EXPECT_THAT(PrintSize(Mode(), 0, 100), IsEmpty());
    EXPECT_EQ(engine.calls.back(), "PageEnd");
}

TEST_F(SendPage, SendsRowsWithoutPixels) {
    EXPECT_THAT(PrintSize(Landscape(), 0, 3), ElementsAre(IsEmpty(), IsEmpty(), IsEmpty()));
    EXPECT_EQ(engine.calls.back(), "PageEnd");
}

TEST_F(SendPage, EndsBeforeTheFirstRowIfRowsAreTooLongToCount) {
    DeviceMode mode = Mode();
    mode.priv.purgeBar = 1;
    EXPECT_THAT(PrintSize(mode, 0, INT32_MAX), IsEmpty());
    EXPECT_THAT(LogLines(), Contains("[Error] Error: could not allocate rows of " +
                                     std::to_string(INT32_MIN + 55) + " pixels"));
    EXPECT_TRUE(engine.calls.back().starts_with("RasterBlockStart "));
    EXPECT_EQ(PageCount(), 1u);
}

TEST_F(SendPage, OpensAndClosesPageAndBlock) {
    Print(Mode());
    EXPECT_THAT(engine.calls, ElementsAre("JobStart 0 0",
                                          "PageStart " + std::to_string(24 * kH + 2400) + " " +
                                              std::to_string(24 * kW + 2400),
                                          "RasterBlockStart 0 0 472 354", "RasterBlockEnd", "PageEnd"));
    EXPECT_EQ(PageCount(), 1u);
}

TEST_F(SendPage, MarksAnEmptyFirstPixelOfTheFirstRowOnly) {
    const Rows rows = Print(Mode(), false);
    EXPECT_EQ(rows[0][0], 2u);
    EXPECT_EQ(rows[0][1], 0u);
    EXPECT_EQ(rows[1][0], 0u);
}

TEST_F(SendPage, MarksTheFirstPixelInEveryOrientation) {
    for (int order = 0; order < 8; ++order) {
        DeviceMode mode = order & 4 ? Landscape() : Mode();
        mode.priv.rotate180 = order >> 1 & 1;
        mode.priv.mirrorImage = order & 1;
        EXPECT_EQ(Print(mode, false)[0][0], 2u) << order;
        Session().EndDoc(Current());
    }
}

TEST_F(SendPage, PutsALeadingPurgeBarBeforeTheImage) {
    DeviceMode mode = Mode();
    mode.priv.purgeBar = 1;
    mode.priv.purgeDots = 10;
    const Rows rows = Print(mode);
    const int32_t lead = 10 + 11 * 5;
    ExpectRows(rows, kW, kH + lead, [&](int32_t row, int32_t i) -> uint32_t {
        if (i < 10) return 0xFFFFFFFF;
        return i < lead ? 0 : Ink(kW - 1 - row, i - lead);
    });
    EXPECT_THAT(engine.calls, Contains("RasterBlockStart 0 0 " + std::to_string(kH + lead) + " 354"));
}

TEST_F(SendPage, EndsTrailingPurgeDotsOnePixelBeforeTheRowEnds) {
    struct Case {
        int16_t dpi;
        int32_t gapPx;
        uint32_t dot;
    };
    for (const Case& item : {Case{300, 11 * 5, 0xFFFFFFFF}, {600, 23 * 5, 0x7F7F7F7F}}) {
        DeviceMode mode = Landscape();
        mode.pub.dmPrintQuality = item.dpi;
        mode.priv.purgeBar = 2;
        mode.priv.purgeDots = 10;
        const Rows rows = PrintSize(mode, 1000 - (10 + item.gapPx), 2);
        ASSERT_EQ(rows[1].size(), 1000u);
        for (size_t i = 0; i < 1000; ++i) {
            EXPECT_EQ(rows[1][i], i >= 989 && i <= 998 ? item.dot : 0u) << i;
        }
        Session().EndDoc(Current());
    }
}

TEST_F(SendPage, PurgesPagesAtItsFrequencyOnly) {
    constexpr uint32_t kDot = 0xFFFFFFFF;
    const auto purged = [&](int16_t frequency, int pageCount = 4) {
        DeviceMode mode = Mode();
        mode.priv.purgeBar = 2;
        mode.priv.purgeFreq = frequency;
        const auto device = StartPage(mode);
        std::vector<uint32_t> pages;  // the only dot of each page's fourth row
        for (int page = 1; page <= pageCount; ++page) {
            if (page > 1) {
                EXPECT_TRUE(Session().StartPage(*device));
            }
            EXPECT_TRUE(Session().SendPage(*device));
            pages.push_back(engine.rows[3].end()[-2]);
        }
        Session().EndDoc(*device);
        return pages;
    };
    EXPECT_THAT(purged(0), ElementsAre(kDot, 0u, 0u, 0u));
    EXPECT_THAT(purged(1), Each(kDot));
    EXPECT_THAT(purged(2), ElementsAre(kDot, 0u, kDot, 0u));
    EXPECT_THAT(purged(10, 11), ElementsAre(kDot, 0u, 0u, 0u, 0u, 0u, 0u, 0u, 0u, 0u, kDot));
}

TEST_F(SendPage, LeavesTheMarkerInAPurgeBarWithoutDots) {
    DeviceMode mode = Mode();
    mode.priv.purgeBar = 1;
    const auto device = StartPage(mode);
    ASSERT_TRUE(Session().StartPage(*device));  // page 2 has no dots
    ASSERT_TRUE(Session().SendPage(*device));
    EXPECT_EQ(engine.rows[0][0], 2u);
    EXPECT_EQ(engine.rows[1][0], 2u);  // conversion writes the image area only
    Session().EndDoc(*device);
}

TEST_F(SendPage, FillsTheHeadWithThePatternAroundAFullWidthPage) {
    DeviceMode mode = Mode();
    mode.priv.kws = 1;
    mode.priv.kws_fullwidth = 1;
    const Rows rows = Print(mode);
    ASSERT_EQ(rows.size(), 3510u);
    const size_t top = (3510 - kW) / 2;
    constexpr uint32_t kPattern[] = {0x4, 0x400, 0x40000, 0x4000000};
    for (const size_t fill : {size_t{0}, top - 1, top + kW, size_t{3509}}) {
        for (size_t i = 0; i < rows[fill].size(); ++i) ASSERT_EQ(rows[fill][i], kPattern[i % 4]) << fill;
    }
    for (int32_t row = 0; row < kW; ++row) {
        for (int32_t i = 0; i < kH; ++i) {
            const uint32_t ink = Ink(kW - 1 - row, i);
            ASSERT_EQ(rows[top + static_cast<size_t>(row)][static_cast<size_t>(i)],
                      ink != 0 ? ink : kPattern[i % 4]);
        }
    }
    EXPECT_THAT(engine.calls, Contains("RasterBlockStart 0 0 472 3510"));
}

TEST_F(SendPage, FillsTheHeadWithThePatternAroundAPageOnePixelWide) {
    DeviceMode mode = Landscape();
    mode.priv.kws = 1;
    mode.priv.kws_fullwidth = 1;
    const Rows rows = PrintSize(mode, 1, 8);
    ASSERT_EQ(rows.size(), 3510u);
    EXPECT_THAT(rows, Each(ElementsAre(0x4u)));
}

TEST_F(SendPage, FillsWithTheLightPatternAt600Dpi) {
    DeviceMode mode = Mode();
    mode.pub.dmPrintQuality = 600;
    mode.priv.kws = 1;
    mode.priv.kws_fullwidth = 1;
    mode.priv.alignment = 2;
    const Rows rows = Print(mode, false);
    ASSERT_EQ(rows.size(), 7020u);
    EXPECT_THAT(Row(rows[7019].begin(), rows[7019].begin() + 5),
                ElementsAre(0x2u, 0x200u, 0x20000u, 0x2000000u, 0x2u));
}

TEST_F(SendPage, FillsWithNothingWhenOnlyAPurgeBarAsksForFullWidth) {
    DeviceMode mode = Mode();
    mode.priv.purgeBar = 1;
    mode.priv.purgeDots = 10;
    mode.priv.kws_fullwidth = 1;
    const Rows rows = Print(mode);
    ASSERT_EQ(rows.size(), 3510u);
    for (const size_t fill : {size_t{0}, size_t{3509}}) {
        for (size_t i = 0; i < rows[fill].size(); ++i) ASSERT_EQ(rows[fill][i], i < 10 ? 0xFFFFFFFFu : 0u);
    }
}

TEST_F(SendPage, PrintsInGrayInAGrayColorMode) {
    DeviceMode mode = Landscape();
    mode.priv.colorMode = 2;
    const Rows rows = Print(mode);
    ExpectRows(rows, kW, kH, [&](int32_t row, int32_t i) {
        return plain::Print(Ink(i, row), static_cast<size_t>(i), {.grayMode = 2});
    });
}

TEST_F(SendPage, SendsNothingWithoutABoundEngine) {
    const auto device = Enable(Mode());
    EXPECT_TRUE(Session().StartPage(*device));
    EXPECT_TRUE(Session().SendPage(*device));
    EXPECT_THAT(engine.calls, IsEmpty());
}

TEST_F(SendPage, LeavesTheBitmapUnchanged) {
    const auto device = StartPage(Mode());
    Paint(*device->Surface());
    const SURFOBJ& surface = *device->Surface();
    const std::vector<uint8_t> before(static_cast<const uint8_t*>(surface.pvBits),
                                      static_cast<const uint8_t*>(surface.pvBits) + surface.cjBits);
    ASSERT_TRUE(Session().SendPage(*device));
    EXPECT_EQ(memcmp(before.data(), surface.pvBits, before.size()), 0);
    Session().EndDoc(*device);
}

}  // namespace orvex
