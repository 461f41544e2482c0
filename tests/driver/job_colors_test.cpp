// The profile and the color adjustment of a job.

#include "tests/driver/print_job_fixture.h"
#include "tests/driver/send_page_fixture.h"
#include "tests/plain/long_hand_adjustment.h"
#include "tests/plain/plain_colors.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

using JobColors = PrintJobTest;

TEST_F(JobColors, AreLoadedFromAProfileThatIsLogged) {
    const auto device = Enable(Mode());
    LogLines();
    ASSERT_TRUE(Start(*device));
    const auto lines = LogLines();
    EXPECT_THAT(lines, Contains("[Info]  Load profile [test.zvp]"));
    EXPECT_THAT(lines, Contains("[Info]  Profile version:5"));
    Session().EndDoc(*device);
}

TEST_F(JobColors, AreGenericWithoutAProfile) {
    std::filesystem::remove_all(installation.Path() / "profiles");
    DeviceMode mode = Mode();
    mode.priv.colorProfile[0] = 0;
    EXPECT_THAT(HeaderOf(mode), HasSubstr("@PJL SET PROFILE=\"Default\"\n"));
    EXPECT_THAT(LogLines(),
                AllOf(Contains("[Info]  Load deafult profile"), Contains("[Info]  generic profile")));
}

TEST_F(JobColors, GiveTheHeaderTheProfilesNameAndResolutionCode) {
    EXPECT_THAT(HeaderOf(Mode()),
                AllOf(HasSubstr("@PJL SET PROFILE=\"Test colours\"\n"), HasSubstr("@PJL SET HPRES=3\n")));
}

TEST_F(JobColors, AreGenericForAMissingProfileWhoseFileNameIsKept) {
    DeviceMode mode = Mode();
    mode.priv.colorProfile[0] = 'r';
    EXPECT_THAT(HeaderOf(mode),
                AllOf(HasSubstr("@PJL SET PROFILE=\"rest.zvp\"\n"), HasSubstr("@PJL SET HPRES=48\n")));
    EXPECT_THAT(LogLines(), Contains("[Error] Error: could not open file [profiles\\rest.zvp]"));
}

TEST_F(JobColors, HaveNoResolutionCodeFromTheJobBefore) {
    HeaderOf(Mode());
    Printer().written.clear();
    std::filesystem::remove_all(installation.Path() / "profiles");
    DeviceMode mode = Mode();
    mode.priv.colorProfile[0] = 0;
    EXPECT_THAT(HeaderOf(mode), HasSubstr("@PJL SET HPRES=48\n"));
}

TEST_F(JobColors, AreNotAdjustedWhenAllValuesAreZero) {
    const auto device = Enable(Mode());
    LogLines();
    ASSERT_TRUE(Start(*device));
    EXPECT_THAT(LogLines(), Not(Contains(HasSubstr("ca "))));
    Session().EndDoc(*device);
}

TEST_F(JobColors, AreAdjustedWhenAnyValueIsSet) {
    DeviceMode mode = Mode();
    mode.priv.adj_brightness = 1;
    mode.priv.adj_saturation = 2;
    mode.priv.adj_colortone = 3;
    mode.priv.adj_cyan = 4;
    mode.priv.adj_magenta = 5;
    mode.priv.adj_yellow = 6;
    mode.priv.adj_black = -7;
    const auto device = Enable(mode);
    LogLines();
    ASSERT_TRUE(Start(*device));
    // T, B, S, C, K, Y, M: tone 3 / 100 * 3500, brightness 1 / 200, saturation 2 / 100, cyan 4 * 50,
    // black -7 * 9341 / 400, yellow 6 * 50, magenta 5 * 50
    EXPECT_THAT(
        LogLines(),
        AllOf(Contains("[Error] ca t:3,b:1,s:2,C:4,M:5,Y:6,K:-7"),
              Contains(
                  "[Error] ca 105.000000,0.005000,0.020000,200.000000,-163.467500,300.000000,250.000000")));
    Session().EndDoc(*device);
}

using Adjustment = SendPageTest;

namespace {

DeviceMode Adjusted(DeviceMode mode) {
    mode.priv.adj_brightness = 10;
    mode.priv.adj_saturation = 20;
    mode.priv.adj_colortone = 30;
    mode.priv.adj_cyan = 40;
    mode.priv.adj_magenta = 50;
    mode.priv.adj_yellow = 60;
    mode.priv.adj_black = 70;
    return mode;
}

}  // namespace

TEST_F(Adjustment, TakesItsScalesFromTheSettings) {
    installation.Write("settings.inf",
                       "[Color]\r\ntone_scale=50\r\nsaturation_scale=80\r\nbrightness_scale=125\r\n"
                       "black_scale=400\r\nyellow_scale=10\r\ncyan_scale=20\r\nmagenta_scale=30.5\r\n");
    const auto device = Enable(Adjusted(Mode()));
    LogLines();
    ASSERT_TRUE(Session().StartDoc(*device, "title", 1));
    EXPECT_THAT(
        LogLines(),
        Contains("[Error] ca 2100.000000,0.040000,0.250000,400.000000,817.337500,300.000000,762.500000"));
    Session().EndDoc(*device);
}

TEST_F(Adjustment, PrintsTheInksOfTheAdjustedGrid) {
    std::vector<uint32_t> grid;
    for (int point = 0; point < kGridPoints; ++point) {
        const uint32_t color =
            ColorIndex(GridValue(point / 289), GridValue(point / 17 % 17), GridValue(point % 17));
        grid.push_back(ProfileColor(color, false));
    }
    for (const double blackScale : {200.0, 2000.0}) {
        installation.Write("settings.inf", "[Color]\r\nblack_scale=" + std::to_string(blackScale) + "\r\n");
        const std::vector<uint32_t> adjusted =
            plain::AdjustedGrid(grid, {10, 20, 30, 40, 50, 60, 70}, {.black = blackScale});
        const Rows rows = Print(Adjusted(Landscape()));
        ExpectRows(rows, kW, kH, [&](int32_t row, int32_t i) {
            const uint32_t color = Pixel(*Current().Surface(), i, row);
            const auto step = [](uint32_t component) { return (component + 1) / 16; };
            return adjusted[step(plain::Red(color)) * 289 + step(plain::Green(color)) * 17 +
                            step(plain::Blue(color))];
        });
        Session().EndDoc(Current());
    }
}

TEST_F(Adjustment, WithoutSettingsLooksForEachScaleAndTakesTheDefaults) {
    const auto device = Enable(Adjusted(Mode()));
    LogLines();
    ASSERT_TRUE(Session().StartDoc(*device, "title", 1));
    const std::vector<std::string> lines = LogLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "[Error] failed to open settings.inf"), 7);
    EXPECT_THAT(
        lines,
        Contains("[Error] ca 1050.000000,0.050000,0.200000,2000.000000,1634.675000,3000.000000,2500.000000"));
    Session().EndDoc(*device);
}

}  // namespace orvex
