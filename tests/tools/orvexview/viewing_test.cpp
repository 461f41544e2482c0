#include "tools/orvexview/viewing.h"

#include <gmock/gmock.h>

#include <random>
#include <set>
#include <sstream>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/thrown_text.h"
#include "tests/tools/orvexview/made_files.h"
#include "tools/common/interrupt.h"
#include "tools/common/png_file.h"
#include "tools/common/wide_text.h"

#ifndef _WIN32
#include <csignal>
#endif

namespace orvex::tools::view {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

// A label of 3 x 2 pixels, sent turned.
const Rows kPageRows = {{0x000000FF, 0}, {0, 0}, {0, 0x0000FF00}};
const std::vector<Setting> kSettings = {{"COPIES", 2}, {"ORIGX", 3}, {"ORIGY", 2}, {"PHOFFSET", 20}};

class ViewingTest : public testing::Test {
  protected:
    ViewingTest() { options_.file = Name("\xC3\xA9tiquette.prn"); }

    std::string Name(const std::string& name) const {
        return Utf8FromPath(folder_.Path() / PathFromUtf8(name));
    }

    void PrintLabels(const std::string& lines = SettingLines(kSettings)) {
        WriteBytes(PathFromUtf8(options_.file), MakeFile({kPageRows, kPageRows}, lines, kMode300Dpi));
    }

    std::string Show() {
        std::ostringstream out;
        ShowPrintFile(options_, out);
        return out.str();
    }

    // Shows no pictures.
    std::string ShowTables() {
        options_.pictures = false;
        return Show();
    }

    std::string Complaint() {
        return ThrownText([this] { Show(); });
    }

    // Returns the names of all files except the print file.
    std::set<std::string> Written() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_.Path())) {
            names.insert(Utf8FromPath(entry.path().filename()));
        }
        names.erase("\xC3\xA9tiquette.prn");
        return names;
    }

    std::vector<uint32_t> Pixels(const std::string& name) const {
        return PixelsOf(LoadPng(PathFromUtf8(Name(name))));
    }

    ScratchFolder folder_;
    Options options_;
};

}  // namespace

TEST_F(ViewingTest, ShowsTheHeaderAsATable) {
    PrintLabels("@PJL SET COPIES=2\n@PJL JOB NAME=\"Caf\xC3\xA9\x01\"\n@PJL SET QRV_THUMBNAIL=\"Zm9v\"\n");
    EXPECT_THAT(
        ShowTables(),
        HasSubstr(
            "Setting        Value         Meaning\n"
            "-------------  ------------  ----------------------------------------\n"
            "COPIES         2             copies of the job\n"
            "JOB NAME       Caf\xC3\xA9\\x01      name of the document\n"
            "QRV_THUMBNAIL  4 characters  picture of the first page, PNG in base64\n"
            "\n"
            "Engine: Stand-in print stream 1. Made for inspection and tests; a printer does not read it.\n"
            "Resolution: 300 dpi\n"
            "Pages: 2\n"));
}

TEST_F(ViewingTest, ShowsTheGeometryOfEveryPage) {
    PrintLabels();
    const std::string text = ShowTables();
    EXPECT_THAT(text, HasSubstr("Page  Geometry                 Value\n"
                                "----  -----------------------  "));
    EXPECT_THAT(text, HasSubstr("1     label                    3 x 2 (0.3 x 0.2 mm)\n"
                                "1     orientation              portrait\n"
                                "1     rows handed over         3\n"
                                "1     pixels in a row          2\n"
                                "1     fill rows in front       none\n"
                                "1     fill rows behind         none\n"
                                "1     purge bar                none\n"
                                "1     top offset of the block  none\n"
                                "1     rows of the head         0 to 2 of 3510\n"
                                "1     engine page              2448 x 86616 units (8.6 x 305.6 mm)\n"
                                "1     resolution code          -1\n"
                                "1     mean ink                 K 16.7 %  C 16.7 %  M 0.0 %  Y 0.0 %\n"
                                "1     compressed to            27 bytes, 112.50 %\n"));
    EXPECT_THAT(text, HasSubstr("2     label                    3 x 2 (0.3 x 0.2 mm)\n"));
    EXPECT_TRUE(Written().empty());
}

TEST_F(ViewingTest, SaysThatTheHeaderLacksTheOrientation) {
    PrintLabels("");
    EXPECT_THAT(ShowTables(), HasSubstr("landscape, not told by the job header"));
    options_.orientation = Orientation::kPortrait;
    EXPECT_THAT(Show(), HasSubstr("portrait, not told by the job header"));
}

