#include "tools/orvexprint/setting_table.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

#include "tests/tools/common/thrown_text.h"

namespace orvex::tools::print {

using testing::HasSubstr;

namespace {

int Parse(const char* option, std::string_view text) {
    return ParseSetting(FindSetting(option), text);
}

// Returns the option's error for a value; empty if it accepts the value.
std::string Complaint(const char* option, std::string_view text) {
    return ThrownText<OptionError>([&] { Parse(option, text); });
}

int Written(const char* option, int value) {
    DeviceMode mode = {};
    WriteSetting(mode, FindSetting(option), value);
    return ReadSetting(mode, FindSetting(option));
}

}  // namespace

TEST(SettingTable, NamesEveryOptionOnce) {
    std::set<std::string> options;
    for (const Setting& setting : Settings()) {
        EXPECT_TRUE(options.insert(setting.option).second) << setting.option;
        EXPECT_TRUE(std::string_view(setting.option).starts_with("--"));
        EXPECT_STRNE(setting.help, "");
    }
}

TEST(SettingTable, WritesAndReadsEverySettingWithoutTouchingOthers) {
    for (const Setting& setting : Settings()) {
        DeviceMode mode = {};
        const int value = setting.words.empty()
                              ? setting.numbers.empty() ? setting.most : setting.numbers.back()
                              : setting.words.front().value;
        WriteSetting(mode, setting, value);
        EXPECT_EQ(ReadSetting(mode, setting), value) << setting.option;
        EXPECT_EQ(mode.pub.dmFields, setting.flag) << setting.option;
        for (const Setting& other : Settings()) {
            const bool shared =
                other.field.offset == setting.field.offset ||
                (setting.switchedOn.size != 0 && other.field.offset == setting.switchedOn.offset);
            if (!shared) {
                EXPECT_EQ(ReadSetting(mode, other), 0) << other.option << " with " << setting.option;
            }
        }
    }
}

TEST(SettingTable, KeepsTheSignOfFieldsOfEverySize) {
    EXPECT_EQ(Written("--brightness", -100), -100);
    EXPECT_EQ(Written("--print-head-offset", -1000), -1000);
    EXPECT_EQ(Written("--grey", 2), 2);
}

TEST(SettingTable, WritesTheRightFields) {
    DeviceMode mode = {};
    const auto with = [&](const char* option, const char* text) -> const DeviceMode& {
        WriteSetting(mode, FindSetting(option), Parse(option, text));
        return mode;
    };
    EXPECT_EQ(with("--dpi", "600").pub.dmPrintQuality, 600);
    EXPECT_EQ(with("--orientation", "landscape").pub.dmOrientation, 2);
    EXPECT_EQ(with("--align", "left").priv.alignment, 2);
    EXPECT_EQ(with("--print-head-offset", "-2.5mm").priv.phHOffset, -25);
    EXPECT_EQ(with("--tof-offset", "0.1").priv.phVOffset, 1);
    EXPECT_EQ(with("--purge-bar", "trailing").priv.purgeBar, 2);
    EXPECT_EQ(with("--purge-dots", "10").priv.purgeDots, 10);
    EXPECT_EQ(with("--purge-gap", "15mm").priv.purgeGap, 15);
    EXPECT_EQ(with("--purge-freq", "50").priv.purgeFreq, 50);
    EXPECT_EQ(with("--grey", "black").priv.colorMode, 2);
    EXPECT_EQ(with("--copies", "12").pub.dmCopies, 12);
    EXPECT_EQ(with("--collate", "on").pub.dmCollate, 1);
    EXPECT_EQ(with("--chunk", "40").priv.chunksize, 40);
    EXPECT_EQ(mode.priv.chunkActive, 1);
    EXPECT_EQ(with("--private-copies", "3").priv.copies, 3);
    EXPECT_EQ(mode.priv.usePrivateCopies, 1);
    EXPECT_EQ(with("--tone", "-7").priv.adj_colortone, -7);
    EXPECT_EQ(with("--black", "9").priv.adj_black, 9);
    EXPECT_EQ(mode.pub.dmFields,
              static_cast<DWORD>(DM_PRINTQUALITY | DM_ORIENTATION | DM_COPIES | DM_COLLATE));
}

TEST(SettingTable, ReadsLengthsInMillimetersAndInches) {
    EXPECT_EQ(Parse("--print-head-offset", "2.0mm"), 20);
    EXPECT_EQ(Parse("--print-head-offset", "2 mm"), 20);
    EXPECT_EQ(Parse("--print-head-offset", "+2"), 20);
    EXPECT_EQ(Parse("--print-head-offset", "1in"), 254);
    EXPECT_EQ(Parse("--print-head-offset", "0.1 in"), 25);
    EXPECT_EQ(Parse("--print-head-offset", "-100"), -1000);
    EXPECT_EQ(Complaint("--print-head-offset", "100.1mm"),
              "--print-head-offset: \"100.1mm\" is not allowed; it takes -100.0 to 100.0 mm");
    EXPECT_THAT(Complaint("--print-head-offset", "0.05"), HasSubstr("-100.0 to 100.0 mm"));
    EXPECT_THAT(Complaint("--print-head-offset", "2cm"), HasSubstr("\"2cm\""));
    EXPECT_THAT(Complaint("--print-head-offset", "mm"), HasSubstr("\"mm\""));
}

TEST(SettingTable, NamesOptionValueAndRangeOfAWrongValue) {
    EXPECT_EQ(Complaint("--dpi", "720"), "--dpi: \"720\" is not allowed; it takes 300 or 600 dpi");
    EXPECT_EQ(Complaint("--purge-gap", "7"), "--purge-gap: \"7\" is not allowed; it takes 5, 10 or 15 mm");
    EXPECT_EQ(Complaint("--purge-bar", "2"),
              "--purge-bar: \"2\" is not allowed; it takes off, leading or trailing");
    EXPECT_EQ(Complaint("--align", "top"), "--align: \"top\" is not allowed; it takes left, centre or right");
    EXPECT_EQ(Complaint("--copies", "0"), "--copies: \"0\" is not allowed; it takes 1 to 10000");
    EXPECT_EQ(Complaint("--brightness", "101"), "--brightness: \"101\" is not allowed; it takes -100 to 100");
    EXPECT_EQ(Complaint("--kws", "yes"), "--kws: \"yes\" is not allowed; it takes on or off");
    EXPECT_EQ(Complaint("--chunk", "29"), "--chunk: \"29\" is not allowed; it takes 30 to 10000 pages");
    EXPECT_NE(Complaint("--copies", "1.5"), "");
    EXPECT_NE(Complaint("--copies", ""), "");
    EXPECT_NE(Complaint("--copies", "99999999999999999999"), "");
}

TEST(SettingTable, TakesBothSpellingsOfCenter) {
    EXPECT_EQ(Parse("--align", "centre"), kAlignCenter);
    EXPECT_EQ(Parse("--align", "center"), kAlignCenter);
}

TEST(SettingTable, ShowsValuesAsTheyAreGiven) {
    EXPECT_EQ(ValueText(FindSetting("--align"), 1), "centre");
    EXPECT_EQ(ValueText(FindSetting("--print-head-offset"), -25), "-2.5 mm");
    EXPECT_EQ(ValueText(FindSetting("--purge-dots"), 5), "5 pixels");
    EXPECT_EQ(ValueText(FindSetting("--purge-dots"), 1), "1 pixel");
    EXPECT_EQ(ValueText(FindSetting("--kws"), 0), "off");
    EXPECT_EQ(ValueText(FindSetting("--grey"), 9), "9") << "a value that no word stands for";
}

}  // namespace orvex::tools::print
