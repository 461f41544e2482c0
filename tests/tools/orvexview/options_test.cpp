#include "tools/orvexview/options.h"

#include <gmock/gmock.h>

#include <sstream>

#include "tests/tools/common/thrown_text.h"

namespace orvex::tools::view {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

Options Read(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    const std::optional<Options> options = ReadOptions(arguments, out);
    EXPECT_TRUE(options);
    EXPECT_EQ(out.str(), "");
    return options.value_or(Options());
}

// Returns the error for a wrong command line.
std::string Complaint(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    const std::string complaint = ThrownText<OptionError>([&] { ReadOptions(arguments, out); });
    EXPECT_NE(complaint, "");
    EXPECT_LT(complaint.size(), 200u);
    return complaint;
}

// Returns what is shown instead of a print file.
std::string Shown(const char* option) {
    std::ostringstream out;
    EXPECT_FALSE(ReadOptions({option}, out));
    return out.str();
}

}  // namespace

TEST(Options, AFileAloneShowsEveryPage) {
    const Options options = Read({"job.prn"});
    EXPECT_EQ(options.file, "job.prn");
    EXPECT_EQ(options.prefix, "");
    EXPECT_TRUE(options.pages.empty());
    EXPECT_TRUE(options.pictures);
    EXPECT_FALSE(options.inks);
    EXPECT_FALSE(options.layout);
    EXPECT_FALSE(options.raw);
    EXPECT_EQ(options.scale, 0u);
    EXPECT_FALSE(options.orientation);
    EXPECT_EQ(options.thumbnail, "");
    EXPECT_EQ(options.verify, "");
}

TEST(Options, EveryOptionIsTaken) {
    const Options options = Read({"-p", "2", "--page", "5", "job.prn", "-o",
                                  "out/j\xC3\xB6"
                                  "b",
                                  "--inks", "--layout", "--raw", "--scale", "4", "--orientation", "landscape",
                                  "--thumbnail", "t.png", "--verify", "v.png"});
    EXPECT_EQ(options.file, "job.prn") << "a page takes one number";
    EXPECT_THAT(options.pages, ElementsAre(2, 5));
    EXPECT_EQ(options.prefix,
              "out/j\xC3\xB6"
              "b");
    EXPECT_TRUE(options.inks);
    EXPECT_TRUE(options.layout);
    EXPECT_TRUE(options.raw);
    EXPECT_EQ(options.scale, 4u);
    EXPECT_EQ(options.orientation, Orientation::kLandscape);
    EXPECT_EQ(options.thumbnail, "t.png");
    EXPECT_EQ(options.verify, "v.png");
}

TEST(Options, ANameMayBeginWithASlash) {
    EXPECT_EQ(Read({"/jobs/a.prn"}).file, "/jobs/a.prn");
}

TEST(Options, FullIsAScaleOfOne) {
    EXPECT_EQ(Read({"job.prn", "--full"}).scale, 1u);
}

TEST(Options, PicturesCanBeLeftOut) {
    EXPECT_FALSE(Read({"job.prn", "--no-pictures"}).pictures);
}

TEST(Options, AWrongCommandLineIsExplained) {
    EXPECT_EQ(Complaint({}), "FILE is required; --help shows what there is");
    EXPECT_THAT(Complaint({"a.prn", "b.prn"}), HasSubstr("b.prn"));
    EXPECT_THAT(Complaint({"a.prn", "--scale", "2", "--full"}), HasSubstr("--scale excludes --full"));
    EXPECT_THAT(Complaint({"a.prn", "--no-pictures", "--inks"}), HasSubstr("--inks excludes --no-pictures"));
}

TEST(Options, AWrongValueIsShownWithWhatIsAllowed) {
    for (const char* value : {"0", "1001", "-1", "x", "2x", "1.5", "1e308", "99999999999999999999"}) {
        EXPECT_EQ(Complaint({"a.prn", "--scale", value}),
                  "--scale: \"" + std::string(value) + "\" is not allowed; it takes 1 to 1000");
    }
    for (const char* value : {"0", "-1", "x", "4294967297"}) {
        EXPECT_EQ(
            Complaint({"a.prn", "--page", value}),
            "--page: \"" + std::string(value) + "\" is not allowed; it takes the number of a page, from 1");
    }
    EXPECT_EQ(Complaint({"a.prn", "--orientation", "sideways"}),
              "--orientation: \"sideways\" is not allowed; it takes portrait or landscape");
}

TEST(Options, TheLastScaleAndOrientationCount) {
    const Options options = Read(
        {"a.prn", "--scale", "2", "--scale", "3", "--orientation", "portrait", "--orientation", "landscape"});
    EXPECT_EQ(options.scale, 3u);
    EXPECT_EQ(options.orientation, Orientation::kLandscape);
}

TEST(Options, HelpNamesEveryOption) {
    const std::string help = Shown("--help");
    for (const char* option :
         {"FILE", "--output PREFIX", "--page N", "--inks", "--layout", "--raw", "--scale K", "--full",
          "--orientation HOW", "--thumbnail FILE", "--verify PAGE.png", "--no-pictures", "--version"}) {
        EXPECT_THAT(help, HasSubstr(option));
    }
}

TEST(Options, VersionIsOneLine) {
    const std::string version = Shown("--version");
    EXPECT_TRUE(version.starts_with("orvexview ") && isdigit(version[10])) << version;
    EXPECT_EQ(version.find('\n'), version.size() - 1);
}

// At 600 dpi the head is 7020 rows wide: 5 of them are one line.
TEST(PreviewScale, KeepsTheTextOfLongLabelsReadable) {
    EXPECT_EQ(PreviewScale(1600, 10, 7020), 1u);
    EXPECT_EQ(PreviewScale(3543, 2362, 7020), 3u) << "a label of 150 x 100 mm";
    EXPECT_EQ(PreviewScale(2362, 3543, 7020), 3u);
    EXPECT_EQ(PreviewScale(21307, 1181, 7020), 5u) << "a label of 902 x 50 mm";
    EXPECT_EQ(PreviewScale(21307, 7016, 7020), 5u) << "the largest label";
    EXPECT_EQ(PreviewScale(10654, 1181, 3510), 3u) << "at 300 dpi";
}

TEST(PreviewScale, LimitsAPictureToEightMillionPixels) {
    EXPECT_EQ(PreviewScale(32768, 7020, 7020), 6u);
    const uint32_t scale = PreviewScale(32768, 16384, 1755);
    EXPECT_EQ(scale, 9u);
    EXPECT_LE((32768 / scale + 1) * (16384 / scale + 1), kMaxPreviewPixels);
}

}  // namespace orvex::tools::view
