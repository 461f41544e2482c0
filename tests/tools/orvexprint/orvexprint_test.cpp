#include "tools/orvexprint/orvexprint.h"

#include <gmock/gmock.h>

#include <cstring>
#include <sstream>

#include "driver/config/device_mode.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/png_maker.h"
#include "tests/tools/host/refusing_engine.h"
#include "tools/common/wide_text.h"

#ifndef _WIN32
#include <sys/resource.h>

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

constexpr char kMedia[] = "[Media]\r\n\"Shipping\", \"4\", \"6\", 1\r\n\"Small\", \"50\", \"30\", 0\r\n";

// The command with the built driver and stand-in engine, and the test's own installation.
class OrvexPrintTest : public testing::Test {
  protected:
    OrvexPrintTest() {
        RefusingEngine::Reset();
        scratch.Write("install/settings.inf", "[UI]\r\n");
        scratch.Write("install/media.inf", kMedia);
    }

    fs::path Path(std::string_view name) const { return scratch.Path() / PathFromUtf8(name); }
    std::string Text(std::string_view name) const { return Utf8FromPath(Path(name)); }

    // Runs the command with the test's installation, and keeps its outputs in `out` and `error`.
    int Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--install", Text("install")});
        return RunPlain(arguments);
    }

    int RunPlain(const std::vector<std::string>& arguments) {
        std::ostringstream outStream;
        std::ostringstream errorStream;
        const fs::path before = fs::current_path();
        PrintEnvironment environment{.out = outStream, .error = errorStream, .terminal = terminal};
        environment.engine = engine;
        if (!programFolder.empty()) environment.programFolder = programFolder;
        const int status = RunOrvexPrint(arguments, environment);
        out = outStream.str();
        error = errorStream.str();
        EXPECT_EQ(fs::current_path(), before);
        return status;
    }

    // Writes a page of 20 mm x 10 mm and returns its name.
    std::string WritePage(std::string_view name, uint32_t rgb = 0x000000) const {
        WriteBytes(Path(name), AsText(MakePlainPng(236, 118, 11811, rgb)));
        return Text(name);
    }

    std::string OutputBytes() const { return ReadBytes(Path("out.prn")); }
    // Returns whether there is neither an output nor an unfinished one.
    bool NothingWasWritten() const {
        for (const auto& entry : fs::directory_iterator(scratch.Path())) {
            if (entry.path().filename().string().starts_with("out.prn")) return false;
        }
        return true;
    }

    ScratchFolder scratch;
    std::optional<PrintEngine> engine;
    fs::path programFolder;
    bool terminal = false;
    std::string out;
    std::string error;
};

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
    ASSERT_EQ(Run({"--size", "30x40mm", "--copies", "3", "--title", "Two pages", "-o", Text("out.prn"),
                   WritePage("a.png"), WritePage("b.png")}),
              kExitPrinted)
        << error;
    EXPECT_EQ(error, "");
    EXPECT_THAT(out, AllOf(StartsWith(Text("out.prn") + ": 2 pages, 708 rows, " +
                                      std::to_string(OutputBytes().size()) + " bytes, "),
                           EndsWith(" seconds\n")));
    EXPECT_THAT(OutputBytes(), AllOf(HasSubstr("@PJL SET COPIES=3\n"), HasSubstr("@PJL SET ORIGX=354\n"),
                                     HasSubstr("@PJL JOB NAME=\"Two pages\"\n"), HasSubstr("@PJL COMMENT")));
}

TEST_F(OrvexPrintTest, NamesTheJobAfterItsFirstPage) {
    ASSERT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), WritePage("first.png"), WritePage("b.png")}),
              0)
        << error;
    EXPECT_THAT(OutputBytes(), HasSubstr("@PJL JOB NAME=\"first.png\"\n"));
    EXPECT_THAT(out, HasSubstr(": 2 pages, "));
}

TEST_F(OrvexPrintTest, TakesNamesOfAnyScript) {
    const std::string output = Text("K\xC3\xA4se \xE2\x82\xAC \xE6\x97\xA5.prn");
    ASSERT_EQ(Run({"--size", "30x40mm", "-o", output, WritePage("\xD0\xA9 \xC3\xA9.png")}), 0) << error;
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
    ASSERT_EQ(Run({"--test-page", "--size", "100x150mm", "--grey", "black", "-o", Text("out.prn")}), 0)
        << error;
    EXPECT_THAT(out, HasSubstr(": 1 page, 1181 rows, "));
    EXPECT_THAT(OutputBytes(),
                AllOf(HasSubstr("@PJL JOB NAME=\"Test page\"\n"), HasSubstr("@PJL SET COLORMODE=2\n")));
}

