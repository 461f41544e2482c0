#include "tools/orvexview/options.h"

#include <gmock/gmock.h>

namespace orvex::tools::view {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

Options Read(std::vector<std::string> arguments) {
    int status = -1;
    const std::optional<Options> options = ReadOptions(std::move(arguments), status);
    EXPECT_TRUE(options);
    return options.value_or(Options());
}

// Returns the error for a wrong command line.
std::string Complaint(std::vector<std::string> arguments) {
    int status = 0;
    testing::internal::CaptureStderr();
    const std::optional<Options> options = ReadOptions(std::move(arguments), status);
    const std::string complaint = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(options);
    EXPECT_NE(status, 0);
    return complaint;
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
    EXPECT_THAT(Complaint({}), HasSubstr("FILE is required"));
    EXPECT_THAT(Complaint({"a.prn", "b.prn"}), HasSubstr("b.prn"));
    EXPECT_THAT(Complaint({"a.prn", "--scale", "0"}), HasSubstr("--scale: Value 0 not in range 1 to 1000"));
    EXPECT_THAT(Complaint({"a.prn", "--scale", "1001"}),
                HasSubstr("--scale: Value 1001 not in range 1 to 1000"));
    EXPECT_THAT(Complaint({"a.prn", "--scale", "x"}), HasSubstr("--scale"));
    EXPECT_THAT(Complaint({"a.prn", "--scale", "2", "--full"}), HasSubstr("--scale excludes --full"));
    EXPECT_THAT(Complaint({"a.prn", "--page", "0"}), HasSubstr("--page"));
    EXPECT_THAT(Complaint({"a.prn", "--page", "-1"}), HasSubstr("--page"));
    EXPECT_THAT(Complaint({"a.prn", "--orientation", "round"}), HasSubstr("--orientation"));
    EXPECT_THAT(Complaint({"a.prn", "--no-pictures", "--inks"}), HasSubstr("--inks excludes --no-pictures"));
}

TEST(Options, HelpNamesEveryOptionAndSucceeds) {
    int status = -1;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(ReadOptions({"--help"}, status));
    const std::string help = testing::internal::GetCapturedStdout();
    EXPECT_EQ(status, 0);
    for (const char* option :
         {"FILE", "--output PREFIX", "--page N", "--inks", "--layout", "--raw", "--scale K", "--full",
          "--orientation HOW", "--thumbnail FILE", "--verify PAGE.png", "--no-pictures"}) {
        EXPECT_THAT(help, HasSubstr(option));
    }
}

}  // namespace orvex::tools::view
