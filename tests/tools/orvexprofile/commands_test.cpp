#ifdef ORVEX_LITTLE_CMS
#include "tests/tools/orvexprofile/profile_tool_fixture.h"
#include "tools/common/product_version.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/loaded_profile.h"
#endif

namespace orvex::tools::profile {

// Native only: the tool needs Little CMS.
#ifdef ORVEX_LITTLE_CMS

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST_F(ProfileTool, NeedsACommand) {
    EXPECT_EQ(Run({}), 2);
    EXPECT_EQ(err_,
              "orvexprofile: no command: name one of info, build, convert, apply, proof, chart or target; "
              "--help shows what there is\n");
    EXPECT_EQ(Run({"melt"}), 2);
    EXPECT_THAT(err_, HasSubstr("orvexprofile: \"melt\" is no command; it takes info, build, "));
    EXPECT_EQ(Run({"--version"}), 0);
    EXPECT_EQ(out_, std::string("orvexprofile ") + kProductVersion + "\n");
    EXPECT_EQ(Run({"--help"}), 0);
    EXPECT_THAT(out_, AllOf(HasSubstr("info"), HasSubstr("build"), HasSubstr("convert"), HasSubstr("apply"),
                            HasSubstr("proof"), HasSubstr("chart"), HasSubstr("target")));
}

TEST_F(ProfileTool, InfoShowsTheContentsOfAnAcceptedFile) {
    EXPECT_EQ(Run({"info", Sample()}), 0);
    EXPECT_THAT(out_,
                AllOf(HasSubstr("mark       \"ZVC\""), HasSubstr("version    5: 17 values of each component"),
                      HasSubstr("size       39,333 bytes, 39,333 by its header"),
                      HasSubstr("tag area   17 bytes"), HasSubstr("tag at 15  name, 6 bytes: \"Sample\""),
                      HasSubstr("tag at 24  resolution codes, 2 bytes"), HasSubstr("name       Sample"),
                      HasSubstr("codes      -1 for other resolutions, 5 for 600 dpi")));
    EXPECT_THAT(
        out_,
        AllOf(HasSubstr("inks at 600 dpi"), HasSubstr("inks at other resolutions"),
              HasSubstr("    K       17       17     17.0"), HasSubstr("    C        0      255"),
              HasSubstr("largest total 782 (306.7 %) at #ffffff"), HasSubstr("driver     accepts the file")));
    EXPECT_THAT(err_, IsEmpty());
}

TEST_F(ProfileTool, InfoDescribesAVersionWithPlanes) {
    EXPECT_EQ(Run({"info", Sample(4)}), 0);
    EXPECT_THAT(out_,
                HasSubstr("version    4: every second value of each component, one plane for each ink"));
    EXPECT_THAT(out_, HasSubstr("largest total 782 (306.7 %) at #fefefe"));
}

TEST_F(ProfileTool, InfoSaysWhichNameUsersSee) {
    Profile profile = PaperProfile();
    profile.name = std::string(100, 'n');
    WriteProfileFile(profile, Path("long.zvp"));
    EXPECT_EQ(Run({"info", Path("long.zvp")}), 0);
    EXPECT_THAT(out_, HasSubstr("longer than 99 bytes: users see the file's name"));
    EXPECT_THAT(out_, HasSubstr("codes      none: the driver uses its own"));

    profile.name.reset();
    profile.codes = ResolutionCodes{1, 2};
    WriteProfileFile(profile, Path("none.zvp"));
    EXPECT_EQ(Run({"info", Path("none.zvp")}), 0);
    EXPECT_THAT(out_, HasSubstr("name       none: users see the file's name"));
}

TEST_F(ProfileTool, InfoSaysWhyTheDriverRefusesAFile) {
    scratch_.Write("bad.zvp", FileWithTags(Tag(1, "B\x01") + Tag(2, "abc")));
    EXPECT_EQ(Run({"info", Path("bad.zvp")}), 1);
    EXPECT_THAT(out_, AllOf(HasSubstr("driver     refuses the file"), HasSubstr(": invalid hpres length 3"),
                            HasSubstr("name, 2 bytes: \"B\\x01\""), HasSubstr("resolution codes, 3 bytes"),
                            Not(HasSubstr("inks at"))));
    EXPECT_EQ(Run({"info", Path("none.zvp")}), 1);
    EXPECT_EQ(err_,
              "orvexprofile: " + Path("none.zvp") + " can't be opened: there is no such file or folder\n");
    scratch_.Write("empty.zvp", "");
    EXPECT_EQ(Run({"info", Path("empty.zvp")}), 1);
    EXPECT_THAT(out_, HasSubstr("error reading file"));
    scratch_.Write("six.zvp", FileWithTags(Tag(7, ""), 6));
    EXPECT_EQ(Run({"info", Path("six.zvp")}), 1);
    EXPECT_THAT(out_, AllOf(HasSubstr("version    6\n"), HasSubstr("unknown kind 7, 0 bytes"),
                            HasSubstr("invalid profile tag 7")));
}

TEST_F(ProfileTool, BuildsAProfileFromAPrintersIccProfile) {
    EXPECT_EQ(Run({"build", "--icc", kPrinterIcc, "-o", Path("swop.zvp"), "--intent", "relative",
                   "--black-point-compensation", "--name", "SWOP", "--resolution-codes", "-1,0",
                   "--ink-limit", "240", "--scale-600", "40", "--scale-other", "90"}),
              0)
        << err_;
    EXPECT_THAT(out_, AllOf(HasSubstr("From Artifex CMYK SWOP Profile"), HasSubstr("accepted by the driver"),
                            HasSubstr("Driver against ICC, 600 dpi"), HasSubstr("largest     mean"),
                            HasSubstr("Driver against ICC, other resolutions")));
    const ProfileFacts facts = LoadAccepted(Path("swop.zvp"), PrintVariant::kOther);
    EXPECT_EQ(facts.version, 5);
    EXPECT_EQ(facts.Name(), "SWOP");
    EXPECT_EQ(facts.Codes(), (ResolutionCodes{-1, 0}));
    EXPECT_EQ(LookupColor(0xFFFFFF), 0u);
    const uint32_t black = LookupColor(0);
    EXPECT_LE(TotalInk(black), 240 * 2.55 * 0.9 + 2);
    EXPECT_GE(TotalInk(black), 240 * 2.55 * 0.9 - 4);
    LoadAccepted(Path("swop.zvp"), PrintVariant::kAt600);
    EXPECT_NEAR(TotalInk(LookupColor(0)), TotalInk(black) * 40 / 90.0, 3);
    EXPECT_THAT(Files(), testing::ElementsAre("swop.zvp"));
}

// Returns the numbers after each "mean " of the lines that tell a difference of colors.
std::vector<double> MeanColorDifferences(const std::string& report) {
    std::vector<double> means;
    const std::string mark = "    mean ";
    for (size_t place = report.find(mark); place != std::string::npos; place = report.find(mark, place + 1))
        means.push_back(std::stod(report.substr(place + mark.size())));
    return means;
}

TEST_F(ProfileTool, BuildReportsWhatTheDriversInksLookLike) {
    EXPECT_EQ(Run({"build", "--help"}), 0);
    EXPECT_THAT(out_, HasSubstr("dE2000"));
    const std::vector<std::string> build = {"build", "--icc", kPrinterIcc, "-o", Path("swop.zvp")};
    EXPECT_EQ(Run(build), 0) << err_;
    EXPECT_THAT(out_,
                HasSubstr("dE2000 of the driver's inks to the ICC profile's own inks, both as the profile "
                          "predicts them:\n    mean 0."));
    EXPECT_THAT(out_, testing::ContainsRegex(", 95 % within [0-9.]+, largest [0-9.]+ at #[0-9a-f]{6}\n"));
    const std::vector<double> usual = MeanColorDifferences(out_);
    ASSERT_EQ(usual.size(), 2u);
    EXPECT_NEAR(usual[0], usual[1], 0.3) << "both variants print the same colours";
    EXPECT_THAT(usual, testing::Each(testing::Gt(0.1))) << "the loss of the grid shows";

    std::vector<std::string> scaled = build;
    scaled.insert(scaled.end(), {"--scale-600", "40", "--scale-other", "80"});
    EXPECT_EQ(Run(scaled), 0) << err_;
    EXPECT_THAT(MeanColorDifferences(out_), testing::Each(testing::Gt(3))) << "a lighter print shows";

    std::vector<std::string> limited = build;
    limited.insert(limited.end(), {"--ink-limit", "150"});
    EXPECT_EQ(Run(limited), 0) << err_;
    EXPECT_THAT(MeanColorDifferences(out_), testing::Each(testing::Gt(usual[1] + 0.2)));
}

TEST_F(ProfileTool, BuildsOtherVersionsAndSaysWhatTheyLose) {
    EXPECT_EQ(Run({"build", "--icc", kPrinterIcc, "-o", Path("half.zvp"), "--version", "3"}), 0) << err_;
    EXPECT_EQ(LoadAccepted(Path("half.zvp"), PrintVariant::kOther).version, 3);
    EXPECT_EQ(LoadAccepted(Path("half.zvp"), PrintVariant::kOther).Name(), "half");
    EXPECT_THAT(out_, HasSubstr("without ink"));
}

// Returns the color that a preview shows for an ink value, as a pixel of a picture.
uint32_t ShownPixel(uint32_t inks) {
    const std::vector<int> color = Shown(inks);
    return static_cast<uint32_t>(color[0] << 16 | color[1] << 8 | color[2]);
}

struct WrongOption {
    std::vector<std::string> options;
    const char* message;
};

TEST_F(ProfileTool, BuildRefusesWrongValuesAndWritesNothing) {
    const WrongOption wrongOptions[] = {
        {{"--version", "6"}, "build: --version: \"6\" is not allowed; it takes 1 to 5; "},
        {{"--version", "5.5"}, "--version: \"5.5\" is not allowed; it takes 1 to 5"},
        {{"--intent", "vivid"},
         "--intent: \"vivid\" is not allowed; it takes perceptual, relative, saturation or absolute"},
        {{"--name", std::string(512, 'n')}, "1 to 511 characters, not 512"},
        {{"--name", "gr\xC3\xBCn"}, "printable ASCII"},
        {{"--resolution-codes", "1"}, "two numbers from -128 to 127"},
        {{"--resolution-codes", "1,200"}, "two numbers from -128 to 127"},
        {{"--resolution-codes", "1,2,3"}, "two numbers from -128 to 127"},
        {{"--resolution-codes", "1 2"}, "two numbers from -128 to 127"},
        {{"--resolution-codes", "a,b"}, "two numbers from -128 to 127"},
        {{"--ink-limit", "99"}, "--ink-limit: \"99\" is not allowed; it takes 100 to 400 percent"},
        {{"--ink-limit", "many"}, "--ink-limit: \"many\" is not allowed; it takes 100 to 400 percent"},
        {{"--scale-600", "0"}, "--scale-600: \"0\" is not allowed; it takes 1 to 200 percent"},
        {{"--scale-other", std::string(400, '9')}, "999...\" is not allowed; it takes 1 to 200 percent"},
    };
    for (const WrongOption& wrong : wrongOptions) {
        std::vector<std::string> arguments = {"build", "--icc", kPrinterIcc, "-o", Path("new.zvp")};
        arguments.insert(arguments.end(), wrong.options.begin(), wrong.options.end());
        EXPECT_NE(Run(arguments), 0) << wrong.options[1];
        EXPECT_THAT(err_, AllOf(testing::StartsWith("orvexprofile: "), HasSubstr(wrong.message)));
    }
    EXPECT_EQ(Run({"build", "--icc", kScreenIcc, "-o", Path("new.zvp")}), 1);
    EXPECT_THAT(
        err_,
        HasSubstr("orvexprofile: /usr/share/color/icc/ghostscript/srgb.icc: not the profile of a CMYK"));
    EXPECT_NE(Run({"build", "-o", Path("new.zvp")}), 0);
    EXPECT_THAT(err_, HasSubstr("--icc is required"));
    EXPECT_EQ(Run({"build", "--icc", kPrinterIcc, "-o", Path("none/new.zvp")}), 1);
    EXPECT_THAT(err_, HasSubstr("new.zvp can't be written: there is no such folder"));
    EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(ProfileTool, BuildSaysThatALongNameIsNotShown) {
    EXPECT_EQ(Run({"build", "--icc", kPrinterIcc, "-o", Path("a.zvp"), "--name", std::string(100, 'n')}), 0);
    EXPECT_THAT(out_, HasSubstr("The name is longer than 99 characters"));
}

TEST_F(ProfileTool, ConvertsAndReportsTheLoss) {
    const std::string sample = Sample(4);
    EXPECT_EQ(Run({"convert", sample, "-o", Path("grid.zvp"), "--version", "5", "--compare-every", "17"}), 0)
        << err_;
    EXPECT_THAT(out_, AllOf(HasSubstr("grid.zvp: version 5, 39,333 bytes, accepted by the driver"),
                            HasSubstr("Loss, 600 dpi: "), HasSubstr("Loss, other resolutions: "),
                            HasSubstr("of 4,096 colours differ"),
                            HasSubstr("Against what the driver printed before, 600 dpi")));
    EXPECT_EQ(LoadAccepted(Path("grid.zvp"), PrintVariant::kOther).Name(), "Sample");
    EXPECT_EQ(
        Run({"convert", Path("grid.zvp"), "-o", Path("half.zvp"), "--version", "4", "--compare-every", "85"}),
        0);
    EXPECT_THAT(out_, Not(HasSubstr("printed before")));
}

TEST_F(ProfileTool, ConvertRefusesItsOwnInputAndFilesThatTheDriverRefuses) {
    const std::string sample = Sample(), before = ReadBytes(sample);
    EXPECT_EQ(Run({"convert", sample, "-o", sample, "--version", "4"}), 2);
    EXPECT_EQ(err_, "orvexprofile: -o " + sample + " is the same file as the profile " + sample +
                        "; name another one\n");
    EXPECT_EQ(ReadBytes(sample), before);
    scratch_.Write("bad.zvp", "ZVC");
    EXPECT_EQ(Run({"convert", Path("bad.zvp"), "-o", Path("new.zvp"), "--version", "5"}), 1);
    EXPECT_THAT(err_, HasSubstr("error reading file"));
    EXPECT_NE(Run({"convert", sample, "-o", Path("new.zvp")}), 0);
    EXPECT_THAT(err_, HasSubstr("--version is required"));
    EXPECT_FALSE(std::filesystem::exists(Path("new.zvp")));
}

TEST_F(ProfileTool, AppliesAProfileToAPicture) {
    Profile profile = PaperProfile();
    profile.other[16 * 289] = PackInks(0, 255, 0, 51);  // red
    profile.at600[16 * 289] = PackInks(0, 0, 102, 0);
    WriteProfileFile(profile, Path("red.zvp"));
    EXPECT_EQ(Run({"apply", Picture(), Path("out.png"), "--profile", Path("red.zvp")}), 0) << err_;
    EXPECT_EQ(LoadPng(Path("out.png")).Row(0)[0], 0xFFFFFFu);
    EXPECT_EQ(LoadPng(Path("out.png")).Row(0)[1], ShownPixel(PackInks(0, 255, 0, 51)));
    EXPECT_EQ(LoadPng(Path("out-K.png")).Row(0)[1], 0xFFFFFFu);
    EXPECT_EQ(LoadPng(Path("out-C.png")).Row(0)[1], 0x000000u);
    EXPECT_EQ(LoadPng(Path("out-M.png")).Row(0)[1], 0xFFFFFFu);
    EXPECT_EQ(LoadPng(Path("out-Y.png")).Row(0)[1], 0xCCCCCCu);

    EXPECT_EQ(Run({"apply", Picture(), Path("a.png"), Path("k.png"), Path("c.png"), Path("m.png"),
                   Path("y.png"), "--profile", Path("red.zvp"), "--variant", "600"}),
              0);
    EXPECT_EQ(LoadPng(Path("m.png")).Row(0)[1], 0x333333u);
    EXPECT_EQ(LoadPng(Path("c.png")).Row(0)[1], 0xFFFFFFu);
}

TEST_F(ProfileTool, AppliesTheBuiltInConversionWithoutAProfile) {
    EXPECT_EQ(Run({"apply", Picture(), Path("out.png")}), 0) << err_;
    EXPECT_EQ(LoadPng(Path("out.png")).Row(0)[1], ShownPixel(PackInks(0, 0, 255, 255)));
    EXPECT_EQ(LoadPng(Path("out-M.png")).Row(0)[1], 0x000000u);
}

TEST_F(ProfileTool, ApplySaysWhatIsWrong) {
    EXPECT_EQ(Run({"apply", Picture(), Path("a.png"), Path("b.png")}), 1);
    EXPECT_THAT(err_, HasSubstr("composite, K, C, M and Y; not 2"));
    EXPECT_EQ(Run({"apply", Path("none.png"), Path("a.png")}), 1);
    EXPECT_THAT(err_, HasSubstr("none.png"));
    EXPECT_EQ(Run({"apply", Picture(), Path("a.png"), "--profile", Path("none.zvp")}), 1);
    EXPECT_THAT(err_, HasSubstr("none.zvp can't be opened: there is no such file"));
    EXPECT_NE(Run({"apply", Picture(), Path("a.png"), "--variant", "300"}), 0);
    EXPECT_FALSE(std::filesystem::exists(Path("a.png")));
}

TEST_F(ProfileTool, RefusesAnOutputThatIsAnInput) {
    const std::string picture = Picture(), sample = Sample(), pixels = ReadBytes(picture);
    std::filesystem::create_hard_link(picture, Path("x-M.png"));
    const std::vector<std::string> slips[] = {
        {"apply", picture, picture},
        {"apply", picture, Path("x.png")},
        {"apply", picture, Path("y.png"), "--profile", Path("y.png")},
        {"apply", picture, Path("1"), Path("2"), Path("3"), Path("4"), Path("1")},
        {"chart", sample, "-o", sample},
        {"build", "--icc", sample, "-o", sample},
    };
    for (const std::vector<std::string>& slip : slips) {
        EXPECT_EQ(Run(slip), 2);
        EXPECT_THAT(err_, AllOf(testing::StartsWith("orvexprofile: "), HasSubstr(" is the same file as ")));
    }
    EXPECT_EQ(ReadBytes(picture), pixels);
    EXPECT_THAT(Files(), testing::UnorderedElementsAre("in.png", "sample.zvp", "x-M.png"));
}

TEST_F(ProfileTool, WritesOnlyTheFileToStandardOutput) {
    const std::string sample = Sample(), picture = Picture();
    const std::pair<std::vector<std::string>, std::string> commands[] = {
        {{"convert", sample, "--version", "5", "--compare-every", "85", "-o"}, Path("a.zvp")},
        {{"build", "--icc", kPrinterIcc, "--name", "a", "-o"}, Path("a.zvp")},
        {{"chart", sample, "-o"}, Path("a.png")},
        {{"apply", picture}, Path("a.png")},
        {{"proof", picture, "--icc", kPrinterIcc, "-o"}, Path("a.png")},
    };
    for (const auto& [command, file] : commands) {
        std::vector<std::string> arguments = command;
        arguments.emplace_back();
        const auto run = [&](const std::string& output) {
            arguments.back() = output;
            EXPECT_EQ(Run(arguments), 0) << err_;
        };
        run(file);
        EXPECT_EQ(err_, "");
        for (const char* output : {"-", "/dev/stdout"}) {
            testing::internal::CaptureStdout();
            run(output);
            EXPECT_TRUE(testing::internal::GetCapturedStdout() == ReadBytes(file)) << command[0];
            EXPECT_EQ(out_, "");
            EXPECT_THAT(err_, HasSubstr(std::string("Wrote ") + output));
        }
    }
    EXPECT_THAT(Files(), testing::UnorderedElementsAre("sample.zvp", "in.png", "a.zvp", "a.png", "a-K.png",
                                                       "a-C.png", "a-M.png", "a-Y.png"));
}

TEST_F(ProfileTool, NamesAProfileAfterTheIccProfileIfItHasNoFile) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(Run({"build", "--icc", kPrinterIcc, "-o", "-"}), 0) << err_;
    scratch_.Write("piped.zvp", testing::internal::GetCapturedStdout());
    EXPECT_EQ(LoadAccepted(Path("piped.zvp"), PrintVariant::kOther).Name(),
              std::filesystem::path(kPrinterIcc).stem().string());
}

TEST_F(ProfileTool, ChartsAProfile) {
    EXPECT_EQ(Run({"chart", Sample(), "-o", Path("chart.png"), "--variant", "600"}), 0) << err_;
    EXPECT_GT(LoadPng(Path("chart.png")).width, 1000u);
    EXPECT_EQ(Run({"chart", Path("none.zvp"), "-o", Path("none.png")}), 1);
    EXPECT_THAT(err_, HasSubstr("none.zvp can't be opened: there is no such file"));
    EXPECT_FALSE(std::filesystem::exists(Path("none.png")));
}

}  // namespace
#endif

}  // namespace orvex::tools::profile
