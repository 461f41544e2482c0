// Metafiles and spool files, printed by the command.
#include <cstring>

#include "driver/config/device_mode.h"
#include "tests/kit/log_capture.h"
#include "tests/tools/common/box_font.h"
#include "tests/tools/common/made_metafile.h"
#include "tests/tools/orvexprint/made_shadow.h"
#include "tests/tools/orvexprint/orvexprint_fixture.h"
#include "tools/orvexprint/spool_file.h"

namespace orvex::tools::print {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

// The label of 30 mm x 40 mm at 300 dpi, which the driver says is as large in whole millimeters.
constexpr uint32_t kWidth = 354;
constexpr uint32_t kHeight = 472;
constexpr MadeMetafile::Frame kFrame = {0, 0, 3000, 4000};
constexpr MadeMetafile::DeviceSize kPrinter = {kWidth, kHeight, 30, 40};
constexpr char kFamily[] = "Orvex Replay Boxes";

// A page drawn without GDI.
class ExpectedPage {
  public:
    ExpectedPage() : pixels_(size_t{kWidth} * kHeight, 0xFFFFFF) {}

    ExpectedPage& Fill(uint32_t left, uint32_t top, uint32_t width, uint32_t height, uint32_t rgb = 0) {
        for (uint32_t y = top; y < top + height; ++y) {
            for (uint32_t x = left; x < left + width; ++x) pixels_[y * kWidth + x] = rgb;
        }
        return *this;
    }
    ExpectedPage& HalfTurn() {
        std::reverse(pixels_.begin(), pixels_.end());
        return *this;
    }

    std::string Png() const {
        std::vector<uint8_t> samples;
        for (const uint32_t pixel : pixels_) {
            for (const uint32_t each : {pixel >> 16, pixel >> 8, pixel, 255u})
                samples.push_back(static_cast<uint8_t>(each));
        }
        const PngRecipe recipe{.width = kWidth, .height = kHeight, .densityX = 11811, .densityY = 11811};
        return AsText(MakePng(recipe, samples));
    }

  private:
    std::vector<uint32_t> pixels_;
};

class ReplayTest : public OrvexPrintTest {
  protected:
    // Returns the device mode of the label as the driver stores it, with changes.
    std::string ModeBytes(void (*change)(DeviceMode&) = [](DeviceMode&) {}) {
        RunWell({"--size", "30x40mm", "--save-devmode", Text("mode")});
        const std::string bytes = ReadBytes(Path("mode"));
        DeviceMode mode;
        EXPECT_EQ(bytes.size(), sizeof mode);
        memcpy(&mode, bytes.data(), sizeof mode);
        change(mode);
        return {reinterpret_cast<const char*>(&mode), sizeof mode};
    }

    std::string WriteFile(const char* name, const std::string& bytes) {
        WriteBytes(Path(name), bytes);
        return Text(name);
    }

    // Prints the pages as pictures, and returns the print file.
    std::string PrintPictures(const std::vector<ExpectedPage>& pages, const std::string& title) {
        std::vector<std::string> arguments = {"--size", "30x40mm", "--title", title, "-o", Text("png.prn")};
        for (const ExpectedPage& page : pages) {
            const std::string name = "page" + std::to_string(arguments.size()) + ".png";
            arguments.push_back(WriteFile(name.c_str(), page.Png()));
        }
        RunWell(arguments);
        EXPECT_EQ(error, "");
        return ReadBytes(Path("png.prn"));
    }
};

MadeMetafile Label() {
    return {kFrame, kPrinter};
}

// A job of three pages of bars, text and a bitmap, which is turned by half after the second one. Its font is
// embedded in the first. Its records have the order in which Windows writes them.
std::string MakeJob(const std::string& first, const std::string& second) {
    MadeSpoolFile made("Three labels", "LPT1:");
    MadeMetafile page = Label();
    const size_t comment = page.NextAt();
    page.Comment(FontComment(2, FontData(MakeBoxFont(kFamily))));
    page.Bar(10, 20, 30, 200).Bar(50, 20, 3, 200).Text(100, 50, 40, kFamily, "ABC");
    const size_t content = made.Record(12, page.File());
    made.PointBack(15, content + 8 + comment + 20);
    made.DeviceMode(first);
    made.PointBack(13, content);
    made.Page(Label().Bitmap(7, 9, 2, {0xFF0000, 0x00FF00, 0x0000FF, 0x123456}).File());
    const size_t last = made.Record(12, Label().Bar(0, 0, 354, 2).Text(5, 10, 20, kFamily, "Z").File());
    made.DeviceMode(second);
    made.PointBack(13, last);
    return made.File();
}

void TurnByHalf(DeviceMode& mode) {
    mode.priv.rotate180 = 1;
}

}  // namespace

