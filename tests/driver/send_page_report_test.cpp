#include "tests/driver/send_page_fixture.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using SendPage = SendPageTest;

TEST_F(SendPage, ReportsARefusedPageAndStillCountsIt) {
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

TEST_F(SendPage, CountsEveryRowOnceInTheNumberOfARefusedRowWhereverTheFillIs) {
    DeviceMode mode = Mode();
    mode.priv.kws = 1;
    mode.priv.kws_fullwidth = 1;
    const int top = (3510 - kW) / 2;
    struct Case {
        int16_t alignment;
        int nth;
    };
    // The fill comes before the image, after it, or in two halves.
    for (const Case& item :
         {Case{1, 1}, {1, top}, {1, top + 6}, {1, top + kW + 3}, {0, 3510 - kW + 6}, {2, 6}, {2, kW + 6}}) {
        mode.priv.alignment = item.alignment;
        engine.Fail("RasterRow", item.nth);
        EXPECT_EQ(Print(mode, false).size(), static_cast<size_t>(item.nth));
        EXPECT_THAT(LogLines(),
                    Contains("[Error] Error: could not send raster row " + std::to_string(item.nth - 1)));
        EXPECT_THAT(engine.calls, AllOf(Not(Contains("RasterBlockEnd")), Not(Contains("PageEnd"))));
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
    mode.priv.purgeDots = 10;
    mode.priv.phHOffset = -20;
    struct Case {
        int16_t bar;
        const char* line;
    };
    for (const Case& item :
         {Case{1, "[Info]  purgebar: lead:1 10 65 537"}, {2, "[Info]  purgebar: lead:0 10 65 537"}}) {
        mode.priv.purgeBar = item.bar;
        PrintSize(mode, 353, kH);  // leaves an odd row to fill
        EXPECT_THAT(LogLines(),
                    AllOf(Contains("[Info]  Fullphwidth:  1578 353 1579"), Contains(item.line),
                          Contains("[Info]  phOffset:23 topOff:0 fullTopFillPx:1578 fullBottomFillPx:1579")));
        Session().EndDoc(Current());
    }
}

TEST_F(SendPage, LogsAPrintHeadOffsetAndHowItMovedThePage) {
    struct Case {
        int16_t alignment, offset;
        bool fullWidth;
        std::vector<std::string> starts;  // of the lines
    };
    const Case cases[] = {
        {0, 20, false, {":-24 topOff:", ": ar=-24 topOff=3132"}},
        {2, -20, false, {":23 topOff:", ": al=23 topOff=23"}},
        {0, 20, true, {":-24 topOff:", ": fw ar=24"}},
        {2, -20, true, {":23 topOff:", ": fw al=23"}},
        {1, 20, true, {":-24 topOff:", ": fw c=-24"}},
        {2, -2, false, {":1 topOff:", ": al=1 topOff=1"}},
        {2, 0, false, {}},
        // Offsets out of the print head move nothing.
        {0, -20, false, {":23 topOff:"}},
        {2, 20, false, {":-24 topOff:"}},
        {0, -20, true, {":23 topOff:"}},
        {2, 20, true, {":-24 topOff:"}},
    };
    for (const Case& item : cases) {
        DeviceMode mode = Mode();
        mode.priv.alignment = item.alignment;
        mode.priv.phHOffset = item.offset;
        mode.priv.kws = mode.priv.kws_fullwidth = item.fullWidth;
        Print(mode, false);
        std::vector<std::string> lines = LogLines();
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("[Info]  phOffset"); });
        SCOPED_TRACE(testing::Message() << item.alignment << " " << item.offset << " " << item.fullWidth);
        ASSERT_EQ(lines.size(), item.starts.size());
        for (size_t i = 0; i < lines.size(); ++i) {
            EXPECT_THAT(lines[i], StartsWith("[Info]  phOffset" + item.starts[i]));
        }
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

DWORD step = 0;

DWORD WINAPI SlowingClock() {
    return now += now / 16 + 1;
}

DWORD WINAPI SteadyClock() {
    return now += step;
}

}  // namespace

TEST_F(SendPage, LogsTheStagesThatItsRowOrderTimes) {
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

TEST_F(SendPage, LogsTheLongestDurationOfEachStageSoFar) {
    mask = 3;
    Session();
    const ImportPatch clock(Session().Driver().Module(), "GetTickCount",
                            reinterpret_cast<void*>(&SteadyClock));
    // The clock is read at both ends of each stage of a row. All rows are white, so only the first two are
    // converted, and the first of each of the five other bands of columns that are read at once.
    constexpr int kReadings = 1 + 4 * kWidthPx + 2 * (2 + 5) + 1;
    static_assert(kWidthPx > 5 * 64 && kWidthPx <= 6 * 64);
    const auto device = StartPage(Mode());
    struct Page {
        int step;  // milliseconds between two readings
        bool slowest;
    };
    for (const Page& page : {Page{3, true}, {3, false}, {2, false}, {4, true}}) {
        now = 1000;
        step = static_cast<DWORD>(page.step);
        LogLines();
        ASSERT_TRUE(Session().SendPage(*device));
        std::vector<std::string> lines = LogLines();
        std::erase_if(lines, [](const std::string& line) { return line.find("ms") == std::string::npos; });
        const auto took = [&](const std::string& line, int readings) {
            return line + std::to_string(readings * page.step) + "ms";
        };
        std::vector<std::string> expected;
        if (page.slowest) {
            expected = {took("[Info]  setup: ", 1), took("[Info]  P Reformat: ", 1),
                        took("[Info]  P Convert: ", 1), took("[Info]  P Encode: ", 1)};
        }
        expected.push_back(took("[Trace] Finished main rendering loop: ", kReadings));
        expected.push_back(took("[Info]  Page Time elapsed : ", kReadings + 2));
        EXPECT_EQ(lines, expected);
        ASSERT_TRUE(Session().StartPage(*device));
    }
    Session().EndDoc(*device);
}

TEST_F(SendPage, LogsHowLongARefusedRowTookBeforeTheRefusal) {
    Session();
    const ImportPatch clock(Session().Driver().Module(), "GetTickCount",
                            reinterpret_cast<void*>(&SlowingClock));
    now = 0;
    engine.Fail("RasterRow", 1);
    Print(Mode(), false);
    const std::vector<std::string> lines = LogLines();
    const auto refusal = std::find(lines.begin(), lines.end(), "[Error] Error: could not send raster row 0");
    ASSERT_NE(refusal, lines.end());
    EXPECT_THAT(refusal[-1], StartsWith("[Info]  P Encode: "));
}

TEST_F(SendPage, MakesNoThumbnailOfA24BitBitmap) {
    installation.Write("settings.inf", "[Driver]\nAdd_Thumb=1\n");
    const auto device = StartPage(Landscape());
    std::vector<uint8_t> bytes(static_cast<size_t>(kH) * 3 * kW, 0xFF);
    SURFOBJ surface = *device->Surface();
    surface.iBitmapFormat = BMF_24BPP;
    surface.pvBits = surface.pvScan0 = bytes.data();
    surface.lDelta = kH * 3;
    surface.cjBits = static_cast<ULONG>(bytes.size());
    LogLines();
    ASSERT_TRUE(Session().Hooks().sendPage(&surface));
    EXPECT_THAT(LogLines(),
                AllOf(Contains("[Info]  [Driver]:Add_Thumb=:1"), Not(Contains(HasSubstr("add page thumb")))));
    Session().EndDoc(*device);
}

}  // namespace orvex
