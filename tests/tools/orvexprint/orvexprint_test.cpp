#include "tools/orvexprint/orvexprint.h"

#include <cstring>

#include "tests/kit/log_capture.h"
#include "tests/tools/orvexprint/orvexprint_fixture.h"
#include "tools/common/number_text.h"
#include "tools/common/product_version.h"

#ifndef _WIN32
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#endif

namespace orvex::tools::print {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

// Follows "<name>" and "</name>" in a trace, which hooks and dumped records have. Returns the names that are
// left open, or closed in the wrong order.
std::vector<std::string> OpenScopes(const std::vector<std::string>& lines) {
    std::vector<std::string> open;
    for (const std::string& line : lines) {
        constexpr std::string_view kTag = "[Trace] <";
        if (!line.starts_with(kTag) || !line.ends_with('>')) continue;
        const std::string name = line.substr(kTag.size(), line.size() - kTag.size() - 1);
        if (!name.starts_with('/')) {
            open.push_back(name);
        } else if (!open.empty() && open.back() == name.substr(1)) {
            open.pop_back();
        } else {
            open.push_back(name);
        }
    }
    return open;
}

}  // namespace

TEST_F(OrvexPrintTest, PrintsPagesAndReportsTheirNumber) {
    RunWell({"--size", "30x40mm", "--copies", "3", "--title", "Two pages", "-o", Text("out.prn"),
             WritePage("a.png"), WritePage("b.png")});
    EXPECT_EQ(error, "");
    EXPECT_THAT(out, AllOf(StartsWith(Text("out.prn") + ": 2 pages, 708 rows, " +
                                      std::to_string(OutputBytes().size()) + " bytes, "),
                           EndsWith(" seconds\n")));
    EXPECT_THAT(OutputBytes(), AllOf(HasSubstr("@PJL SET COPIES=3\n"), HasSubstr("@PJL SET ORIGX=354\n"),
                                     HasSubstr("@PJL JOB NAME=\"Two pages\"\n"), HasSubstr("@PJL COMMENT")));
}

TEST_F(OrvexPrintTest, NamesTheJobAfterItsFirstPage) {
    RunWell({"--size", "30x40mm", "-o", Text("out.prn"), WritePage("first.png"), WritePage("b.png")});
    EXPECT_THAT(OutputBytes(), HasSubstr("@PJL JOB NAME=\"first.png\"\n"));
    EXPECT_THAT(out, HasSubstr(": 2 pages, "));
}

TEST_F(OrvexPrintTest, TakesNamesOfAnyScript) {
    const std::string output = Text("K\xC3\xA4se \xE2\x82\xAC \xE6\x97\xA5.prn");
    RunWell({"--size", "30x40mm", "-o", output, WritePage("\xD0\xA9 \xC3\xA9.png")});
    EXPECT_THAT(out, StartsWith(output + ": 1 page, 354 rows, "));
    EXPECT_TRUE(fs::exists(PathFromUtf8(output)));
}

TEST_F(OrvexPrintTest, TakesPathsThatDependOnTheCurrentFolder) {
    WritePage("a.png");
    const fs::path before = fs::current_path();
    fs::current_path(scratch.Path());
    const int status = RunPlain({"--install", "install", "--size", "30x40mm", "-o", "out.prn", "a.png"});
    fs::current_path(before);
    EXPECT_EQ(status, 0) << error;
    EXPECT_NE(OutputBytes(), "");
}

TEST_F(OrvexPrintTest, PrintsTheSelfTestPage) {
    RunWell({"--test-page", "--size", "100x150mm", "--grey", "black", "-o", Text("out.prn")});
    EXPECT_THAT(out, HasSubstr(": 1 page, 1181 rows, "));
    EXPECT_THAT(OutputBytes(),
                AllOf(HasSubstr("@PJL JOB NAME=\"Test page\"\n"), HasSubstr("@PJL SET COLORMODE=2\n")));
}