TEST_F(OrvexPrintTest, WritesNothingWhenAnOptionIsWrong) {
    EXPECT_EQ(Run({"--dpi", "720", "-o", Text("out.prn"), WritePage("a.png")}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: --dpi: \"720\" is not allowed; it takes 300 or 600 dpi\n");
    EXPECT_EQ(Run({"--label", "Nothing", "-o", Text("out.prn"), WritePage("a.png")}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: --label: \"Nothing\" is not allowed; it takes \"Shipping\", \"Small\"\n");
    EXPECT_EQ(Run({"--profile", "none.zvp", "-o", Text("out.prn"), WritePage("a.png")}), kExitUsage);
    EXPECT_EQ(
        error,
        "orvexprint: --profile: \"none.zvp\" is not allowed; it takes an installed profile, and none is "
        "installed\n");
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(OrvexPrintTest, WritesNothingWhenAPageCannotBeDrawn) {
    const std::string good = WritePage("a.png");
    WriteBytes(Path("bad.png"), "no picture");
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), good, Text("bad.png")}), kExitFailed);
    EXPECT_THAT(error, StartsWith("orvexprint: " + Text("bad.png") + " is "));
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), good, Text("missing.png")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("missing.png") + " can't be opened\n");
    WriteBytes(Path("large.png"), AsText(MakePlainPng(400, 100, 11811)));
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), Text("large.png")}), kExitFailed);
    EXPECT_EQ(
        error,
        "orvexprint: " + Text("large.png") +
            " measures 33.9 x 8.5 mm and is larger than the label of 30.0 x 40.0 mm; --fit scales it\n");
    EXPECT_TRUE(NothingWasWritten());
    EXPECT_EQ(Run({"--size", "30x40mm", "--fit", "-o", Text("out.prn"), Text("large.png")}), 0) << error;
}

TEST_F(OrvexPrintTest, LeavesAnEarlierOutputWhenTheJobFails) {
    WriteBytes(Path("out.prn"), "of yesterday");
    WriteBytes(Path("bad.png"), "no picture");
    EXPECT_EQ(Run({"-o", Text("out.prn"), Text("bad.png")}), kExitFailed);
    EXPECT_EQ(OutputBytes(), "of yesterday");
}

TEST_F(OrvexPrintTest, ReportsAnEngineCallWhoseFailureTheDriverIgnores) {
    engine = kRefusingEngine;
    RefusingEngine::refusedRow = 5;
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), WritePage("a.png")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: the job did not print: HPCRLIB_RasterRow of row 5 was refused (0)\n");
    RefusingEngine::Reset();
    RefusingEngine::jobEnd = 5;
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), WritePage("a.png")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: the job did not print: HPCRLIB_JobEnd was refused (5)\n");
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(OrvexPrintTest, ReportsAJobThatTheDriverRefuses) {
    engine = kRefusingEngine;
    engine->HPCRLIB_PageEnd = nullptr;
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), WritePage("a.png")}), kExitFailed);
    EXPECT_EQ(
        error,
        "orvexprint: the job did not print: the driver refused the job (DrvStartDoc): hpcrlib.dll has no "
        "HPCRLIB_PageEnd\n");
    EXPECT_TRUE(NothingWasWritten());
}

