#include <random>

#include "driver/device_instance.h"
#include "tests/driver/driver_fixture.h"

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

using Row = std::vector<uint32_t>;
using Rows = std::vector<Row>;

constexpr uint32_t kGridColors[] = {0xFFFFFF, 0x000000, 0xFF0000, 0x00FF00,
                                    0x0000FF, 0x102030, 0xF0E0D0, 0x808080};

class SendPage : public DriverTest {
  protected:
    static DeviceMode Landscape() {
        DeviceMode mode = Mode();
        mode.pub.dmOrientation = DMORIENT_LANDSCAPE;
        return mode;
    }

    // Paints random colours of the profile's grid over the page.
    void Paint(const SURFOBJ& surface) {
        std::mt19937 random(7);
        auto& page = const_cast<SURFOBJ&>(surface);
        for (int32_t y = 0; y < surface.sizlBitmap.cy; ++y) {
            for (int32_t x = 0; x < surface.sizlBitmap.cx; ++x) {
                SetPixel(page, x, y,
                         kGridColors[random() % std::size(kGridColors)] | (random() & 0xFF000000));
            }
        }
    }

    // Sends one page of a new job, painted; the rows that the engine got, and the ink of the page's pixels.
    Rows Print(const DeviceMode& mode, bool painted = true) {
        device_ = StartPage(mode);
        if (painted) Paint(*device_->Surface());
        at600Dpi_ = mode.pub.dmPrintQuality == 600;
        LogLines();
        EXPECT_TRUE(Session().SendPage(*device_));
        return engine.rows;
    }
    ~SendPage() override {
        if (device_) Session().EndDoc(*device_);
    }

    uint32_t Ink(int32_t x, int32_t y) const {
        return ProfileColor(Pixel(*device_->Surface(), x, y) & 0xFFFFFF, at600Dpi_);
    }
    Device& Current() { return *device_; }
    uint32_t PageCount() const { return reinterpret_cast<PDEV*>(device_->Instance())->pageCount; }

    // Checks every row against `at(row, i)`, the ink of pixel i of image row `row`, the first-row marker
    // applied.
    template <typename InkAt>
    void ExpectRows(const Rows& rows, int32_t count, int32_t width, InkAt at) {
        ASSERT_EQ(rows.size(), static_cast<size_t>(count));
        for (int32_t row = 0; row < count; ++row) {
            ASSERT_EQ(rows[row].size(), static_cast<size_t>(width));
            for (int32_t i = 0; i < width; ++i) {
                uint32_t ink = at(row, i);
                if (row == 0 && i == 0 && ink == 0) ink = 2;
                ASSERT_EQ(rows[row][i], ink) << "row " << row << " pixel " << i;
            }
        }
    }

  private:
    std::unique_ptr<Device> device_;
    bool at600Dpi_ = false;
};

constexpr int32_t kW = 354, kH = 472;  // the page of the fixture, upright

}  // namespace

TEST_F(SendPage, SendsAPortraitPageFromItsLastColumn) {
    ExpectRows(Print(Mode()), kW, kH, [&](int32_t row, int32_t i) { return Ink(kW - 1 - row, i); });
}

TEST_F(SendPage, SendsAMirroredPortraitPageFromItsFirstColumn) {
    DeviceMode mode = Mode();
    mode.priv.mirrorImage = 1;
    ExpectRows(Print(mode), kW, kH, [&](int32_t row, int32_t i) { return Ink(row, i); });
}

TEST_F(SendPage, SendsARotatedPortraitPageFromTheBottomUp) {
    DeviceMode mode = Mode();
    mode.priv.rotate180 = 1;
    ExpectRows(Print(mode), kW, kH, [&](int32_t row, int32_t i) { return Ink(row, kH - 1 - i); });
}

TEST_F(SendPage, ShiftsARotatedMirroredPortraitPageByOneColumn) {
    DeviceMode mode = Mode();
    mode.priv.rotate180 = 1;
    mode.priv.mirrorImage = 1;
    ExpectRows(Print(mode), kW, kH, [&](int32_t row, int32_t i) -> uint32_t {
        const int32_t x = kW - row, y = kH - 1 - i;
        if (x < kW) return Ink(x, y);
        return y + 1 < kH ? Ink(0, y + 1) : 0;
    });
}

TEST_F(SendPage, SendsALandscapePageFromTheTop) {
    ExpectRows(Print(Landscape()), kW, kH, [&](int32_t row, int32_t i) { return Ink(i, row); });
}

