#include "tools/orvexview/print_file.h"

#include <gmock/gmock.h>

#include <random>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/thrown_text.h"
#include "tests/tools/orvexview/made_files.h"

namespace orvex::tools::view {

using namespace std::string_literals;

namespace {

const Rows kSmallPage = {{1, 2, 3}, {1, 2, 3}, {9, 9, 9}};

std::string ErrorOf(std::string_view bytes) {
    return ThrownText<PrintFileError>([&] { ParsePrintFile(AsBytes(bytes)); });
}

std::string Offset(size_t offset) {
    return "offset " + std::to_string(offset) + ": ";
}

const std::string kOpening(print_stream::kPjlOpening);
const std::string kResolution = "\x1B*o0M";
const std::string kJobStart = MakeRecord('J', {1, 1});
const std::string kPageStart = MakeRecord('P', {1, 5000, 6000});
const std::string kBlockStart = MakeRecord('B', {0, 3, 2});
const std::string kRows = MakeRecord('R', "\x03\x03");  // two rows like the one above
const std::string kBlockEnd = MakeRecord('b', {2});
const std::string kPageEnd = MakeRecord('p', {1});
const std::string kJobEnd = MakeRecord('j', {1});
const std::string kExit = "\x1B%-12345X";

// Returns the error of a file whose records are `before` and `record`, without its offset, which must be
// `within` bytes into `record`.
std::string ErrorIn(const std::string& before, const std::string& record, size_t within) {
    const std::string error = ErrorOf(kOpening + before + record);
    const std::string offset = Offset(kOpening.size() + before.size() + within);
    EXPECT_EQ(error.substr(0, offset.size()), offset) << error;
    return error.substr(std::min(offset.size(), error.size()));
}

const std::string kBeforeRows = kJobStart + kResolution + kPageStart + kBlockStart;

}  // namespace

TEST(PrintFile, ReadsWhatTheEngineWrites) {
    const PrintFile file = ParsePrintFile(AsBytes(MakeFile({kSmallPage, {{7}}}, "@PJL SET COPIES=3\n")));
    EXPECT_EQ(file.resolutionMode, 1u);
    EXPECT_EQ(file.dpi, 600u);
    EXPECT_EQ(file.header.FindNumber("COPIES"), 3);
    EXPECT_EQ(file.header.comment,
              "Stand-in print stream 1. Made for inspection and tests; a printer does not read it.");
    ASSERT_EQ(file.pages.size(), 2u);
    const PrintedPage& page = file.pages[0];
    EXPECT_EQ(page.number, 1u);
    EXPECT_EQ(page.resolutionCode, 0);
    EXPECT_EQ(page.width, 24u * 3 + 2400);
    EXPECT_EQ(page.length, 86616u);
    EXPECT_EQ(page.top, 0u);
    EXPECT_EQ(page.rowWidth, 3u);
    EXPECT_EQ(page.announcedRows, 3u);
    EXPECT_EQ(page.rows, 3u);
    EXPECT_EQ(page.encodedSize, 13u + 1 + 5);
    EXPECT_EQ(ReadRows(page), kSmallPage);
    EXPECT_EQ(ReadRows(file.pages[1]), Rows({{7}}));
}

TEST(PrintFile, KeepsItsPagesWhenItMoves) {
    PrintFile file = ParsePrintFile(AsBytes(MakeFile({kSmallPage})));
    const PrintFile moved = std::move(file);
    EXPECT_EQ(ReadRows(moved.pages[0]), kSmallPage);
}

TEST(PrintFile, KnowsTheResolutionOfEachMode) {
    EXPECT_EQ(ParsePrintFile(AsBytes(MakeFile({kSmallPage}, "", 0))).dpi, 300u);
    EXPECT_EQ(ParsePrintFile(AsBytes(MakeFile({kSmallPage}, "", 2))).dpi, 150u);
}

TEST(PrintFile, TakesTheNumberThatTheDriverWroteIntoTheResolutionCommand) {
    for (const int code : {0, -1, 7, 48, 127, -128}) {
        std::string bytes = MakeFile({kSmallPage});
        bytes.replace(bytes.find(kResolution), kResolution.size(), "\x1B*o" + std::to_string(code) + "M");
        EXPECT_EQ(ParsePrintFile(AsBytes(bytes)).pages[0].resolutionCode, code);
    }
}

TEST(PrintFile, ReadsRowsThatFillManyRecords) {
    std::mt19937 random(5);
    Rows rows(60, std::vector<uint32_t>(1000));
    for (auto& row : rows) {
        for (uint32_t& pixel : row) pixel = static_cast<uint32_t>(random());
    }
    const PrintFile file = ParsePrintFile(AsBytes(MakeFile({rows})));
    EXPECT_GT(file.pages[0].encodedSize, 5 * print_stream::kRowsRecordSize);
    EXPECT_EQ(ReadRows(file.pages[0]), rows);
}

TEST(PrintFile, ReadsFromAFile) {
    const ScratchFolder folder;
    const auto path = folder.Write("job.prn", MakeFile({kSmallPage}));
    EXPECT_EQ(ReadRows(ReadPrintFile(path).pages[0]), kSmallPage);
    EXPECT_THROW(ReadPrintFile(folder.Path() / "none.prn"), std::runtime_error);
}

// A file's window is smaller than its rows, so that it is moved on and, for the second page, back.
TEST(PrintFile, ReadsAFileOfManyWindows) {
    std::mt19937 random(6);
    Rows rows(100, std::vector<uint32_t>(8000));
    for (auto& row : rows) {
        for (uint32_t& pixel : row) pixel = static_cast<uint32_t>(random());
    }
    const ScratchFolder folder;
    const PrintFile file = ReadPrintFile(folder.Write("job.prn", MakeFile({rows, kSmallPage})));
    RowReader reader(file.pages[0]);
    for (size_t i = 0; i < rows.size(); ++i) {
        const std::span<const uint32_t> row = reader.Next();
        ASSERT_TRUE(std::equal(row.begin(), row.end(), rows[i].begin(), rows[i].end())) << "row " << i;
        if (i % 30 != 0) continue;
        EXPECT_EQ(ReadRows(file.pages[1]), kSmallPage) << "read in between";
    }
    EXPECT_TRUE(reader.Next().empty());
}

TEST(PrintFile, SaysThatAFileHasChangedSinceItWasChecked) {
    Rows rows(40, std::vector<uint32_t>(30000));
    uint32_t value = 0;
    for (auto& row : rows) {
        for (uint32_t& pixel : row) pixel = ++value;
    }
    const ScratchFolder folder;
    const auto path = folder.Write("job.prn", MakeFile({rows}));
    const PrintFile file = ReadPrintFile(path);
    std::filesystem::resize_file(path, 1000);
    EXPECT_THAT(ThrownText<PrintFileError>([&] { ReadRows(file.pages[0]); }),
                testing::HasSubstr("rows that have changed while the file was read"));
}

TEST(PrintFile, SaysWhyAFileCannotBeOpened) {
    const ScratchFolder folder;
    const auto errorOf = [](const std::filesystem::path& path) {
        return ThrownText([&] { ReadPrintFile(path); });
    };
    EXPECT_THAT(errorOf(folder.Path() / "none.prn"),
                testing::EndsWith("none.prn can't be opened: there is no such file or folder"));
    EXPECT_THAT(errorOf(folder.Path()), testing::EndsWith(" is a folder; expected a print file"));
}

namespace {

// An endless file: an opening, then the same text again and again. Stores how far it was read.
class EndlessSource : public ByteSource {
  public:
    EndlessSource(std::string bytes, const std::string& repeated, uint64_t& read)
        : bytes_(std::move(bytes)), period_(repeated.size()), read_(read) {
        while (bytes_.size() < 2 * kInMemory) bytes_ += repeated;
    }