TEST_F(ViewingTest, ShowsPurgeBarFillAndOffsetsWithTheirLengths) {
    const Rows rows(3510 - 2 * 24, std::vector<uint32_t>(100 + 5 + 11 * 10));  // 2.0 mm are 24 rows
    const std::string lines = SettingLines({{"ORIGX", 100},
                                            {"ORIGY", 3000},
                                            {"FULLWIDTH", 1},
                                            {"KWS", 1},
                                            {"PURGEBAR", 2},
                                            {"PURGEDOTS", 5},
                                            {"PURGEGAP", 10},
                                            {"ALIGN", 1},
                                            {"PHOFFSET", 20}});
    EngineOutput output;
    const uint64_t job = output.StartJob(kMode300Dpi);
    PrintPage(job, rows, 0, 3510);
    HPCRLIB_JobEnd(job);
    WriteBytes(PathFromUtf8(options_.file), WithLines(output.File(), lines));
    EXPECT_THAT(ShowTables(), HasSubstr("1     label                    100 x 3000 (8.5 x 254.0 mm)\n"
                                        "1     orientation              landscape\n"
                                        "1     rows handed over         3462, announced 3510\n"
                                        "1     pixels in a row          215\n"
                                        "1     fill rows in front       231 (19.6 mm)\n"
                                        "1     fill rows behind         231 (19.6 mm)\n"
                                        "1     purge bar                115 (9.7 mm) behind\n"));
}

TEST_F(ViewingTest, WritesOnePictureOfEachPageBesideTheFile) {
    PrintLabels();
    const std::string text = Show();
    EXPECT_THAT(text, HasSubstr("tiquette-page1.png: 3 x 2 pixels\n"));
    EXPECT_THAT(Written(), ElementsAre("\xC3\xA9tiquette-page1.png", "\xC3\xA9tiquette-page2.png"));
    EXPECT_THAT(Pixels("\xC3\xA9tiquette-page1.png"),
                ElementsAre(0xFFFFFF, 0xFFFFFF, 0x1C1C1C, 0x2CA3D3, 0xFFFFFF, 0xFFFFFF));
}

TEST_F(ViewingTest, WritesInksAndLayoutOfTheChosenPageUnderThePrefix) {
    PrintLabels();
    options_.prefix = Name("look");
    options_.pages = {2};
    options_.inks = true;
    options_.layout = true;
    const std::string text = Show();
    EXPECT_THAT(text, HasSubstr("look-page2-layout.png: 1251 x 153 pixels, 3 x 3 to one\n"));
    EXPECT_THAT(text, HasSubstr("\n2     label "));
    EXPECT_THAT(text, testing::Not(HasSubstr("\n1     label "))) << "the table of the other page";
    EXPECT_THAT(Written(), ElementsAre("look-page2-C.png", "look-page2-K.png", "look-page2-M.png",
                                       "look-page2-Y.png", "look-page2-layout.png", "look-page2.png"));
    EXPECT_THAT(Pixels("look-page2-K.png"),
                ElementsAre(0xFFFFFF, 0xFFFFFF, 0x000000, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF));
    EXPECT_THAT(Pixels("look-page2-C.png"),
                ElementsAre(0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0x000000, 0xFFFFFF, 0xFFFFFF));
}

TEST_F(ViewingTest, RawPicturesAreAsSent) {
    PrintLabels();
    options_.raw = true;
    options_.pages = {1};
    Show();
    EXPECT_THAT(Pixels("\xC3\xA9tiquette-page1.png"),
                ElementsAre(0x1C1C1C, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0x2CA3D3));
}

TEST_F(ViewingTest, LargePagesAreScaledToFit) {
    WriteBytes(PathFromUtf8(options_.file),
               MakeFile({Rows(2, std::vector<uint32_t>(3201))}, "", kMode300Dpi));
    EXPECT_THAT(Show(), HasSubstr("-page1.png: 1067 x 1 pixels, 3 x 3 to one\n"));
    const RasterImage image = LoadPng(PathFromUtf8(Name("\xC3\xA9tiquette-page1.png")));
    EXPECT_EQ(image.density->x, 3937) << "100 pixels per inch";
    options_.scale = 1;
    EXPECT_THAT(Show(), HasSubstr("-page1.png: 3201 x 2 pixels\n"));
}

