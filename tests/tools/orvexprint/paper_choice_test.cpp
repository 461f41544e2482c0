#include "tools/orvexprint/paper_choice.h"

#include <gmock/gmock.h>

#include <cstring>

#include "tests/tools/common/thrown_text.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/setting_table.h"

namespace orvex::tools::print {

using testing::HasSubstr;

namespace {

std::string Complaint(std::string_view text) {
    return ThrownText<OptionError>([&] { ParsePaperSize(text); });
}

LabelSize Label(const char* name, const char* width, const char* length, uint32_t units, uint16_t number) {
    LabelSize label = {};
    strcpy(label.name, name);
    strcpy(label.width, width);
    strcpy(label.length, length);
    label.units = units;
    label.number = number;
    return label;
}

}  // namespace

TEST(PaperSize, IsParsedInMillimetersOrInches) {
    EXPECT_EQ(ParsePaperSize("100x150mm"), (PaperSize{1000, 1500}));
    EXPECT_EQ(ParsePaperSize("100x150"), (PaperSize{1000, 1500}));
    EXPECT_EQ(ParsePaperSize("4x6in"), (PaperSize{1016, 1524}));
    EXPECT_EQ(ParsePaperSize("2.5x3.75 in"), (PaperSize{635, 953}));
    EXPECT_EQ(ParsePaperSize("80.25x60mm"), (PaperSize{803, 600}));
}

TEST(PaperSize, IsLimitedToWhatThePrinterPrints) {
    EXPECT_EQ(ParsePaperSize("25.4x25.4mm"), kLeastPaper);
    EXPECT_EQ(ParsePaperSize("297.0x901.7mm"), kMostPaper);
    for (const char* text :
         {"25.3x50mm", "50x25.3mm", "297.1x50mm", "50x901.8mm", "0x0", "-100x150mm", "1e9x1e9"}) {
        EXPECT_THAT(Complaint(text), HasSubstr(std::string("--size: \"") + text + "\" is not allowed"))
            << text;
    }
    EXPECT_EQ(
        Complaint("10x10mm"),
        "--size: \"10x10mm\" is not allowed; it takes WIDTHxLENGTH in mm, cm or in, from 25.4 x 25.4 mm "
        "to 297.0 x 901.7 mm, such as 100x150mm or 4x6in; A3 to A9, letter, legal, or page for the size "
        "of the first page");
}

TEST(PaperSize, HasANameOrIsWrittenInPeoplesOwnWay) {
    EXPECT_EQ(ParsePaperSize("A4"), (PaperSize{2100, 2970}));
    EXPECT_EQ(ParsePaperSize("a6"), (PaperSize{1050, 1480}));
    EXPECT_EQ(ParsePaperSize("Letter"), (PaperSize{2159, 2794}));
    EXPECT_EQ(ParsePaperSize("10x15cm"), (PaperSize{1000, 1500}));
    EXPECT_EQ(ParsePaperSize("10,5 x 14,85 cm"), (PaperSize{1050, 1485}));
    EXPECT_EQ(ParsePaperSize("100 mm x 6 IN"), (PaperSize{1000, 1524}));
    EXPECT_EQ(ParsePaperSize("4X6in"), (PaperSize{1016, 1524}));
}

TEST(PaperSize, IsThatOfAPage) {
    const auto size = [](uint32_t width, uint32_t height, double perMeter, bool landscape = false) {
        return PaperOfPage({width, height}, {perMeter, perMeter}, landscape);
    };
    EXPECT_EQ(size(2362, 3543, 23622), (PaperSize{1000, 1500}));
    EXPECT_EQ(size(2363, 3544, 23622), (PaperSize{1000, 1500})) << "rounded up by another program";
    EXPECT_EQ(size(2361, 3542, 23622), (PaperSize{1000, 1500})) << "no pixel is lost";
    EXPECT_EQ(size(3543, 2362, 23622, true), (PaperSize{1000, 1500})) << "the label's length runs across";
    EXPECT_EQ(size(100, 100, 23622), (PaperSize{254, 254})) << "the smallest label";
    EXPECT_EQ(size(9000, 90000, 23622), (PaperSize{2970, 9017})) << "the largest label";
}

TEST(PaperSize, IsRefusedIfItIsNotASize) {
    for (const char* text : {"", "x", "mm", "100", "100mm", "100x", "x150", "100x150x10", "100x150cm", "a2",
                             "100*150", "1x1m"}) {
        EXPECT_NE(Complaint(text), "") << text;
    }
}

TEST(PaperChoice, SetsACustomSize) {
    DeviceMode mode = {};
    ChoosePaperSize(mode, {1000, 1500}, DeviceMode{});
    EXPECT_EQ(mode.pub.dmPaperSize, kPaperCustom);
    EXPECT_EQ(mode.pub.dmPaperWidth, 1000);
    EXPECT_EQ(mode.pub.dmPaperLength, 1500);
    EXPECT_EQ(Utf8(mode.pub.dmFormName), "Custom");
    EXPECT_EQ(mode.pub.dmFields,
              static_cast<DWORD>(DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_FORMNAME));
}

TEST(PaperChoice, KeepsACustomSizeFromBeingReplacedByTheDefaultLabel) {
    DeviceMode defaults = {};
    defaults.priv.dmPaperSize = 260;
    defaults.priv.units = kUnitsMillimeters;
    strcpy(defaults.priv.labelName, "Shipping");
    strcpy(defaults.priv.width_string, "100");
    strcpy(defaults.priv.length_string, "150");
    DeviceMode mode = {};
    mode.priv.dmPaperSize = kPaperDefault;
    ChoosePaperSize(mode, {500, 400}, defaults);
    EXPECT_EQ(mode.priv.dmPaperSize, 260);
    EXPECT_STREQ(mode.priv.labelName, "Shipping");
    EXPECT_EQ(mode.pub.dmPaperSize, kPaperCustom);
    mode.priv.dmPaperSize = 300;
    ChoosePaperSize(mode, {500, 400}, defaults);
    EXPECT_EQ(mode.priv.dmPaperSize, 300) << "a label of its own stays";
}

TEST(PaperChoice, SetsALabelOfTheList) {
    const std::vector<LabelSize> labels = {Label("Small", "50", "25.4", 0, 258),
                                           Label("Shipping", "4", "6", 1, 259)};
    DeviceMode mode = {};
    ChooseLabel(mode, "Shipping", labels);
    EXPECT_EQ(mode.pub.dmPaperSize, 259);
    EXPECT_EQ(mode.priv.dmPaperSize, 259);
    EXPECT_EQ(mode.pub.dmPaperWidth, 1016);
    EXPECT_EQ(mode.pub.dmPaperLength, 1524);
    EXPECT_EQ(Utf8(mode.pub.dmFormName), "Shipping");
    EXPECT_STREQ(mode.priv.labelName, "Shipping");
    EXPECT_STREQ(mode.priv.width_string, "4");
    EXPECT_STREQ(mode.priv.length_string, "6");
    EXPECT_EQ(mode.priv.units, 1u);
}

TEST(PaperChoice, FindsALabelByItsNumberAndInAnyCase) {
    const std::vector<LabelSize> labels = {Label("Small", "50", "25.4", 0, 258),
                                           Label("Versand 4x6", "4", "6", 1, 259),
                                           Label("small", "4", "6", 1, 260), Label("258", "4", "6", 1, 261)};
    const auto chosen = [&](std::string_view name) {
        DeviceMode mode = {};
        ChooseLabel(mode, name, labels);
        return mode.pub.dmPaperSize;
    };
    EXPECT_EQ(chosen("259"), 259);
    EXPECT_EQ(chosen("SMALL"), 258);
    EXPECT_EQ(chosen("small"), 260) << "the very name comes first";
    EXPECT_EQ(chosen("258"), 261) << "the very name comes first";
    EXPECT_EQ(chosen("versand 4X6"), 259);
}

TEST(PaperChoice, NamesTheNearestLabelsIfThereIsNoSuchLabel) {
    DeviceMode mode = {};
    const auto complaint = [&](std::string_view name, const std::vector<LabelSize>& labels) {
        return ThrownText<OptionError>([&] { ChooseLabel(mode, name, labels); });
    };
    const LabelSize big = Label("Big", "4", "6", 1, 259);
    const LabelSize small = Label("Small", "50", "25.4", 0, 258);
    EXPECT_EQ(complaint("smal", {big, small}),
              "--label: \"smal\" is not allowed; it takes \"Small\", \"Big\"");
    EXPECT_EQ(complaint("bag", {small, big}), "--label: \"bag\" is not allowed; it takes \"Big\", \"Small\"");
    std::vector<LabelSize> many(20, big);
    many.push_back(small);
    EXPECT_EQ(
        complaint("Smll", many),
        "--label: \"Smll\" is not allowed; it takes \"Small\", \"Big\", \"Big\", \"Big\", \"Big\", \"Big\", "
        "\"Big\", \"Big\" or another of 21 labels; --list shows them");
    EXPECT_EQ(complaint("Nothing", {}),
              "--label: \"Nothing\" is not allowed; it takes the labels of the printer, which has none");
}

TEST(PaperChoice, ShowsLabelsInTheirOwnUnits) {
    EXPECT_EQ(SizeTextOf(Label("a", "4", "6.5", 1, 258)), "4 x 6.5 in");
    EXPECT_EQ(SizeTextOf(Label("a", "100", "150", 0, 258)), "100 x 150 mm");
    EXPECT_EQ(SizeTextOf(Label("a", "1000", "1500", 2, 258)), "1000 x 1500 x 0.1 mm");
    EXPECT_EQ(SizeOf(Label("a", "1000", "1500", 2, 258)), (PaperSize{1000, 1500}));
    EXPECT_EQ(SizeOf(Label("a", "none", "150", 0, 258)), (PaperSize{0, 1500}));
}

}  // namespace orvex::tools::print