TEST_F(OrvexPrintTest, PrintsOnALabelOfThePagesSizeIfNoneIsGiven) {
    WriteBytes(Path("a.png"), AsText(MakePlainPng(827, 591, 23622)));  // 35 mm x 25 mm at 600 dpi
    RunWell({"--dpi", "600", "-o", Text("out.prn"), Text("a.png")});
    EXPECT_EQ(error, "") << "not resampled";
    EXPECT_THAT(out, HasSubstr(": 1 page, 827 rows, "));
    EXPECT_THAT(OutputBytes(), HasSubstr("@PJL COMMENT"));
    RunWell({"--dpi", "600", "--dry-run", Text("a.png")});
    EXPECT_THAT(out, AllOf(HasSubstr("Label: 600 dpi, 35.0 x 25.4 mm, portrait\n"),
                           HasSubstr("a.png: 827 x 591 pixels, 0 from the left, ")));
    RunWell({"--dpi", "600", "--landscape", "--size", "page", "--dry-run", Text("a.png")});
    EXPECT_THAT(out, HasSubstr("Label: 600 dpi, 25.4 x 35.0 mm, landscape\n"));
    RunWell({"--dpi", "600", "--label", "Small", "--dry-run", Text("a.png")});
    EXPECT_THAT(out, HasSubstr("Label: 600 dpi, 50.0 x 30.0 mm, portrait\n"));
}

TEST_F(OrvexPrintTest, SaysWhichPagesItResamplesAndWhy) {
    RunWell(
        {"--size", "30x40mm", "--dpi", "600", "-o", Text("out.prn"), WritePage("a.png"), WritePage("b.png")});
    EXPECT_EQ(
        error,
        "orvexprint: page 1 is enlarged 2.00 times: its resolution is 300 dpi, the job's is 600 dpi (like "
        "1 other)\n");
    RunWell({"--size", "30x40mm", "--fit", "-o", Text("out.prn"), WritePage("a.png")});
    EXPECT_EQ(error, "orvexprint: page 1 is enlarged 1.50 times: --fit scales it to the label\n");
    RunWell({"--size", "30x40mm", "--fit", "--dry-run", WritePage("a.png")});
    EXPECT_THAT(out, HasSubstr("from the top, enlarged 1.50 times: --fit scales it to the label\n"));
}

TEST_F(OrvexPrintTest, TurnsAPageThatFitsOnlyThen) {
    WriteBytes(Path("a.png"), AsText(MakePlainPng(450, 300, 11811)));  // 38 mm x 25 mm
    RunWell({"--size", "30x40mm", "--rotate", "auto", "--dry-run", Text("a.png")});
    EXPECT_THAT(
        out, HasSubstr("a.png: 300 x 450 pixels, 27 from the left, 11 from the top, turned by a quarter\n"));
    RunWell({"--size", "30x40mm", "--rotate", "auto", "-o", Text("out.prn"), Text("a.png")});
    EXPECT_EQ(Run({"--size", "30x40mm", "--dry-run", Text("a.png")}), kExitFailed);
    EXPECT_THAT(error, HasSubstr("--rotate auto turns it by a quarter, and then it fits"));
}

TEST_F(OrvexPrintTest, SaysWhatBecomesOfAColorProfile) {
    const auto embed = [](LodePNGInfo& info) {
        std::vector<uint8_t> profile(200, 'x');
        memcpy(&profile[16], "RGB ", 4);
        lodepng_set_icc(&info, "x", profile.data(), static_cast<unsigned>(profile.size()));
    };
    const PngRecipe recipe{.width = 236, .height = 118, .densityX = 11811, .densityY = 11811, .embed = embed};
    WriteBytes(Path("a.png"), AsText(MakePng(recipe, std::vector<uint8_t>(236 * 118 * 4))));
    RunWell({"--size", "30x40mm", "-o", Text("out.prn"), Text("a.png")});
    EXPECT_THAT(error, AllOf(StartsWith("orvexprint: page 1 has a colour profile"),
                             EndsWith("its colours are taken for sRGB\n")));
}