TEST_F(ViewingTest, ExtractsTheThumbnail) {
    PrintLabels("@PJL SET QRV_THUMBNAIL=\"iVBORw0KGgo=\"\n");
    options_.thumbnail = Name("thumb.png");
    EXPECT_THAT(ShowTables(), HasSubstr("thumb.png: 8 bytes\n"));
    EXPECT_EQ(ReadBytes(folder_.Path() / "thumb.png"), "\x89PNG\r\n\x1A\n");
}

TEST_F(ViewingTest, SaysThatThereIsNoThumbnail) {
    PrintLabels();
    options_.thumbnail = Name("thumb.png");
    EXPECT_EQ(Complaint(), "--thumbnail: the job header of " + options_.file + " has no thumbnail");
    EXPECT_TRUE(Written().empty());
}

TEST_F(ViewingTest, VerifiesAPageAgainstItsPicture) {
    PrintLabels();
    options_.pages = {1};
    Show();
    options_.verify = Name("\xC3\xA9tiquette-page1.png");
    EXPECT_THAT(ShowTables(), HasSubstr("\n0 of 6 pixels differ\n"));
}

TEST_F(ViewingTest, NamesAPageThatDoesNotExist) {
    PrintLabels();
    options_.pages = {1, 3};
    EXPECT_EQ(Complaint(), "--page 3: " + options_.file + " has 2 pages");
    EXPECT_TRUE(Written().empty());
}

TEST_F(ViewingTest, NamesAPictureThatCannotBeWritten) {
    PrintLabels();
    options_.prefix = Name("none/job");
    EXPECT_THAT(Complaint(), EndsWith("job-page1.png can't be written: there is no such folder"));
}

TEST_F(ViewingTest, SaysThatTheFileIsMissing) {
    EXPECT_EQ(Complaint(), options_.file + " can't be opened: there is no such file or folder");
}

TEST_F(ViewingTest, SaysWhatIsWrongWithAFileThatIsNoPrintFile) {
    WriteBytes(PathFromUtf8(options_.file), std::string("\x89PNG\r\n\x1A\n") + std::string(5000, 'x'));
    EXPECT_EQ(Complaint(),
              options_.file +
                  " is no sound print file: offset 0: \"\\x89PNG\\x0D\\x0A\\x1A\\x0Axxxx\"; expected the "
                  "universal exit ESC%-12345X");
    EXPECT_TRUE(Written().empty());
}

// Pages as they are printed, drawn at once and in bands of a few lines.
TEST_F(ViewingTest, PicturesInBandsAreTheSame) {
    std::mt19937 random(3);
    Rows rows(50, std::vector<uint32_t>(70));
    for (auto& row : rows) {
        for (uint32_t& pixel : row) pixel = static_cast<uint32_t>(random());
    }
    options_.inks = true;
    options_.layout = true;
    for (const bool portrait : {true, false}) {
        const std::vector<Setting> settings = {{"ORIGX", portrait ? 50 : 70}, {"ORIGY", portrait ? 70 : 50}};
        WriteBytes(PathFromUtf8(options_.file), MakeFile({rows}, SettingLines(settings)));
        for (const uint32_t scale : {1u, 3u}) {
            options_.scale = scale;
            options_.prefix = Name("whole");
            options_.bandBytes = 1 << 20;
            Show();
            options_.prefix = Name("bands");
            options_.bandBytes = 1000;
            Show();
            for (const char* picture : {".png", "-K.png", "-C.png", "-M.png", "-Y.png", "-layout.png"}) {
                EXPECT_EQ(Pixels(std::string("bands-page1") + picture),
                          Pixels(std::string("whole-page1") + picture))
                    << picture << ", scale " << scale;
            }
        }
    }
}

TEST_F(ViewingTest, LongLabelsKeepAReadableScale) {
    WriteBytes(PathFromUtf8(options_.file),
               MakeFile({Rows(100, std::vector<uint32_t>(20000))}, "", kMode300Dpi));
    EXPECT_THAT(Show(), HasSubstr("-page1.png: 6667 x 34 pixels, 3 x 3 to one\n"));
}