TEST_F(ReplayTest, SaysWhereAMetafileIsPlaced) {
    const std::string label = WriteFile("label.emf", MadeMetafile({0, 0, 2000, 1000}, kPrinter).File());
    RunWell({"--size", "30x40mm", "--dry-run", label});
    EXPECT_THAT(out, HasSubstr("label.emf: 236 x 118 pixels, 59 from the left, 177 from the top\n"));
    RunWell({"--size", "30x40mm", "--fit", "--dry-run", label});
    EXPECT_THAT(out, HasSubstr("label.emf: 354 x 177 pixels, 0 from the left, 147 from the top\n"));
    RunWell({"--size", "30x40mm", "--fit", "--rotate", "auto", "--dry-run", label});
    EXPECT_THAT(out, HasSubstr("label.emf: 236 x 472 pixels, 59 from the left, 0 from the top, turned by a "
                               "quarter\n"));
    const std::string large = WriteFile("large.emf", MadeMetafile({0, 0, 5500, 2700}, kPrinter).File());
    RunWell({"--dpi", "600", "--dry-run", large});
    EXPECT_THAT(out, HasSubstr("Label: 600 dpi, 55.0 x 27.0 mm, portrait\n"));
    EXPECT_EQ(Run({"--size", "30x40mm", "--dry-run", large}), kExitFailed);
    EXPECT_THAT(error, StartsWith("orvexprint: " + large +
                                  " measures 55.0 x 27.0 mm and is larger than the label of 30.0 x 40.0 mm"));
}

TEST_F(ReplayTest, RefusesADamagedMetafile) {
    const std::string label = WriteFile("label.emf", Label().File().substr(0, 120));
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), label}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + label + " is damaged: its header says 128 bytes, and there are 120\n");
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(ReplayTest, ShowsThePagesOfASpoolFile) {
    const std::string mode = ModeBytes();
    MadeSpoolFile made("Name", "");
    made.DeviceMode(mode);
    made.Page(Label().File());
    made.Page(MadeMetafile({100, 200, 1100, 1200}, {1920, 1080, 508, 286}).File());
    made.Record(7, "subset");
    const std::string job = WriteFile("job.spl", made.File());
    RunWell({"--dry-run", job});
    EXPECT_THAT(out,
                AllOf(HasSubstr("Label: 300 dpi, 30.0 x 40.0 mm, portrait\n"),
                      HasSubstr("job.spl, page 1: 354 x 472 pixels, 0 from the left, 0 from the top\n"),
                      HasSubstr("job.spl, page 2: 118 x 118 pixels, 12 from the left, 24 from the top\n")));
    EXPECT_THAT(error, AllOf(StartsWith("orvexprint: " + job + ": EMRI_SUBSET_FONT at offset "),
                             HasSubstr("text in this font is drawn in one that this machine has\n")));
}