TEST_F(OrvexPrintTest, WritesNothingWhenAnOptionIsWrong) {
    EXPECT_EQ(Run({"--dpi", "720", "-o", Text("out.prn"), WritePage("a.png")}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: --dpi: \"720\" is not allowed; it takes 300 or 600 dpi\n");
    EXPECT_EQ(Run({"--label", "Nothing", "-o", Text("out.prn"), WritePage("a.png")}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: --label: \"Nothing\" is not allowed; it takes \"Shipping\", \"Small\"\n");
    EXPECT_EQ(Run({"--profile", "none.zvp", "-o", Text("out.prn"), WritePage("a.png")}), kExitUsage);
    EXPECT_EQ(error,
              "orvexprint: --profile: \"none.zvp\" is not allowed; it takes the path of a profile, since "
              "none is installed\n");
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(OrvexPrintTest, WritesNothingWhenAPageCannotBeDrawn) {
    const std::string good = WritePage("a.png");
    WriteBytes(Path("bad.png"), "no picture");
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), good, Text("bad.png")}), kExitFailed);
    EXPECT_THAT(error, StartsWith("orvexprint: " + Text("bad.png") + " is "));
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), good, Text("missing.png")}), kExitFailed);
    EXPECT_EQ(error,
              "orvexprint: " + Text("missing.png") + " can't be opened: there is no such file or folder\n");
    WriteBytes(Path("large.png"), AsText(MakePlainPng(400, 100, 11811)));
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), Text("large.png")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("large.png") +
                         " measures 33.9 x 8.5 mm and is larger than the label of 30.0 x 40.0 mm; --rotate "
                         "auto turns it by a "
                         "quarter, and then it fits; --fit scales it\n");
    EXPECT_TRUE(NothingWasWritten());
    EXPECT_EQ(Run({"--size", "30x40mm", "--fit", "-o", Text("out.prn"), Text("large.png")}), 0) << error;
}

TEST_F(OrvexPrintTest, LeavesAnEarlierOutputWhenTheJobFails) {
    WriteBytes(Path("out.prn"), "\x1B%-12345X@PJL of yesterday");
    WriteBytes(Path("bad.png"), "no picture");
    EXPECT_EQ(Run({"-o", Text("out.prn"), Text("bad.png")}), kExitFailed);
    EXPECT_EQ(OutputBytes(), "\x1B%-12345X@PJL of yesterday");
}

TEST_F(OrvexPrintTest, ReportsAnEngineCallWhoseFailureTheDriverIgnores) {
    engine = kRefusingEngine;
    RefusingEngine::refusedRow = 5;
    EXPECT_EQ(Print(), kExitFailed);
    EXPECT_EQ(error, "orvexprint: the job did not print: HPCRLIB_RasterRow of row 5 was refused (0)\n");
    RefusingEngine::Reset();
    RefusingEngine::jobEnd = 5;
    EXPECT_EQ(Print(), kExitFailed);
    EXPECT_EQ(error, "orvexprint: the job did not print: HPCRLIB_JobEnd was refused (5)\n");
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(OrvexPrintTest, ReportsAJobThatTheDriverRefuses) {
    engine = kRefusingEngine;
    engine->HPCRLIB_PageEnd = nullptr;
    EXPECT_EQ(Print(), kExitFailed);
    EXPECT_EQ(error,
              "orvexprint: the job did not print: the driver refused the job (DrvStartDoc): hpcrlib.dll has "
              "no HPCRLIB_PageEnd\n");
    EXPECT_TRUE(NothingWasWritten());
}

#ifndef _WIN32
TEST_F(OrvexPrintTest, ReadsAPipeOnce) {
    const std::string png = ReadBytes(PathFromUtf8(WritePage("a.png")));
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], png.data(), png.size()), static_cast<ssize_t>(png.size()));
    close(ends[1]);
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), "/dev/fd/" + std::to_string(ends[0])}),
              kExitPrinted)
        << error;
    close(ends[0]);
}