#ifndef _WIN32
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
    EXPECT_THAT(error, AllOf(StartsWith("orvexprint: "), HasSubstr("writ")));
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
    EXPECT_EQ(
        error,
        "orvexprint: the job did not print: the driver refused the job (DrvStartDoc): hpcrlib.dll can't be "
        "loaded (error 126)\n");
    EXPECT_EQ(Run({"-o", Text("nowhere/out.prn"), page}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("nowhere/out.prn") + " can't be written\n");
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(OrvexPrintTest, ShowsTheLayoutAndPrintsNothing) {
    ASSERT_EQ(Run({"--dry-run", "--size", "100x150mm", "--dpi", "600", "--align", "centre", "--purge-bar",
                   "leading", "--full-width", "--print-head-offset", "0", WritePage("a.png")}),
              0)
        << error;
    EXPECT_THAT(out, HasSubstr("Label: 600 dpi, 100.0 x 150.0 mm, portrait\nBitmap: 2362 x 3543 pixels\n"));
    // These settings were not given; the driver's validation sets them.
    EXPECT_THAT(out, HasSubstr("  purge-dots            1 pixel\n  purge-gap             5 mm\n"));
    // A row has the page's 3543 pixels, a dot and 5 mm of 23 pixels.
    EXPECT_THAT(out, HasSubstr("  row                   3659 pixels (154.9 mm), of which the page 3543\n"));
    EXPECT_THAT(
        out,
        HasSubstr(
            "  purge bar             116 pixels, 1 of them inked, ahead of the page, on the first page\n"));
    EXPECT_THAT(out, HasSubstr("  rows of the page      2362 pixels (100.0 mm)\n"));
    EXPECT_THAT(out, HasSubstr("  fill rows before      2329\n  fill rows behind      2329\n"));
    EXPECT_THAT(out, HasSubstr("  rows of the block     7020 pixels (297.2 mm), the full width\n"));
    EXPECT_THAT(out, HasSubstr("  a pixel               12 units of 1/7200 inch\n"));
    EXPECT_THAT(out, HasSubstr("  image                 43908 units (154.9 mm) x 28344 units (100.0 mm)\n"));
    EXPECT_THAT(out, HasSubstr("  page                  46308 units (163.4 mm) x 30744 units (108.5 mm)\n"));
    EXPECT_THAT(out, HasSubstr("  page as announced     46308 units (163.4 mm) x 86616 units (305.6 mm)\n"));
    EXPECT_THAT(out, HasSubstr("  a.png: 472 x 236 pixels, 945 from the left, 1653 from the top\n"));
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(OrvexPrintTest, ShowsTheOffsetOfALabelOnTheRight) {
    ASSERT_EQ(Run({"--dry-run", "--size", "100x150mm", "--align", "right", "--print-head-offset", "1.0mm"}),
              0)
        << error;
    EXPECT_THAT(
        out,
        HasSubstr("  print-head offset     -12 pixels (-1.0 mm), of the opposite sign to the setting\n"));
    EXPECT_THAT(out, HasSubstr("  block begins at       2317 pixels (196.2 mm)\n"));
    EXPECT_THAT(out, HasSubstr("  purge bar             none\n"));
}

TEST_F(OrvexPrintTest, TakesALabelOfTheList) {
    ASSERT_EQ(Run({"--dry-run", "--label", "Shipping"}), 0) << error;
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, 101.6 x 152.4 mm, portrait\nBitmap: 1200 x 1800 pixels\n"));
    ASSERT_EQ(Run({"--dry-run", "--label", "Small", "--landscape"}), 0) << error;
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, 50.0 x 30.0 mm, landscape\nBitmap: 354 x 591 pixels\n"));
}

TEST_F(OrvexPrintTest, PrefersASizeToTheInstallationsDefaultLabel) {
    scratch.Write("install/settings.inf", "[UI]\r\nDefault_Media=Shipping\r\n");
    ASSERT_EQ(Run({"--dry-run"}), 0) << error;
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, 101.6 x 152.4 mm, portrait\nBitmap: 1200 x 1800 pixels\n"));
    ASSERT_EQ(Run({"--dry-run", "--size", "50x60mm"}), 0) << error;
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, 50.0 x 60.0 mm, portrait\nBitmap: 591 x 709 pixels\n"));
}

TEST_F(OrvexPrintTest, ListsLabelsAndProfilesInALanguage) {
    ASSERT_EQ(Run({"--list"}), 0) << error;
    EXPECT_EQ(out,
              "Labels\n"
              "  258   Shipping                          4 x 6 in\n"
              "  259   Small                             50 x 30 mm\n"
              "Colour profiles\n"
              "  none\n");
    scratch.Write("install/profiles/coated.zvp", "");
    std::string names = "\xFF\xFE";
    for (const char c : std::string("[ENU]\r\ncoated.zvp=Coated\r\n[DEU]\r\ncoated.zvp=Gestrichen\r\n")) {
        names += c;
        names += '\0';
    }
    scratch.Write("install/profilenames.inf", names);
    ASSERT_EQ(Run({"--list", "--language", "DEU"}), 0) << error;
    EXPECT_THAT(out, HasSubstr("  coated.zvp                  Gestrichen\n"));
    ASSERT_EQ(Run({"--list", "--language", "ENU"}), 0) << error;
    EXPECT_THAT(out, HasSubstr("  coated.zvp                  Coated\n"));
}

TEST_F(OrvexPrintTest, KeepsThePrintersLabelsInAFileWhenAsked) {
    ASSERT_EQ(Run({"--list", "--printer-data", Text("data.json")}), 0) << error;
    scratch.Write("install/media.inf", "[Media]\r\n\"Other\", \"1\", \"1\", 1\r\n");
    ASSERT_EQ(Run({"--list", "--printer-data", Text("data.json")}), 0) << error;
    EXPECT_THAT(out, AllOf(HasSubstr("Shipping"), Not(HasSubstr("Other"))));
    WriteBytes(Path("data.json"), "{");
    EXPECT_EQ(Run({"--list", "--printer-data", Text("data.json")}), kExitFailed);
    EXPECT_THAT(error, HasSubstr("data.json"));
}

TEST_F(OrvexPrintTest, SavesAndLoadsDeviceModes) {
    ASSERT_EQ(Run({"--save-devmode", Text("mode.bin"), "--size", "30x40mm", "--dpi", "600", "--cyan", "-5",
                   "--landscape", "--purge-bar", "trailing"}),
              0)
        << error;
    const std::string bytes = ReadBytes(Path("mode.bin"));
    ASSERT_EQ(bytes.size(), 916u);
    DeviceMode mode;
    memcpy(&mode, bytes.data(), sizeof mode);
    EXPECT_EQ(mode.pub.dmPrintQuality, 600);
    EXPECT_EQ(mode.pub.dmPaperWidth, 300);
    EXPECT_EQ(mode.pub.dmPaperLength, 400);
    EXPECT_EQ(mode.priv.adj_cyan, -5);
    EXPECT_EQ(mode.priv.purgeDots, 1) << "as the driver makes it";
    ASSERT_EQ(Run({"--dry-run", "--load-devmode", Text("mode.bin"), "--portrait"}), 0) << error;
    EXPECT_THAT(out, AllOf(HasSubstr("Label: 600 dpi, 30.0 x 40.0 mm, portrait\n"),
                           HasSubstr("  cyan                  -5\n"),
                           HasSubstr("  purge-bar             trailing\n")));
}

TEST_F(OrvexPrintTest, RefusesFilesThatAreNotADeviceMode) {
    ASSERT_EQ(Run({"--save-devmode", Text("mode.bin")}), 0) << error;
    std::string bytes = ReadBytes(Path("mode.bin"));
    WriteBytes(Path("short.bin"), bytes.substr(1));
    WriteBytes(Path("long.bin"), bytes + "x");
    bytes[220] ^= 1;
    WriteBytes(Path("foreign.bin"), bytes);
    for (const char* name : {"short.bin", "long.bin"}) {
        EXPECT_EQ(Run({"--dry-run", "--load-devmode", Text(name)}), kExitFailed);
        EXPECT_EQ(error, "orvexprint: " + Text(name) + " is no device mode: it does not have 916 bytes\n");
    }
    EXPECT_EQ(Run({"--dry-run", "--load-devmode", Text("foreign.bin")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("foreign.bin") + " is no device mode of this driver\n");
    EXPECT_EQ(Run({"--dry-run", "--load-devmode", Text("missing.bin")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: the device mode " + Text("missing.bin") + " can't be opened\n");
}

TEST_F(OrvexPrintTest, TurnsTheDriversLogOnForTheRun) {
    const DriverLibrary driver(DefaultDriverFile());
    fs::remove(driver.LogPath());
    fs::create_directories(driver.LogControlPath().parent_path());
    WriteBytes(driver.LogControlPath(), "0 kept");
    ASSERT_EQ(Run({"--log", "trace", "--size", "30x40mm", "-o", Text("out.prn"), WritePage("a.png")}), 0)
        << error;
    EXPECT_EQ(error, "the driver's log: c:\\temp\\orvexgdi.txt\n");
    EXPECT_EQ(ReadBytes(driver.LogControlPath()), "0 kept");
    std::vector<std::string> lines = ReadLogLines(driver.LogPath());
    EXPECT_THAT(lines, testing::Contains("[Trace] <DrvSendPage>"));
    EXPECT_THAT(OpenScopes(lines), ElementsAre()) << "the trace is nested";
    fs::remove(driver.LogPath());
    ASSERT_EQ(Run({"--log", "error", "--size", "30x40mm", "-o", Text("out.prn"), WritePage("a.png")}), 0)
        << error;
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
    ASSERT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), WritePage("a.png")}), 0) << error;
    EXPECT_EQ(error, "");
    terminal = true;
    ASSERT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), WritePage("a.png")}), 0);
    EXPECT_THAT(error, AllOf(StartsWith("\rpage 1 of 1: 0 %\rpage 1 of 1: 1 %"),
                             HasSubstr("\rpage 1 of 1: 100 %"), EndsWith(" \r")));
}

TEST_F(OrvexPrintTest, ShowsHelp) {
    EXPECT_EQ(RunPlain({"--help"}), 0);
    EXPECT_THAT(out, HasSubstr("Usage: orvexprint [options] -o FILE PAGE.png..."));
    EXPECT_EQ(RunPlain({}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: no pages: name PNG files, or ask for the --test-page\n");
}

}  // namespace orvex::tools::print
