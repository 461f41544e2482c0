#include <nlohmann/json.hpp>

#include "tests/tools/common/made_picture.h"
#include "tests/tools/orvexview/command_fixture.h"
#include "tools/common/png_file.h"

namespace orvex::tools::view {
namespace {

using testing::HasSubstr;

// A portrait label of 3 x 2 pixels.
const Rows kPage = {{1, 2}, {3, 4}, {5, 6}};
const std::vector<Setting> kSettings = {{"COPIES", 1}, {"ORIGX", 3}, {"ORIGY", 2}};

class CompareCommandTest : public CommandTest {
  protected:
    CompareCommandTest() : first_(WriteJob("a.prn", {kPage, kPage}, SettingLines(kSettings))) {}

    std::string first_;
};

TEST_F(CompareCommandTest, FindsNoDifferenceInTheSameJob) {
    const std::string second = WriteJob("b.prn", {kPage, kPage}, SettingLines(kSettings));
    EXPECT_EQ(Run({first_, "--compare", second, "-o", Name("look")}), 0);
    EXPECT_EQ(out_.str(), "Both print the same.\n");
    EXPECT_FALSE(std::filesystem::exists(PathFromUtf8(Name("look-page1-difference.png"))));
}

TEST_F(CompareCommandTest, NamesSettingsThatDiffer) {
    const std::string second = WriteJob(
        "b.prn", {kPage, kPage}, SettingLines({{"COPIES", 7}, {"ORIGX", 3}, {"ORIGY", 2}, {"KWS", 1}}));
    EXPECT_EQ(Run({first_, "--compare=" + second}), 1);
    EXPECT_THAT(out_.str(), testing::ContainsRegex("COPIES +1 +7"));
    EXPECT_THAT(out_.str(), testing::ContainsRegex("KWS +- +1"));
}

TEST_F(CompareCommandTest, NamesTheFirstPlaceAndItsInks) {
    Rows other = kPage;
    other[1][1] = 0x00000D04;
    const std::string second = WriteJob("b.prn", {kPage, other}, SettingLines(kSettings));
    EXPECT_EQ(Run({first_, "--compare", second, "-o", Name("look")}), 1);
    EXPECT_THAT(out_.str(), HasSubstr("Page 2\n"
                                      "1 of 6 pixels differ, at most by K 0  C 13  M 0  Y 0 of 255\n"
                                      "the first at (1, 1) of the label: K 4  C 0  M 0  Y 0 and K 4  C 13  "
                                      "M 0  Y 0\n"));
    EXPECT_FALSE(std::filesystem::exists(PathFromUtf8(Name("look-page1-difference.png"))));
    const std::vector<uint32_t> pixels = PixelsOf(LoadPng(PathFromUtf8(Name("look-page2-difference.png"))));
    ASSERT_EQ(pixels.size(), 6u);
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ(pixels[i] >> 16 != (pixels[i] & 0xFF), i == 4) << i;
}

TEST_F(CompareCommandTest, NamesAnotherGeometry) {
    const Rows wide = {{1, 2, 9}, {3, 4, 9}, {5, 6, 9}};
    const std::string second = WriteJob("b.prn", {wide}, SettingLines(kSettings));
    EXPECT_EQ(Run({first_, "--compare", second}), 1);
    EXPECT_THAT(out_.str(), testing::ContainsRegex("pages +2 +1"));
    EXPECT_THAT(out_.str(), testing::ContainsRegex("pixels in a row +2 +3"));
    EXPECT_THAT(out_.str(), HasSubstr("Inks can't be compared"));
}

// The same label, once with a purge bar: a dot, and the gap of 5 mm after it at 11 pixels a millimeter.
constexpr size_t kPurgeWidth = 56;

TEST_F(CompareCommandTest, ComparesLabelsInBlocksOfDifferentSizes) {
    std::vector<Setting> settings = kSettings;
    settings.insert(settings.end(), {{"PURGEBAR", 1}, {"PURGEDOTS", 1}, {"PURGEGAP", 5}});
    settings[3].value = 0;
    const std::string label = WriteJob("label.prn", {kPage}, SettingLines(settings));
    Rows barred = kPage;
    for (auto& row : barred) row.insert(row.begin(), kPurgeWidth, 0x80);
    settings[3].value = 1;
    const std::string bar = WriteJob("bar.prn", {barred}, SettingLines(settings));
    EXPECT_EQ(Run({label, "--compare", bar}), 1);
    EXPECT_THAT(out_.str(), testing::ContainsRegex("pixels in a row +2 +58"));
    EXPECT_THAT(out_.str(), HasSubstr("All inks of the label are the same.\n"));

    barred[1][kPurgeWidth] = 9;
    WriteJob("bar.prn", {barred}, SettingLines(settings));
    EXPECT_EQ(Run({label, "--compare", bar, "--json", "-o", Name("look")}), 1);
    nlohmann::json page = nlohmann::json::parse(out_.str())["pages"][0];
    EXPECT_EQ(page["compared"], "label");
    EXPECT_EQ(page["pixels"], 6);
    EXPECT_EQ(page["different"], 1);
    EXPECT_EQ(page["at"]["place"], "(1, 0) of the label");
    EXPECT_EQ(page["at"]["second"]["K"], 9);
}

TEST_F(CompareCommandTest, ReplacesOnlyItsOwnPicturesUnlessForced) {
    Rows other = kPage;
    other[0][0] = 9;
    const std::string second = WriteJob("b.prn", {other, kPage}, SettingLines(kSettings));
    const std::vector<std::string> command = {first_, "--compare", second, "-o", Name("look")};
    EXPECT_EQ(Run(command), 1);
    EXPECT_EQ(Run(command), 1);
    WriteBytes(folder_.Path() / "look-page1-difference.png", "art");
    EXPECT_EQ(Run(command), 2);
    EXPECT_THAT(error_.str(), HasSubstr("look-page1-difference.png exists and is no picture of orvexview"));
    EXPECT_EQ(Read("look-page1-difference.png"), "art");
    std::vector<std::string> forced = command;
    forced.push_back("--force");
    EXPECT_EQ(Run(forced), 1);
    EXPECT_NE(Read("look-page1-difference.png"), "art");
}

TEST_F(CompareCommandTest, WritesJson) {
    Rows other = kPage;
    other[0][0] = 0x02000001;
    const std::string second = WriteJob("b.prn", {other, kPage}, SettingLines(kSettings));
    EXPECT_EQ(Run({first_, "--compare", second, "--json"}), 1);
    const nlohmann::json json = nlohmann::json::parse(out_.str());
    EXPECT_EQ(json["same"], false);
    EXPECT_EQ(json["pages"].size(), 1u);
    EXPECT_EQ(json["pages"][0]["page"], 1);
    EXPECT_EQ(json["pages"][0]["compared"], "block");
    EXPECT_EQ(json["pages"][0]["different"], 1);
    EXPECT_EQ(json["pages"][0]["largest"]["Y"], 2);
    EXPECT_EQ(json["pages"][0]["at"]["place"], "(2, 0) of the label");
}

TEST_F(CompareCommandTest, TroubleHasAStatusOfItsOwn) {
    EXPECT_EQ(Run({first_, "--compare", Name("none.prn")}), 2);
    EXPECT_THAT(error_.str(), HasSubstr("none.prn can't be opened"));
    WriteBytes(PathFromUtf8(Name("cut.prn")), Read("a.prn").substr(0, 300));
    EXPECT_EQ(Run({first_, "--compare", Name("cut.prn")}), 2);
    EXPECT_THAT(error_.str(), HasSubstr("cut.prn is no sound print file: "));
    EXPECT_EQ(Run({first_, "--compare"}), 2);
    std::filesystem::create_hard_link(PathFromUtf8(first_), PathFromUtf8(Name("x-page1-difference.png")));
    EXPECT_EQ(Run({first_, "--compare", first_, "-o", Name("x")}), 2);
}

// Thousands of pixels become one of the picture, and it is red still.
TEST_F(CompareCommandTest, ASinglePixelShowsInALargePage) {
    Rows rows(2000, std::vector<uint32_t>(4000));
    const std::string blank = WriteJob("blank.prn", {rows});
    rows[777][1234] = 1;
    const std::string dot = WriteJob("dot.prn", {rows});
    EXPECT_EQ(Run({blank, "--compare", dot, "-o", Name("dot")}), 1);
    int red = 0;
    for (const uint32_t pixel : PixelsOf(LoadPng(PathFromUtf8(Name("dot-page1-difference.png"))))) {
        red += pixel >> 16 != (pixel & 0xFF);
    }
    EXPECT_EQ(red, 1);
}

}  // namespace
}  // namespace orvex::tools::view