TEST_F(OrvexPrintTest, ReportsAFailedWrite) {
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const std::string page = WritePage("a.png");
    const auto oldHandler = signal(SIGXFSZ, SIG_IGN);
    rlimit tight = before;
    tight.rlim_cur = 100;
    setrlimit(RLIMIT_FSIZE, &tight);
    const int status = Run({"--size", "30x40mm", "-o", Text("out.prn"), page});
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(status, kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("out.prn") + " can't be written: the file would be too large\n");
    EXPECT_TRUE(NothingWasWritten());
}
#endif

TEST_F(OrvexPrintTest, ReportsMissingFilesAndFolders) {
    const std::string page = WritePage("a.png");
    EXPECT_EQ(RunPlain({"--install", Text("nowhere"), "-o", Text("out.prn"), page}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: the installation folder " + Text("nowhere") + " is not there\n");
    EXPECT_EQ(Run({"--engine", Text("nowhere.dll"), "-o", Text("out.prn"), page}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: the raster library " + Text("nowhere.dll") + " is not there\n");
    programFolder = scratch.Path();
    EXPECT_EQ(Run({"-o", Text("out.prn"), page}), kExitFailed);
    EXPECT_EQ(error,
              "orvexprint: the job did not print: the driver refused the job (DrvStartDoc): hpcrlib.dll "
              "can't be loaded (error 126)\n");
    EXPECT_EQ(Run({"-o", Text("nowhere/out.prn"), page}), kExitFailed);
    EXPECT_EQ(error,
              "orvexprint: " + Text("nowhere/out.prn") + " can't be written: there is no such folder\n");
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(OrvexPrintTest, TurnsTheDriversLogOnForTheRun) {
    const DriverLibrary driver(DefaultDriverFile());
    fs::remove(driver.LogPath());
    fs::create_directories(driver.LogControlPath().parent_path());
    WriteBytes(driver.LogControlPath(), "0 kept");
    ASSERT_EQ(Print({"--log", "trace"}), 0) << error;
    EXPECT_EQ(error, "the driver's log: " + Utf8FromPath(driver.LogPath()) + "\n");
    EXPECT_EQ(ReadBytes(driver.LogControlPath()), "0 kept");
    std::vector<std::string> lines = ReadLogLines(driver.LogPath());
    EXPECT_THAT(lines, testing::Contains("[Trace] <DrvSendPage>"));
    EXPECT_THAT(OpenScopes(lines), ElementsAre()) << "the trace is nested";
    fs::remove(driver.LogPath());
    ASSERT_EQ(Print({"--log", "error"}), 0) << error;
    lines = ReadLogLines(driver.LogPath());
    EXPECT_THAT(lines, Not(testing::Contains(StartsWith("[Trace]"))));
    EXPECT_THAT(lines, testing::Contains("[Info]  Page: 1"));
    fs::remove(driver.LogPath());
    fs::remove(driver.LogControlPath());
    // A further device makes the driver notice that the log is off.
    ASSERT_EQ(Run({"--dry-run"}), 0);
    EXPECT_FALSE(fs::exists(driver.LogPath()));
}

TEST_F(OrvexPrintTest, ShowsProgressOnATerminalOnly) {
    EXPECT_EQ(Print(), 0) << error;
    EXPECT_EQ(error, "");
    terminal = true;
    EXPECT_EQ(Print(), 0) << error;
    EXPECT_THAT(error, AllOf(StartsWith("\rpage 1 of 1: 0 %"), EndsWith(" \r")));
}

TEST_F(OrvexPrintTest, ShowsItsVersion) {
    EXPECT_EQ(RunPlain({"--version"}), 0);
    EXPECT_EQ(out, std::string("orvexprint ") + kProductVersion + "\n");
    EXPECT_TRUE(ParseNumber(out.substr(strlen("orvexprint "), 3))) << "1.0 of 1.0.0";
}

TEST_F(OrvexPrintTest, ShowsHelp) {
    EXPECT_EQ(RunPlain({"--help"}), 0);
    EXPECT_THAT(out, HasSubstr("Usage: orvexprint [options] -o FILE PAGE.png..."));
    EXPECT_EQ(RunPlain({}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: no pages: name pictures, EMF or spool files, or ask for the --test-page\n");
}

}  // namespace orvex::tools::print
