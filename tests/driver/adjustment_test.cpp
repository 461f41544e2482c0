// The color adjustment of a job, as its log and its rows show it.

#include "tests/driver/send_page_fixture.h"

namespace orvex {

using namespace tools;
using testing::Contains;

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

TEST_F(Adjustment, PrintsOtherInksWithOtherScales) {
    const Rows rows = Print(Adjusted(Landscape()));
    Session().EndDoc(Current());
    installation.Write("settings.inf", "[Color]\r\nblack_scale=2000\r\n");
    EXPECT_NE(Print(Adjusted(Landscape())), rows);
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
