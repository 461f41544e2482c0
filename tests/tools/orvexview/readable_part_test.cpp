// Print files of another engine, and files that are cut.

#include "tests/tools/orvexview/command_fixture.h"

namespace orvex::tools::view {
namespace {

using testing::HasSubstr;

constexpr char kForeign[] =
    "\x1B%-12345X@PJL\r\n@PJL SET COPIES=3\n@PJL JOB NAME=\"label\"\n@PJL SET "
    "QRV_THUMBNAIL=\"iVBORw0KGgo=\"\n"
    "@PJL COMMENT \"Raster 7\"\r\n@PJL INFO STATUS\r\n@PJL ENTER LANGUAGE=OTHER\r\n12345";

class ReadablePartTest : public CommandTest {
  protected:
    static ReadablePart Parse(const std::string& bytes) {
        return ParseReadablePart(std::make_unique<MemorySource>(AsBytes(bytes)));
    }
};

TEST_F(ReadablePartTest, AnotherEnginesFileShowsHeaderAndThumbnail) {
    WriteBytes(PathFromUtf8(Name("other.prn")), kForeign);
    EXPECT_EQ(Run({Name("other.prn"), "--thumbnail", Name("thumb.png")}), 1);
    EXPECT_THAT(out_.str(), HasSubstr("COPIES         3              copies of the job\n"));
    EXPECT_THAT(out_.str(), HasSubstr("\nEngine: Raster 7\nLanguage: OTHER\n"));
    EXPECT_THAT(out_.str(), HasSubstr("thumb.png: 8 bytes\n"));
    EXPECT_EQ(Read("thumb.png").size(), 8u);
    EXPECT_THAT(error_.str(),
                HasSubstr("other.prn can be read in part: offset 163: 5 bytes in the language \"OTHER\" of "
                          "another print engine, which can't be read\n"));
}

TEST_F(ReadablePartTest, BlanksAroundTheLanguageAreFine) {
    std::string file = kForeign;
    file.replace(file.find("=OTHER"), 6, " = OTHER ");
    const ReadablePart part = Parse(file);
    EXPECT_EQ(part.file.header.language, "OTHER");
    EXPECT_THAT(part.problem, HasSubstr("5 bytes in the language"));
    file.replace(file.find(" = OTHER"), 8, " OTHER");
    EXPECT_THROW(Parse(file), PrintFileError);
}

TEST_F(ReadablePartTest, EveryCommandNamesAFileWithoutAHeader) {
    WriteBytes(PathFromUtf8(Name("other.prn")), "%!PS");
    const std::string complaint = "other.prn is no sound print file: offset 0: \"%!PS\"; expected ";
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, {"--ink"}, {"--html", Name("proof.html")}}) {
        std::vector<std::string> command = options;
        command.insert(command.begin(), Name("other.prn"));
        EXPECT_EQ(Run(command), 1);
        EXPECT_THAT(error_.str(), HasSubstr(complaint));
    }
}

TEST_F(ReadablePartTest, ALineThatTheStandInDoesNotWriteIsStillWrongInItsFile) {
    const std::string file = WithLines(MakeFile({{{1}}}), "@PJL INFO\n");
    EXPECT_THROW(Parse(file), PrintFileError);
}

TEST_F(ReadablePartTest, ACutFileShowsTheRowsThatAreThere) {
    // Literal rows are long enough to fill several records.
    Rows rows(40, std::vector<uint32_t>(1000));
    uint32_t value = 1;
    for (auto& row : rows) {
        for (uint32_t& pixel : row) pixel = value = value * 1664525 + 1013904223;
    }
    const std::string whole = MakeFile({{{7}}, rows}, "", kMode300Dpi);
    EXPECT_EQ(Parse(whole).problem, "");
    const ReadablePart part = Parse(whole.substr(0, whole.size() - 60000));
    EXPECT_THAT(part.problem, HasSubstr("the file ends within rows"));
    ASSERT_EQ(part.file.pages.size(), 2u);
    const PrintedPage& page = part.file.pages[1];
    EXPECT_EQ(page.rows, 40u);
    ASSERT_GT(page.missingRows, 14u);
    ASSERT_LT(page.missingRows, 40u);
    Rows expected(rows.begin(), rows.begin() + (40 - page.missingRows));
    expected.resize(40, std::vector<uint32_t>(1000));
    EXPECT_EQ(ReadRows(page), expected);
}

TEST_F(ReadablePartTest, ACutFilesPagesAreDrawnAndTheStatusSaysSo) {
    const std::string whole =
        MakeFile({{{1, 2}, {3, 4}}}, SettingLines({{"ORIGX", 2}, {"ORIGY", 2}}), kMode300Dpi);
    WriteBytes(PathFromUtf8(Name("cut.prn")), whole.substr(0, whole.size() - 20));
    EXPECT_EQ(Run({Name("cut.prn")}), 1);
    EXPECT_THAT(out_.str(), HasSubstr("cut-page1.png: 2 x 2 pixels\n"));
    EXPECT_THAT(error_.str(), HasSubstr("cut.prn is no sound print file: offset "));
}

TEST_F(ReadablePartTest, EveryCutAndEveryDamageIsRead) {
    const std::vector<Rows> pages = {{{1, 2}, {3, 4}}, {{5}, {5}}};
    const std::string whole = MakeFile(pages, "@PJL SET COPIES=1\n", kMode300Dpi);
    const size_t header = whole.find("STANDIN\n") + 8;
    for (size_t size = header; size < whole.size(); ++size) {
        EXPECT_NE(Parse(whole.substr(0, size)).problem, "") << size;
    }
    for (size_t at = header; at < whole.size(); ++at) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x41);
        const ReadablePart part = Parse(damaged);
        EXPECT_NE(part.problem, "") << at;
        ASSERT_LE(part.file.pages.size(), pages.size()) << at;
        for (size_t page = 0; page < part.file.pages.size(); ++page) {
            // A page has the rows before the damage.
            const Rows rows = ReadRows(part.file.pages[page]);
            ASSERT_LE(rows.size(), pages[page].size()) << at;
            EXPECT_TRUE(std::equal(rows.begin(), rows.end(), pages[page].begin())) << at;
            EXPECT_EQ(rows.size(), part.file.pages[page].rows) << at;
        }
    }
}

}  // namespace
}  // namespace orvex::tools::view
