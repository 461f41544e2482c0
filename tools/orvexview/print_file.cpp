#include "tools/orvexview/print_file.h"

#include <charconv>
#include <string>

#include "engine/print_stream.h"
#include "tools/common/whole_file.h"
#include "tools/orvexview/row_decoder.h"

namespace orvex::tools::view {

using namespace print_stream;

namespace {

struct RecordName {
    RecordType type;
    std::string_view name;
};

constexpr RecordName kRecordNames[] = {
    {RecordType::kResolutionCommand, "resolution command"},
    {RecordType::kJobStart, "job start"},
    {RecordType::kPageStart, "page start"},
    {RecordType::kBlockStart, "block start"},
    {RecordType::kRows, "rows"},
    {RecordType::kBlockEnd, "block end"},
    {RecordType::kPageEnd, "page end"},
    {RecordType::kJobEnd, "job end"},
};

std::string NameOf(uint8_t type) {
    for (const RecordName& record : kRecordNames) {
        if (static_cast<uint8_t>(record.type) == type) return std::string(record.name);
    }
    return "record type " + std::to_string(type);
}

std::string NameOf(RecordType type) {
    return NameOf(static_cast<uint8_t>(type));
}

std::string InRange(std::string_view what, uint64_t value, uint64_t least, uint64_t most) {
    std::string text =
        std::string(what) + " " + std::to_string(value) + "; expected " + std::to_string(least);
    return least == most ? text : text + " to " + std::to_string(most);
}

// A reader of the records of one file.
class Parser {
  public:
    explicit Parser(PrintFile& file) : file_(file), reader_(file.bytes) {}

    void Run() {
        file_.header = ReadPjlHeader(reader_);
        ReadJobStart();
        // The engine writes the job start together with the first page, so a print file has at least one
        // page.
        do {
            ReadPage();
        } while (NextType() != static_cast<uint8_t>(RecordType::kJobEnd));
        BeginRecord(RecordType::kJobEnd, 4);
        TakeChecked("page count", file_.pages.size(), file_.pages.size());
        ReadClosing();
    }

  private:
    uint8_t NextType() {
        if (reader_.Rest().empty()) throw PrintFileError(reader_.Offset(), "the file ends without a job end");
        return reader_.Rest()[0];
    }

    // Enters a record of that type and verifies its checksum. Returns the payload, and leaves the reader at
    // its beginning.
    std::span<const uint8_t> BeginRecord(RecordType type, size_t leastSize, size_t mostSize) {
        const size_t offset = reader_.Offset();
        const uint8_t found = reader_.TakeByte(NameOf(type));
        if (found != static_cast<uint8_t>(type)) {
            throw PrintFileError(offset, NameOf(found) + "; expected " + NameOf(type));
        }
        const uint32_t size = reader_.TakeNumber(NameOf(type));
        if (size < leastSize || size > mostSize) {
            throw PrintFileError(offset + 1, InRange("size of " + NameOf(type), size, leastSize, mostSize));
        }
        ByteReader ahead = reader_;
        const std::span<const uint8_t> payload = ahead.Take(size, NameOf(type));
        const size_t checksumOffset = ahead.Offset();
        const uint32_t stored = ahead.TakeNumber(NameOf(type));
        const uint32_t computed = Adler32(file_.bytes.data() + offset, kRecordHeaderSize + size);
        if (stored != computed) {
            throw PrintFileError(checksumOffset,
                                 InRange("checksum of " + NameOf(type), stored, computed, computed));
        }
        recordEnd_ = ahead.Offset();
        return payload;
    }

    void BeginRecord(RecordType type, size_t size) { BeginRecord(type, size, size); }

    // Takes a number of the record and checks its range. After the last number moves on to the next record.
    uint32_t TakeChecked(std::string_view what, uint64_t least, uint64_t most) {
        const size_t offset = reader_.Offset();
        const uint32_t number = reader_.TakeNumber(what);
        if (number < least || number > most) throw PrintFileError(offset, InRange(what, number, least, most));
        if (reader_.Offset() + kChecksumSize == recordEnd_) reader_.Take(kChecksumSize, what);
        return number;
    }

    void ReadJobStart() {
        BeginRecord(RecordType::kJobStart, 8);
        TakeChecked("stream version", kVersion, kVersion);
        file_.resolutionMode = TakeChecked("resolution mode", 0, kResolutionModes - 1);
        file_.dpi = kDpi[file_.resolutionMode];
    }