    std::span<const uint8_t> At(uint64_t offset, size_t size) override {
        read_ = std::max<uint64_t>(read_, offset + size);
        const uint64_t at =
            offset < kInMemory ? offset : kInMemory - period_ + (offset - kInMemory) % period_;
        return std::span(reinterpret_cast<const uint8_t*>(bytes_.data()), bytes_.size()).subspan(at, size);
    }
    uint64_t Size() override { return UINT64_MAX; }

  private:
    static constexpr uint64_t kInMemory = 4u << 20;

    std::string bytes_;
    uint64_t period_;
    uint64_t& read_;
};

// Returns how many bytes of an endless file are read before it is refused.
uint64_t ReadBeforeRefusal(const std::string& opening, const std::string& repeated) {
    uint64_t read = 0;
    EXPECT_THROW(ParsePrintFile(std::make_unique<EndlessSource>(opening, repeated, read)), PrintFileError);
    return read;
}

}  // namespace

TEST(PrintFile, AnEndlessFileIsRefusedEarly) {
    const std::string start = "\x1B%-12345X@PJL\n";
    EXPECT_LT(ReadBeforeRefusal("", std::string(1, '\0')), 100u);
    EXPECT_LT(ReadBeforeRefusal("\x1B%-12345X", std::string(1, '\0')), 100u);
    EXPECT_LT(ReadBeforeRefusal(start, std::string(1, '\0')), 3u << 20) << "one line without end";
    EXPECT_LT(ReadBeforeRefusal(start, "@PJL SET COPIES=1\n"), 3u << 20) << "lines without end";
    EXPECT_LT(ReadBeforeRefusal(start + "@PJL JOB NAME=\"", std::string(99, 'x') + "\n"), 3u << 20)
        << "a name without end";
    EXPECT_LT(ReadBeforeRefusal(start + "@PJL SET QRV_THUMBNAIL=\"AAAA", std::string(1, '\0')), 200u << 10);
    EXPECT_LT(ReadBeforeRefusal(kOpening, std::string(1, '\0')), kOpening.size() + 1000);
    EXPECT_LT(ReadBeforeRefusal(kOpening + kBeforeRows, kRows), kOpening.size() + 500'000u)
        << "rows without end";
}

TEST(PrintFile, AJobMadeByHandIsSound) {
    EXPECT_EQ(ErrorOf(kOpening + kBeforeRows + kRows + kBlockEnd + kPageEnd + kJobEnd + kExit), "");
}

TEST(PrintFile, NamesTheExpectedRecord) {
    EXPECT_EQ(ErrorIn("", kPageStart, 0), "page start; expected job start");
    EXPECT_EQ(ErrorIn(kJobStart, kPageStart, 0),
              "page start; expected a resolution command ESC*o, a number from -128 to 127, M");
    const std::string noPages = MakeRecord('j', {0}) + kExit;
    EXPECT_EQ(ErrorIn(kJobStart, noPages, 0),
              "job end; expected a resolution command ESC*o, a number from -128 to 127, M");
    EXPECT_EQ(ErrorIn(kJobStart + kResolution, kBlockStart, 0), "block start; expected page start");
    EXPECT_EQ(ErrorIn(kJobStart + kResolution + kPageStart, kRows, 0), "rows; expected block start");
    EXPECT_EQ(ErrorIn(kBeforeRows, kBlockEnd, 0), "block end; expected rows");
    EXPECT_EQ(ErrorIn(kBeforeRows + kRows, kPageEnd, 0), "page end; expected block end");
    EXPECT_EQ(ErrorIn(kBeforeRows + kRows + kBlockEnd, kBlockStart, 0), "block start; expected page end");
    EXPECT_EQ(ErrorIn(kBeforeRows + kRows, MakeRecord('x', "1234"), 0),
              "record type 120; expected block end");
}

TEST(PrintFile, ChecksEveryNumber) {
    EXPECT_EQ(ErrorIn("", MakeRecord('J', {2, 1}), 5), "stream version 2; expected 1");
    EXPECT_EQ(ErrorIn("", MakeRecord('J', {1, 3}), 9), "resolution mode 3; expected 0 to 2");
    const std::string beforePage = kJobStart + kResolution;
    EXPECT_EQ(ErrorIn(beforePage, MakeRecord('P', {2, 1, 1}), 5), "page number 2; expected 1");
    EXPECT_EQ(ErrorIn(beforePage, MakeRecord('P', {1, 0, 1}), 9), "page width 0; expected 1 to 4294967295");
    EXPECT_EQ(ErrorIn(beforePage, MakeRecord('P', {1, 1, 0}), 13), "page length 0; expected 1 to 4294967295");
    const std::string beforeBlock = beforePage + kPageStart;
    EXPECT_EQ(ErrorIn(beforeBlock, MakeRecord('B', {16385, 3, 2}), 5),
              "block top 16385; expected 0 to 16384");
    EXPECT_EQ(ErrorIn(beforeBlock, MakeRecord('B', {0, 0, 2}), 9), "row width 0; expected 1 to 32768");
    EXPECT_EQ(ErrorIn(beforeBlock, MakeRecord('B', {0, 32769, 2}), 9),
              "row width 32769; expected 1 to 32768");
    EXPECT_EQ(ErrorIn(beforeBlock, MakeRecord('B', {0, 3, 16385}), 13),
              "row count 16385; expected 1 to 16384");
    const std::string beforeEnd = kBeforeRows + kRows;
    EXPECT_EQ(ErrorIn(beforeEnd, MakeRecord('b', {3}), 5), "number of rows handed over 3; expected 2");
    EXPECT_EQ(ErrorIn(beforeEnd + kBlockEnd, MakeRecord('p', {2}), 5), "page number 2; expected 1");
    EXPECT_EQ(ErrorIn(beforeEnd + kBlockEnd + kPageEnd, MakeRecord('j', {0}), 5), "page count 0; expected 1");
}

TEST(PrintFile, ChecksTheSizeOfEveryRecord) {
    EXPECT_EQ(ErrorIn("", MakeRecord('J', std::string(9, 'x')), 1), "size of job start 9; expected 8");
    EXPECT_EQ(ErrorIn(kBeforeRows, MakeRecord('R', ""), 1), "size of rows 0; expected 1 to 32785");
    EXPECT_EQ(ErrorIn(kBeforeRows, "R\xFF\xFF\xFF\xFF"s, 1), "size of rows 4294967295; expected 1 to 32785");
}

TEST(PrintFile, ChecksTheChecksumOfEveryRecord) {
    std::string record = kJobStart;
    record[5] ^= 2;
    const std::string error = ErrorIn("", record, 13);
    EXPECT_TRUE(error.starts_with("checksum of job start ")) << error;
}

TEST(PrintFile, ChecksTheResolutionCommand) {
    for (const std::string bad : {"\x1B*oM", "\x1B*o128M", "\x1B*o-129M", "\x1B*o1", "\x1B*o1N", "\x1B*o 1M",
                                  "\x1B*o99999999999M", "\x1B*o00000000M"}) {
        EXPECT_EQ(
            ErrorIn(kJobStart, bad, 0),
            "a bad resolution command; expected a resolution command ESC*o, a number from -128 to 127, M")
            << bad;
    }
}

TEST(PrintFile, ChecksTheCodeOfEveryRow) {
    const auto errorOfRows = [](const std::string& code, size_t within) {
        return ErrorIn(kBeforeRows, MakeRecord('R', code), 5 + within);
    };
    EXPECT_EQ(errorOfRows("\x02", 1), "row 0 of page 1: the record ends within a row");
    EXPECT_EQ(errorOfRows("\x03\x04", 1), "row 1 of page 1: the command does not fit into the row");
    EXPECT_EQ(errorOfRows("\x02\x02", 1), "row 0 of page 1: the command does not fit into the row");
    EXPECT_EQ(errorOfRows("\x00\x00\x00\x00\x00"s, 0),
              "row 0 of page 1: the command does not fit into the row");
    EXPECT_EQ(errorOfRows("\x00\xFF\xFF\xFF\xFF"s, 0),
              "row 0 of page 1: the command does not fit into the row");
    EXPECT_EQ(errorOfRows("\x00\x01\x00\x00"s, 0), "row 0 of page 1: the record ends within a count");
    EXPECT_EQ(errorOfRows("\x43\x01\x02\x03"s, 0), "row 0 of page 1: the record ends within ink values");
    EXPECT_EQ(errorOfRows("\x82\x01\x02\x03\x04\x05\x06\x07"s, 0),
              "row 0 of page 1: the record ends within ink values");
    EXPECT_EQ(errorOfRows("\xC3", 0), "row 0 of page 1: no such row command");
}

TEST(PrintFile, ABlockHasNoMoreRowsThanTheLargestOffsetAllows) {
    const std::string rows = MakeRecord('R', std::string(2 + 4724, '\x03'));
    EXPECT_EQ(ErrorIn(kBeforeRows, MakeRecord('R', std::string(2 + 4724 + 1, '\x03')), 5 + 2 + 4724),
              "row 4727 of a block of at most 4726");
    EXPECT_EQ(ErrorIn(kBeforeRows + rows, kRows, 5), "row 4727 of a block of at most 4726");
}

TEST(PrintFile, NothingFollowsTheClosingExit) {
    const std::string whole = kBeforeRows + kRows + kBlockEnd + kPageEnd + kJobEnd;
    const std::string expected = "; expected the closing universal exit ESC%-12345X and nothing after it";
    EXPECT_EQ(ErrorIn(whole, kExit + "x", 0), "\"\\x1B%-12345Xx\"" + expected);
    EXPECT_EQ(ErrorIn(whole, "", 0), "\"\"" + expected);
}

TEST(PrintFile, NamesTheRecordInWhichTheFileEnds) {
    EXPECT_EQ(ErrorIn("", "", 0), "the file ends within job start: 1 bytes expected, 0 left");
    EXPECT_EQ(ErrorIn("", kJobStart.substr(0, 3), 1),
              "the file ends within job start: 4 bytes expected, 2 left");
    EXPECT_EQ(ErrorIn("", kJobStart.substr(0, 8), 5),
              "the file ends within job start: 8 bytes expected, 3 left");
    EXPECT_EQ(ErrorIn("", kJobStart.substr(0, 15), 13),
              "the file ends within job start: 4 bytes expected, 2 left");
    EXPECT_EQ(ErrorIn(kJobStart, "", 0), "the file ends without a job end");
}

TEST(PrintFile, EveryTruncationIsAnError) {
    const std::string bytes = MakeFile({kSmallPage, {{7}}}, "@PJL SET COPIES=3\n@PJL JOB NAME=\"x\"\n");
    for (size_t size = 0; size < bytes.size(); ++size) {
        EXPECT_NE(ErrorOf(std::string_view(bytes).substr(0, size)), "") << "cut to " << size << " bytes";
    }
}

// A changed byte before the records may still be valid PJL. In the records only the number of a resolution
// command may change.
TEST(PrintFile, EveryChangedByteOfTheRecordsIsAnError) {
    const std::string sound = MakeFile({kSmallPage});
    const size_t records = sound.find("STANDIN\n", sound.find("@PJL ENTER")) + 8;
    const size_t number = sound.find(kResolution) + 3;
    for (size_t at = records; at < sound.size(); ++at) {
        for (int change = 1; change < 256; ++change) {
            std::string bytes = sound;
            bytes[at] = static_cast<char>(bytes[at] ^ change);
            if (at == number && bytes[at] >= '0' && bytes[at] <= '9') continue;
            ASSERT_NE(ErrorOf(bytes), "") << "byte " << at << " xor " << change;
        }
    }
}

}  // namespace orvex::tools::view