TEST_F(ReplayTest, TakesTheFirstDeviceModeFromTheShadowFile) {
    MadeSpoolFile made("", "");
    made.Page(Label().File());
    const std::string job = WriteFile("job.spl", made.File());
    const std::string mode = ModeBytes([](DeviceMode& each) { each.pub.dmCopies = 5; });
    const std::string shadow =
        WriteFile("job.shd", MakeShadowFile(kShadowKinds[0], "A name", "NT EMF 1.008", mode));
    RunWell({"--dry-run", "--save-devmode", Text("used"), "--shd", shadow, job});
    EXPECT_EQ(ReadBytes(Path("used")), mode);
    RunWell({"--size", "50x60mm", "--dry-run", job});
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, 50.0 x 60.0 mm, portrait\n")) << "it has no settings";
    const std::string raw = WriteFile("raw.shd", MakeShadowFile(kShadowKinds[0], "A name", "RAW", mode));
    EXPECT_EQ(Run({"--dry-run", "--shd", raw, job}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + raw +
                         " is of a job with data of the type RAW, which is no spool file of metafiles (NT "
                         "EMF)\n");
}

// In both builds a guard page follows the device mode at once.
TEST_F(ReplayTest, HandsOverDeviceModesThatAreShort) {
    for (const size_t extra : {size_t{0}, size_t{17}, sizeof(PrivateDevMode)}) {
        std::string mode = ModeBytes([](DeviceMode& each) { each.pub.dmCopies = 5; });
        mode.resize(sizeof(DEVMODEW) + extra);
        mode.replace(offsetof(DEVMODEW, dmDriverExtra), 2, ByteMaker().U16(extra).Bytes());
        MadeSpoolFile made("", "");
        made.DeviceMode(mode);
        made.Page(Label().File());
        RunWell({"--dry-run", "--save-devmode", Text("used"), WriteFile("job.spl", made.File())});
        const std::string used = ReadBytes(Path("used"));
        EXPECT_EQ(static_cast<int>(used[offsetof(DEVMODEW, dmCopies)]), 5) << extra;
    }
    MadeSpoolFile made("", "");
    made.DeviceMode(ByteMaker().Zeros(68).U16(72).U16(0).Bytes());
    made.Page(Label().File());
    RunWell({"--dry-run", WriteFile("job.spl", made.File())});
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, "));
}

TEST_F(ReplayTest, RefusesOptionsThatASpoolFileDoesNotTake) {
    MadeSpoolFile made("", "");
    made.DeviceMode(ModeBytes());
    made.Page(Label().File());
    const std::string job = WriteFile("job.spl", made.File());
    const std::string mode =
        "orvexprint: " + job + " is a spool file with a device mode of its own; leave out ";
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--size", "30x40mm"}, {"--label", "Small"}, {"--copies", "2"}}) {
        std::vector<std::string> arguments = {"-o", Text("out.prn"), job};
        arguments.insert(arguments.begin(), options.begin(), options.end());
        EXPECT_EQ(Run(arguments), kExitUsage) << options[0];
        EXPECT_THAT(error, StartsWith(mode));
    }
    EXPECT_EQ(Run({"--fit", "-o", Text("out.prn"), job}), kExitUsage);
    EXPECT_THAT(error, HasSubstr("whose pages are drawn where they were; leave out --fit, "));
    EXPECT_EQ(Run({"-o", Text("out.prn"), WritePage("a.png"), job}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: " + job + " is a spool file, a job by itself; print it alone\n");
    EXPECT_EQ(Run({"--shd", Text("job.shd"), "-o", Text("out.prn"), WritePage("a.png")}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: --shd belongs to a spool file, and " + Text("a.png") + " is none\n");
    const std::string shadow = WriteFile("a.shd", MakeShadowFile(kShadowKinds[0], "A name", "RAW", ""));
    EXPECT_EQ(Run({"-o", Text("out.prn"), shadow}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + shadow + " is a shadow file, which has no pages; name it with --shd\n");
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(ReplayTest, RefusesSpoolFilesOfOtherKinds) {
    EXPECT_EQ(Run({"-o", Text("out.prn"), WriteFile("job.SPL", "\x1B%-12345X@PJL")}), kExitFailed);
    EXPECT_THAT(error, StartsWith("orvexprint: " + Text("job.SPL") + " is a RAW spool file, "));
    EXPECT_EQ(Run({"-o", Text("out.prn"), WriteFile("xps.spl", "PK\x03\x04")}), kExitFailed);
    EXPECT_THAT(error, StartsWith("orvexprint: " + Text("xps.spl") + " is an XPS spool file; "));
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(ReplayTest, SavesTheJobAsASpoolFile) {
    RunWell({"--size", "30x40mm", "--copies", "3", "--title", "A title", "--save-devmode", Text("mode"),
             "--save-spl", Text("job.spl"), "-o", Text("out.prn"), WritePage("a.png"), WritePage("b.png")});
    const std::string bytes = ReadBytes(Path("job.spl"));
    const SpoolFile file = ReadSpoolFile({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
    EXPECT_EQ(file.document, "A title");
    EXPECT_THAT(file.leftOut, testing::IsEmpty());
    ASSERT_EQ(file.pages.size(), 2u);
    const ByteSpan mode = file.pages[0].deviceMode;
    EXPECT_EQ(mode.size(), sizeof(DeviceMode));
    EXPECT_EQ(file.pages[1].deviceMode.data(), mode.data());
    // The black rectangle of 236 x 118 pixels, a bit for each, and nothing of the white rows around it.
    EXPECT_GT(file.pages[0].metafile.size(), 48u * 118);
    EXPECT_LT(file.pages[0].metafile.size(), 48u * 118 + 500);
    RunWell({"--dry-run", "--save-devmode", Text("again"), Text("job.spl")});
    EXPECT_EQ(ReadBytes(Path("again")), ReadBytes(Path("mode")));
}

TEST_F(ReplayTest, WritesNoSpoolFileWhenTheJobFails) {
    EXPECT_EQ(Run({"--size", "30x40mm", "--save-spl", Text("job.spl"), "-o", Text("out.prn"),
                   WritePage("a.png"), Text("missing.png")}),
              kExitFailed);
    EXPECT_FALSE(std::filesystem::exists(Path("job.spl")));
    const std::string other = WriteFile("other", "of another kind");
    EXPECT_EQ(Run({"--size", "30x40mm", "--save-spl", other, "-o", Text("out.prn"), WritePage("a.png")}),
              kExitUsage);
    EXPECT_EQ(error,
              "orvexprint: --save-spl " + other + " exists and is no spool file; --force replaces it\n");
    EXPECT_EQ(ReadBytes(Path("other")), "of another kind");
}

#ifdef _WIN32

TEST_F(ReplayTest, PrintsAMetafileLikeThePictureOfIt) {
    const std::string label = WriteFile("label.emf", Label().Bar(10, 20, 30, 200).File());
    RunWell({"--size", "30x40mm", "--title", "t", "-o", Text("out.prn"), label});
    EXPECT_EQ(error, "");
    EXPECT_TRUE(OutputBytes() == PrintPictures({ExpectedPage().Fill(10, 20, 30, 200)}, "t"));
}

TEST_F(ReplayTest, TurnsAMetafileLikeThePictureOfIt) {
    const MadeMetafile::Frame frame = {0, 0, 4000, 3000};
    const MadeMetafile::DeviceSize device = {kHeight, kWidth, 40, 30};
    WriteFile("label.emf", MadeMetafile(frame, device).Bar(0, 0, 472, 3).Bar(20, 50, 7, 100).File());
    std::vector<uint8_t> samples(size_t{kHeight} * kWidth * 4, 255);
    for (uint32_t y = 0; y < kWidth; ++y) {
        for (uint32_t x = 0; x < kHeight; ++x) {
            const bool black = y < 3 || (x >= 20 && x < 27 && y >= 50 && y < 150);
            if (black) std::fill_n(&samples[(size_t{y} * kHeight + x) * 4], 3, uint8_t{0});
        }
    }
    const PngRecipe recipe{.width = kHeight, .height = kWidth, .densityX = 11811, .densityY = 11811};
    WriteFile("label.png", AsText(MakePng(recipe, samples)));
    const auto print = [&](const char* page) {
        RunWell({"--size", "30x40mm", "--rotate", "auto", "--title", "t", "-o", Text("out.prn"), Text(page)});
        return OutputBytes();
    };
    EXPECT_TRUE(print("label.emf") == print("label.png"));
}

TEST_F(ReplayTest, ReplaysAJobWithItsFontsAndDeviceModes) {
    const std::string job = WriteFile("job.spl", MakeJob(ModeBytes(), ModeBytes(&TurnByHalf)));
    const DriverLibrary driver(DefaultDriverFile());
    std::filesystem::remove(driver.LogPath());
    RunWell({"--log", "trace", "-o", Text("out.prn"), job});
    EXPECT_EQ(error, "the driver's log: " + Utf8FromPath(driver.LogPath()) + "\n");
    EXPECT_THAT(out, HasSubstr(": 3 pages, "));
    const std::vector<std::string> trace = ReadLogLines(driver.LogPath());
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "[Trace] <DrvResetPDEV>"), 1);
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "[Trace] <DrvEnablePDEV>"), 2);
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "[Trace] <DrvDisablePDEV>"), 2);

    ExpectedPage first, second, third;
    first.Fill(10, 20, 30, 200).Fill(50, 20, 3, 200).Fill(100, 50, 120, 40);
    second.Fill(7, 9, 1, 1, 0xFF0000).Fill(8, 9, 1, 1, 0x00FF00);
    second.Fill(7, 10, 1, 1, 0x0000FF).Fill(8, 10, 1, 1, 0x123456);
    third.Fill(0, 0, 354, 2).Fill(5, 10, 20, 20).HalfTurn();
    EXPECT_TRUE(OutputBytes() == PrintPictures({first, second, third}, "Three labels"));
    std::filesystem::remove(driver.LogPath());  // the next job logs until it notices that the log is off
}

TEST_F(ReplayTest, KeepsCopiesAndNameOfTheJob) {
    MadeSpoolFile made("", "");
    made.Page(Label().Bar(1, 1, 5, 5).File());
    const std::string job = WriteFile("job.spl", made.File());
    const std::string mode = ModeBytes([](DeviceMode& each) { each.pub.dmCopies = 5; });
    const std::string shadow =
        WriteFile("job.shd", MakeShadowFile(kShadowKinds[2], "A name", "NT EMF 1.008", mode));
    RunWell({"--shd", shadow, "-o", Text("out.prn"), job});
    EXPECT_THAT(OutputBytes(),
                AllOf(HasSubstr("@PJL SET COPIES=5\n"), HasSubstr("@PJL JOB NAME=\"A name\"\n")));
}

TEST_F(ReplayTest, ReplaysWhatItSavedByteForByte) {
    const std::string job = WriteFile("job.spl", MakeJob(ModeBytes(), ModeBytes(&TurnByHalf)));
    RunWell({"--save-spl", Text("copy.spl"), "-o", Text("out.prn"), job});
    RunWell({"-o", Text("again.prn"), Text("copy.spl")});
    EXPECT_EQ(error, "");
    EXPECT_TRUE(ReadBytes(Path("again.prn")) == OutputBytes()) << "with two device modes";

    RunWell({"--test-page", "--size", "100x150mm", "--dpi", "600", "--save-spl", Text("copy.spl"), "-o",
             Text("out.prn")});
    RunWell({"-o", Text("again.prn"), Text("copy.spl")});
    EXPECT_TRUE(ReadBytes(Path("again.prn")) == OutputBytes());

    ExpectedPage page;
    for (uint32_t x = 0; x < kWidth; ++x)
        page.Fill(x, 9, 1, 5, x % 16 * 0x111111)
            .Fill(x, 99, 1, 5, x % 256 * 0x203)
            .Fill(x, 200, 1, 5, x * 0x203);
    RunWell({"--save-spl", Text("copy.spl"), "-o", Text("out.prn"), WriteFile("colors.png", page.Png())});
    RunWell({"-o", Text("again.prn"), Text("copy.spl")});
    EXPECT_TRUE(ReadBytes(Path("again.prn")) == OutputBytes()) << "with few and with many colors";
}

TEST_F(ReplayTest, ResetsTheDeviceBeforeTheFirstPage) {
    MadeSpoolFile made("Name", "");
    made.DeviceMode(ModeBytes(&TurnByHalf));
    made.Page(Label().Bar(10, 20, 30, 200).File());
    const std::string job = WriteFile("job.spl", made.File());
    const std::string shadow =
        WriteFile("job.shd", MakeShadowFile(kShadowKinds[1], "Name", "NT EMF 1.008", ModeBytes()));
    RunWell({"--shd", shadow, "--save-spl", Text("copy.spl"), "-o", Text("out.prn"), job});
    EXPECT_TRUE(OutputBytes() == PrintPictures({ExpectedPage().Fill(10, 20, 30, 200).HalfTurn()}, "Name"));
    RunWell({"-o", Text("again.prn"), Text("copy.spl")});
    EXPECT_TRUE(ReadBytes(Path("again.prn")) == OutputBytes());
}

TEST_F(ReplayTest, SaysThatGdiPlusAloneIsNotDrawn) {
    const std::string plus = ByteMaker().Text("EMF+").U16(0x4001).U16(0).Zeros(24).Bytes();
    const std::string label = WriteFile("label.emf", Label().Comment(plus).File());
    RunWell({"--size", "30x40mm", "-o", Text("out.prn"), label});
    EXPECT_EQ(error, "orvexprint: page 1 is drawn with GDI+ alone, which is not replayed\n");
}

TEST_F(ReplayTest, SaysWhichFontsCannotBeLoaded) {
    MadeSpoolFile made("", "");
    made.DeviceMode(ModeBytes());
    made.Record(2, FontData("no font"));
    made.Page(Label().File());
    RunWell({"-o", Text("out.prn"), WriteFile("job.spl", made.File())});
    EXPECT_EQ(error, "orvexprint: " + Text("job.spl") +
                         ": its font 1 can't be loaded; text in it is drawn in one that this machine has\n");
}

#else

// There is no GDI to draw with natively.
TEST_F(ReplayTest, SaysThatMetafilesNeedTheWindowsBuild) {
    const std::string need =
        " can't be drawn: it is a metafile, and metafiles need the Windows build, which has GDI; ./print "
        "uses "
        "it\n";
    const std::string label = WriteFile("label.emf", Label().File());
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", Text("out.prn"), label}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + label + need);
    const std::string job = WriteFile("job.spl", MakeJob(ModeBytes(), ModeBytes(&TurnByHalf)));
    EXPECT_EQ(Run({"-o", Text("out.prn"), job}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + job + ", page 1," + need);
    EXPECT_TRUE(NothingWasWritten());
}

#endif

}  // namespace orvex::tools::print