    int32_t ReadResolutionCommand() {
        constexpr std::string_view kStart = "\x1B*o";
        constexpr std::string_view kExpected =
            "expected a resolution command ESC*o, a number from -128 to 127, M";
        const size_t offset = reader_.Offset();
        const std::string_view text = reader_.RestAsText();
        if (!text.starts_with(kStart)) {
            throw PrintFileError(offset, NameOf(NextType()) + "; " + std::string(kExpected));
        }
        int32_t code = 0;
        const std::string_view digits = text.substr(kStart.size(), 5);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code);
        const size_t length = static_cast<size_t>(end - digits.data());
        if (error != std::errc() || length == digits.size() || *end != 'M' || code < -128 || code > 127) {
            throw PrintFileError(offset, "a bad resolution command; " + std::string(kExpected));
        }
        reader_.Take(kStart.size() + length + 1, "a resolution command");
        return code;
    }

    void ReadPage() {
        PrintedPage page;
        page.resolutionCode = ReadResolutionCommand();
        const uint32_t number = static_cast<uint32_t>(file_.pages.size()) + 1;
        BeginRecord(RecordType::kPageStart, 12);
        page.number = TakeChecked("page number", number, number);
        page.width = TakeChecked("page width", 1, UINT32_MAX);
        page.length = TakeChecked("page length", 1, UINT32_MAX);
        ReadBlock(page);
        BeginRecord(RecordType::kPageEnd, 4);
        TakeChecked("page number", number, number);
        file_.pages.push_back(std::move(page));
    }

    void ReadBlock(PrintedPage& page) {
        BeginRecord(RecordType::kBlockStart, 12);
        page.top = TakeChecked("block top", 0, kMaxBlockRows);
        page.rowWidth = TakeChecked("row width", 1, kMaxRowWidth);
        page.announcedRows = TakeChecked("row count", 1, kMaxBlockRows);
        above_.assign(page.rowWidth, 0);
        while (NextType() == static_cast<uint8_t>(RecordType::kRows)) ReadRowsRecord(page);
        if (page.rows == 0) throw PrintFileError(reader_.Offset(), NameOf(NextType()) + "; expected rows");
        BeginRecord(RecordType::kBlockEnd, 4);
        TakeChecked("number of rows handed over", page.rows, page.rows);
    }

    void ReadRowsRecord(PrintedPage& page) {
        const size_t largest = kRowsRecordSize + row_code::MaxEncodedRowSize(page.rowWidth);
        const std::span<const uint8_t> payload = BeginRecord(RecordType::kRows, 1, largest);
        const uint32_t mostRows = page.announcedRows + HeadBlockSlack(file_.resolutionMode);
        for (std::span<const uint8_t> code = payload; !code.empty(); ++page.rows) {
            const auto offset = static_cast<size_t>(code.data() - file_.bytes.data());
            if (page.rows == mostRows) {
                throw PrintFileError(offset, "row " + std::to_string(page.rows + 1) +
                                                 " of a block of at most " + std::to_string(mostRows));
            }
            if (const char* complaint = DecodeRow(code, above_)) {
                throw PrintFileError(static_cast<size_t>(code.data() - file_.bytes.data()),
                                     "row " + std::to_string(page.rows) + " of page " +
                                         std::to_string(page.number) + ": " + complaint);
            }
        }
        page.encodedRows.push_back(payload);
        reader_.Take(payload.size() + kChecksumSize, "rows");
    }

    void ReadClosing() {
        const size_t offset = reader_.Offset();
        if (reader_.RestAsText() != kUniversalExit) {
            throw PrintFileError(offset, std::to_string(reader_.Rest().size()) +
                                             " bytes that are not the closing universal exit ESC%-12345X");
        }
    }

    PrintFile& file_;
    ByteReader reader_;
    size_t recordEnd_ = 0;
    std::vector<uint32_t> above_;
};

}  // namespace

size_t PrintedPage::EncodedSize() const {
    size_t size = 0;
    for (const std::span<const uint8_t> record : encodedRows) size += record.size();
    return size;
}

PrintFile ParsePrintFile(std::vector<uint8_t> bytes) {
    PrintFile file;
    file.bytes = std::move(bytes);
    Parser(file).Run();
    return file;
}

PrintFile ReadPrintFile(const std::filesystem::path& path) {
    return ParsePrintFile(ReadWholeFile(path));
}

RowReader::RowReader(const PrintedPage& page) : page_(page), row_(page.rowWidth) {}

std::span<const uint32_t> RowReader::Next() {
    while (code_.empty()) {
        if (record_ == page_.encodedRows.size()) return {};
        code_ = page_.encodedRows[record_++];
    }
    DecodeRow(code_, row_);  // can't fail: it was checked when the file was read
    return row_;
}

std::vector<std::vector<uint32_t>> ReadRows(const PrintedPage& page) {
    std::vector<std::vector<uint32_t>> rows;
    RowReader reader(page);
    for (auto row = reader.Next(); !row.empty(); row = reader.Next())
        rows.emplace_back(row.begin(), row.end());
    return rows;
}

}  // namespace orvex::tools::view