TEST_F(SendPage, SendsAMirroredLandscapePageRightToLeft) {
    DeviceMode mode = Landscape();
    mode.priv.mirrorImage = 1;
    ExpectRows(Print(mode), kW, kH, [&](int32_t row, int32_t i) { return Ink(kH - 1 - i, row); });
}

TEST_F(SendPage, SendsARotatedLandscapePageFromTheBottomRightToLeft) {
    DeviceMode mode = Landscape();
    mode.priv.rotate180 = 1;
    ExpectRows(Print(mode), kW, kH, [&](int32_t row, int32_t i) { return Ink(kH - 1 - i, kW - 1 - row); });
}

TEST_F(SendPage, SendsARotatedMirroredLandscapePageFromTheBottom) {
    DeviceMode mode = Landscape();
    mode.priv.rotate180 = 1;
    mode.priv.mirrorImage = 1;
    ExpectRows(Print(mode), kW, kH, [&](int32_t row, int32_t i) { return Ink(i, kW - 1 - row); });
}

TEST_F(SendPage, SendsA24BitBitmapToo) {
    const auto device = StartPage(Landscape());
    std::vector<uint8_t> bytes(static_cast<size_t>(kH) * 3 * kW, 0xFF);
    bytes[0] = 0x30, bytes[1] = 0x20, bytes[2] = 0x10;
    SURFOBJ surface = *device->Surface();
    surface.iBitmapFormat = BMF_24BPP;
    surface.pvBits = surface.pvScan0 = bytes.data();
    surface.lDelta = kH * 3;
    ASSERT_TRUE(Session().Hooks().sendPage(&surface));
    EXPECT_EQ(engine.rows[0][0], ProfileColor(0x102030, false));
    EXPECT_EQ(engine.rows[0][1], 0u);
    Session().EndDoc(*device);
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

TEST_F(SendPage, PutsALeadingPurgeBarInFrontOfTheImage) {
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

TEST_F(SendPage, KeepsAPixelFreeBehindATrailingPurgeBar) {
    DeviceMode mode = Mode();
    mode.pub.dmPrintQuality = 600;
    mode.priv.purgeBar = 2;
    mode.priv.purgeDots = 10;
    const Rows rows = Print(mode, false);
    const Row& row = rows[5];
    const size_t width = row.size();
    EXPECT_EQ(row[width - 1], 0u);
    for (size_t i = 2; i <= 11; ++i) EXPECT_EQ(row[width - i], 0x7F7F7F7Fu);
    EXPECT_EQ(row[width - 12], 0u);
}

TEST_F(SendPage, PurgesOnlyThePagesOfItsFrequency) {
    const auto purged = [&](int16_t frequency) {
        DeviceMode mode = Mode();
        mode.priv.purgeBar = 1;
        mode.priv.purgeFreq = frequency;
        const auto device = StartPage(mode);
        std::vector<bool> pages;
        for (int page = 1; page <= 4; ++page) {
            if (page > 1) {
                EXPECT_TRUE(Session().StartPage(*device));
            }
            EXPECT_TRUE(Session().SendPage(*device));
            pages.push_back(engine.rows[3][0] == 0xFFFFFFFF);
        }
        Session().EndDoc(*device);
        return pages;
    };
    EXPECT_THAT(purged(0), ElementsAre(true, false, false, false));
    EXPECT_THAT(purged(1), Each(true));
    EXPECT_THAT(purged(2), ElementsAre(true, false, true, false));
}

TEST_F(SendPage, LeavesTheMarkerInAPurgeBarWithoutDots) {
    DeviceMode mode = Mode();
    mode.priv.purgeBar = 1;
    const auto device = StartPage(mode);
    ASSERT_TRUE(Session().StartPage(*device));  // page 2 carries no dots
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

TEST_F(SendPage, FillsWithNothingWhenAPurgeBarAloneAsksForFullWidth) {
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

TEST_F(SendPage, PrintsInGreyWhenTheColourModeSaysSo) {
    DeviceMode mode = Landscape();
    mode.priv.colorMode = 2;
    const Rows rows = Print(mode);
    for (size_t row = 1; row < 20; ++row) {
        for (const uint32_t ink : rows[row]) ASSERT_EQ(ink & 0xFFFFFF00, 0u);
    }
}

TEST_F(SendPage, ReportsARefusedPageAndCountsItAllTheSame) {
    mask = 3;
    engine.Fail("PageStart", 1);
    EXPECT_THAT(Print(Mode()), IsEmpty());
    EXPECT_THAT(engine.calls, Not(Contains(StartsWith("RasterBlock"))));
    EXPECT_THAT(LogLines(),
                AllOf(Contains("[Error] Error: could not start a page"), Contains("[Trace] Return: TRUE")));
    EXPECT_EQ(PageCount(), 1u);
}

TEST_F(SendPage, ReportsARefusedBlock) {
    engine.Fail("RasterBlockStart", 1, 2);
    EXPECT_THAT(Print(Mode()), IsEmpty());
    EXPECT_THAT(LogLines(), Contains("[Error] Error: could not start a raster block"));
    EXPECT_THAT(engine.calls, AllOf(Not(Contains("RasterBlockEnd")), Not(Contains("PageEnd"))));
    EXPECT_EQ(PageCount(), 1u);
}

TEST_F(SendPage, ReportsARefusedRowByItsNumberAndEndsNothing) {
    engine.Fail("RasterRow", 6);
    EXPECT_EQ(Print(Mode()).size(), 6u);
    EXPECT_THAT(LogLines(), Contains("[Error] Error: could not send raster row 5"));
    EXPECT_THAT(engine.calls, AllOf(Not(Contains("RasterBlockEnd")), Not(Contains("PageEnd"))));
    EXPECT_EQ(PageCount(), 1u);
}

TEST_F(SendPage, CountsTheFillInTheNumberOfARefusedRow) {
    DeviceMode mode = Mode();
    mode.priv.kws = 1;
    mode.priv.kws_fullwidth = 1;
    const int top = (3510 - kW) / 2;
    struct Case {
        int nth;
        int number;
    };
    for (const Case& item : {Case{1, 0}, {top, top - 1}, {top + 6, top + 5}, {top + kW + 3, top + kW + 2}}) {
        engine.Fail("RasterRow", item.nth);
        Print(mode, false);
        EXPECT_THAT(LogLines(),
                    Contains("[Error] Error: could not send raster row " + std::to_string(item.number)));
        Session().EndDoc(Current());
    }
}

TEST_F(SendPage, ReportsABlockOrPageThatDoesNotEnd) {
    engine.Fail("RasterBlockEnd", 1);
    Print(Mode(), false);
    EXPECT_THAT(LogLines(), Contains("[Error] Error: could not end a raster block"));
    EXPECT_THAT(engine.calls, Not(Contains("PageEnd")));
    Session().EndDoc(Current());
    engine.Fail("PageEnd", 1);
    Print(Mode(), false);
    EXPECT_THAT(LogLines(), AllOf(Contains("[Error] Error: could not end the page"),
                                  Not(Contains("[Info]  Finished sending page"))));
}

TEST_F(SendPage, SendsNothingWithoutABoundEngine) {
    const auto device = Enable(Mode());
    EXPECT_TRUE(Session().StartPage(*device));
    EXPECT_TRUE(Session().SendPage(*device));
    EXPECT_THAT(engine.calls, IsEmpty());
}

TEST_F(SendPage, LogsThePageStepByStep) {
    mask = 3;
    DeviceMode mode = Mode();
    mode.priv.phHOffset = -20;
    Print(mode, false);
    std::vector<std::string> lines = LogLines();
    std::erase_if(lines, [](const std::string& line) {
        return line.find("ms") != std::string::npos ||
               line.find("GetDeviceResolution") != std::string::npos || line.empty();
    });
    const int stride = kW * 4;
    EXPECT_THAT(
        lines,
        ElementsAre(
            "[Trace] <DrvSendPage>",
            "[Info]  surfobj dpi:300 sizlBitmap:354x472 cjBits:" + std::to_string(stride * kH) +
                " lDelta:" + std::to_string(stride) + " bform:6",
            "[Info]  dmOrient:1 kws:0 kwsfull:0 fw:0, purgeBar:0  purgeGap:5  purgeDots:1  overspray:0 "
            "phoffset:23",
            "[Info]  PageStart: page:13728x10896  image:11328x8496  align=1",
            "[Error] failed to open settings.inf", "[Info]  [Driver]:Add_Thumb=:0",
            "[Info]  phOffset:23 topOff:0 fullTopFillPx:0 fullBottomFillPx:0",
            "[Info]  phOffset: ph=1104 c=23", "[Info]  RasterBlockStart: 0, 46, 472, 354",
            "[Info]  Start render loop 167088 pixels rot=0 mir=0 luti=5 [title]", "[Info]  ln32: 1888 1888",
            "[Info]  Finished sending page", "[Trace] Return: TRUE", "[Trace] </DrvSendPage>"));
}

TEST_F(SendPage, LogsFullWidthAndPurgeBar) {
    DeviceMode mode = Mode();
    mode.priv.kws = 1;
    mode.priv.kws_fullwidth = 1;
    mode.priv.purgeBar = 2;
    mode.priv.purgeDots = 10;
    Print(mode, false);
    EXPECT_THAT(LogLines(), AllOf(Contains("[Info]  Fullphwidth:  1578 354 1578"),
                                  Contains("[Info]  purgebar: lead:0 10 65 537")));
}

TEST_F(SendPage, LogsWhereThePrintHeadOffsetMovedThePage) {
    struct Case {
        int16_t alignment, offset;
        bool fullWidth;
        const char* line;
    };
    for (const Case& item : {
             Case{0, 20, false, "[Info]  phOffset: ar=-24 topOff=3132"},
             {2, -20, false, "[Info]  phOffset: al=23 topOff=23"},
             {0, 20, true, "[Info]  phOffset: fw ar=24"},
             {2, -20, true, "[Info]  phOffset: fw al=23"},
             {1, 20, true, "[Info]  phOffset: fw c=-24"},
         }) {
        DeviceMode mode = Mode();
        mode.priv.alignment = item.alignment;
        mode.priv.phHOffset = item.offset;
        mode.priv.kws = mode.priv.kws_fullwidth = item.fullWidth;
        Print(mode, false);
        EXPECT_THAT(LogLines(), Contains(item.line));
        Session().EndDoc(Current());
    }
}

TEST_F(SendPage, LogsTheFirstPagesGeometryOnce) {
    const auto device = StartPage(Mode());
    ASSERT_TRUE(Session().SendPage(*device));
    ASSERT_TRUE(Session().StartPage(*device));
    LogLines();
    ASSERT_TRUE(Session().SendPage(*device));
    EXPECT_THAT(LogLines(), AllOf(Not(Contains(StartsWith("[Info]  surfobj"))),
                                  Not(Contains(StartsWith("[Info]  dmOrient"))),
                                  Contains(StartsWith("[Info]  PageStart:"))));
    Session().EndDoc(*device);
}

namespace {

DWORD now = 0;

DWORD WINAPI SlowingClock() {
    return now += now / 16 + 1;
}

}  // namespace

TEST_F(SendPage, LogsEachStageOnlyWhenItTookLongerThanEver) {
    mask = 3;
    struct Case {
        bool landscape, rotate, mirror;
        bool reformat, stages;
    };
    for (const Case& item : {Case{false, false, false, true, true},
                             {false, false, true, false, true},
                             {false, true, false, false, true},
                             {true, false, false, true, true},
                             {true, false, true, false, true},
                             {true, true, false, false, false},
                             {true, true, true, false, false}}) {
        DeviceMode mode = item.landscape ? Landscape() : Mode();
        mode.priv.rotate180 = item.rotate;
        mode.priv.mirrorImage = item.mirror;
        std::vector<std::string> lines;
        {
            const ImportPatch clock(Session().Driver().Module(), "GetTickCount",
                                    reinterpret_cast<void*>(&SlowingClock));
            now = 0;
            Print(mode, false);
            lines = LogLines();
        }
        const std::string letter = item.landscape ? "L" : "P";
        const auto logged = [&](const std::string& stage) {
            return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
                return line.starts_with("[Info]  " + letter + " " + stage + ": ");
            });
        };
        EXPECT_EQ(logged("Reformat"), item.reformat);
        EXPECT_EQ(logged("Convert"), item.stages);
        EXPECT_EQ(logged("Encode"), item.stages);
        EXPECT_THAT(lines, AllOf(Contains(StartsWith("[Info]  setup: ")),
                                 Contains(StartsWith("[Trace] Finished main rendering loop: ")),
                                 Contains(StartsWith("[Info]  Page Time elapsed : "))));
        Session().EndDoc(Current());
    }
}

TEST_F(SendPage, KeepsTheBitmapAsItWas) {
    const auto device = StartPage(Mode());
    Paint(*device->Surface());
    const SURFOBJ& surface = *device->Surface();
    const std::vector<uint8_t> before(static_cast<const uint8_t*>(surface.pvBits),
                                      static_cast<const uint8_t*>(surface.pvBits) + surface.cjBits);
    ASSERT_TRUE(Session().SendPage(*device));
    EXPECT_EQ(memcmp(before.data(), surface.pvBits, before.size()), 0);
    Session().EndDoc(*device);
}