TEST_F(ViewingTest, RefusesAnOutputThatIsThePrintFile) {
    PrintLabels("@PJL SET QRV_THUMBNAIL=\"iVBORw0KGgo=\"\n");
    const std::string job = ReadBytes(PathFromUtf8(options_.file));
    options_.thumbnail = Name("./\xC3\xA9tiquette.prn");
    EXPECT_EQ(Complaint(), options_.thumbnail + " is also the print file; nothing was written");
    options_.thumbnail.clear();
    fs::create_hard_link(PathFromUtf8(options_.file), folder_.Path() / "look-page1-K.png");
    options_.prefix = Name("look");
    options_.inks = true;
    EXPECT_EQ(Complaint(), Name("look-page1-K.png") + " is also the print file; nothing was written");
    EXPECT_THAT(Written(), ElementsAre("look-page1-K.png"));
    EXPECT_EQ(ReadBytes(PathFromUtf8(options_.file)), job);
}

TEST_F(ViewingTest, RefusesAnOutputThatIsThePictureToVerify) {
    PrintLabels();
    options_.verify = Name("\xC3\xA9tiquette-page2.png");
    WriteBytes(PathFromUtf8(options_.verify), "art");
    EXPECT_EQ(Complaint(), options_.verify + " is also the picture to verify; nothing was written");
    EXPECT_EQ(ReadBytes(PathFromUtf8(options_.verify)), "art");
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(ViewingTest, ReplacesOnlyItsOwnPicturesUnlessForced) {
    PrintLabels();
    options_.layout = true;
    Show();
    Show();
    for (const char* name : {"page2.png", "page1-layout.png"}) {
        const std::string art = Name(std::string("\xC3\xA9tiquette-") + name);
        SavePng(Picture(2, 2, 3), 300, PathFromUtf8(art));
        const std::string bytes = ReadBytes(PathFromUtf8(art));
        EXPECT_EQ(
            Complaint(),
            art + " exists and is no picture of orvexview, so nothing was written; --force replaces it");
        EXPECT_EQ(ReadBytes(PathFromUtf8(art)), bytes);
        options_.force = true;
        Show();
        options_.force = false;
        EXPECT_NE(ReadBytes(PathFromUtf8(art)), bytes);
        WriteBytes(PathFromUtf8(art), "");
        Show();
    }
}

TEST_F(ViewingTest, RefusesTwoOutputsThatAreOneFile) {
    PrintLabels("@PJL SET QRV_THUMBNAIL=\"iVBORw0KGgo=\"\n");
    options_.thumbnail = Name("./look-page2.png");
    options_.prefix = Name("look");
    EXPECT_EQ(Complaint(), Name("look-page2.png") + " is also the thumbnail; nothing was written");
    EXPECT_TRUE(Written().empty());
}

TEST_F(ViewingTest, ARunEndsWithAStatusAndOneLine) {
    const auto run = [](const std::vector<std::string>& arguments, int expected) {
        std::ostringstream out;
        std::ostringstream error;
        EXPECT_EQ(RunOrvexView(arguments, out, error), expected);
        return error.str();
    };
    PrintLabels();
    EXPECT_EQ(run({options_.file, "--no-pictures"}, 0), "");
    EXPECT_EQ(run({"--version"}, 0), "");
    EXPECT_EQ(run({options_.file, "--scale", "0"}, 2),
              "orvexview: --scale: \"0\" is not allowed; it takes 1 to 1000\n");
    EXPECT_EQ(run({Name("none.prn")}, 1),
              "orvexview: " + Name("none.prn") + " can't be opened: there is no such file or folder\n");
}

// Under Wine a signal takes a shell around the program: view_script_test has this case.
#ifndef _WIN32
// Presses Ctrl-C when a page's table is written, after its pictures were opened.
class InterruptingOutput : public std::stringbuf {
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        if (std::string_view(text, static_cast<size_t>(size)).find("Geometry") != std::string_view::npos) {
            raise(SIGINT);
        }
        return std::stringbuf::xsputn(text, size);
    }
};

TEST_F(ViewingTest, EndsWithoutAFileOnCtrlC) {
    PrintLabels();
    options_.inks = options_.layout = true;
    const auto interrupted = [&] {
        EndCleanlyOnInterrupt();
        InterruptingOutput buffer;
        std::ostream out(&buffer);
        ShowPrintFile(options_, out);
    };
    EXPECT_EXIT(interrupted(), testing::KilledBySignal(SIGINT), "");
    EXPECT_TRUE(Written().empty());
}
#endif

TEST_F(ViewingTest, SaysThatStandardOutputIsFull) {
    PrintLabels();
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    std::ostringstream error;
    EXPECT_EQ(RunOrvexView({options_.file, "--no-pictures"}, out, error), 1);
    EXPECT_EQ(error.str(), "orvexview: standard output can't be written\n");
}

}  // namespace orvex::tools::view
