#include "tools/orvexview/print_file.h"

#include <zlib.h>

#include <algorithm>
#include <charconv>
#include <string>

#include "engine/print_stream.h"
#include "tools/common/printable_text.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/base64_decoder.h"
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

constexpr const char* kNotSound = " is no sound print file: ";
constexpr const char* kHasChanged = "rows that have changed while the file was read";

std::string InRange(std::string_view what, uint64_t value, uint64_t least, uint64_t most) {
    std::string text =
        std::string(what) + " " + std::to_string(value) + "; expected " + std::to_string(least);
    return least == most ? text : text + " to " + std::to_string(most);
}

// Continues the fingerprint of some bytes: two checksums that miss different changes.
uint64_t Fingerprint(uint64_t before, std::span<const uint8_t> bytes) {
    const uint32_t sum = Adler32(bytes.data(), bytes.size(), static_cast<uint32_t>(before >> 32));
    return uint64_t{sum} << 32 |
           crc32(static_cast<uint32_t>(before), bytes.data(), static_cast<uInt>(bytes.size()));
}

size_t LargestRowsRecord(uint32_t rowWidth) {
    return kRowsRecordSize + row_code::MaxEncodedRowSize(rowWidth);
}

// A reader of the records of one file.
class Parser {
  public:
    explicit Parser(PrintFile& file) : file_(file), reader_(*file.source) {}

    void ReadHeader() { file_.header = ReadPjlHeader(reader_); }

    // Reads what follows the header.
    void ReadJob() {
        if (!file_.header.IsStandIn()) RefuseLanguage();
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

    // Keeps the rows that there are of a page that the file breaks off.
    void KeepCutPage() {
        if (page_.rows == 0) return;
        page_.missingRows = page_.announcedRows - std::min(page_.rows, page_.announcedRows);
        page_.rows += page_.missingRows;
        file_.pages.push_back(page_);
    }

  private:
    [[noreturn]] void RefuseLanguage() const {
        throw PrintFileError(reader_.Offset(), std::to_string(file_.source->Size() - reader_.Offset()) +
                                                   " bytes in the language \"" +
                                                   PrintableText(file_.header.language, 40) +
                                                   "\" of another print engine, which can't be read");
    }

    uint8_t NextType() {
        const std::span<const uint8_t> next = reader_.Ahead(1);
        if (next.empty()) throw PrintFileError(reader_.Offset(), "the file ends without a job end");
        return next[0];
    }

    // Takes a record of that type and verifies its checksum. Its payload is valid until the next read.
    void BeginRecord(RecordType type, size_t leastSize, size_t mostSize) {
        const std::string name = NameOf(type);
        const uint64_t offset = reader_.Offset();
        const uint8_t found = reader_.TakeByte(name);
        if (found != static_cast<uint8_t>(type)) {
            throw PrintFileError(offset, NameOf(found) + "; expected " + name);
        }
        const uint32_t size = reader_.TakeNumber(name);
        if (size < leastSize || size > mostSize) {
            throw PrintFileError(offset + 1, InRange("size of " + name, size, leastSize, mostSize));
        }
        payloadOffset_ = reader_.Offset();
        const std::span<const uint8_t> rest = reader_.Ahead(size + kChecksumSize);
        reader_.RequireWhole(rest.size(), size, name);
        payload_ = rest.first(size);
        reader_ = ByteReader(*file_.source, payloadOffset_ + size);
        reader_.RequireWhole(rest.size() - size, kChecksumSize, name);
        CheckChecksum(name, found, LittleEndian(rest.subspan(size)));
        reader_ = ByteReader(*file_.source, payloadOffset_ + size + kChecksumSize);
    }

    void BeginRecord(RecordType type, size_t size) { BeginRecord(type, size, size); }

    void CheckChecksum(const std::string& name, uint8_t type, uint32_t stored) const {
        uint8_t header[kRecordHeaderSize] = {type};
        StoreNumber(header + 1, static_cast<uint32_t>(payload_.size()));
        const uint32_t computed =
            Adler32(payload_.data(), payload_.size(), Adler32(header, kRecordHeaderSize));
        if (stored == computed) return;
        throw PrintFileError(reader_.Offset(), InRange("checksum of " + name, stored, computed, computed));
    }

    // Takes a number of the record and checks its range.
    uint32_t TakeChecked(std::string_view what, uint64_t least, uint64_t most) {
        const uint32_t number = LittleEndian(payload_);
        if (number < least || number > most) {
            throw PrintFileError(payloadOffset_, InRange(what, number, least, most));
        }
        payload_ = payload_.subspan(sizeof number);
        payloadOffset_ += sizeof number;
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
        constexpr size_t kMostDigits = 4;
        constexpr std::string_view kExpected =
            "expected a resolution command ESC*o, a number from -128 to 127, M";
        const uint64_t offset = reader_.Offset();
        const uint8_t type = NextType();
        const std::string_view text = reader_.TextAhead(kStart.size() + kMostDigits + 1);
        if (!text.starts_with(kStart))
            throw PrintFileError(offset, NameOf(type) + "; " + std::string(kExpected));
        int32_t code = 0;
        const std::string_view digits = text.substr(kStart.size());
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code);
        const size_t length = static_cast<size_t>(end - digits.data());
        if (error != std::errc() || length == digits.size() || *end != 'M' || code < -128 || code > 127) {
            throw PrintFileError(offset, "a bad resolution command; " + std::string(kExpected));
        }
        reader_.Take(kStart.size() + length + 1, "a resolution command");
        return code;
    }

    void ReadPage() {
        if (file_.pages.size() == kMaxPages) {
            throw PrintFileError(reader_.Offset(),
                                 "more than " + std::to_string(kMaxPages) + " pages; expected a job end");
        }
        page_.source = file_.source.get();
        page_.resolutionCode = ReadResolutionCommand();
        const uint32_t number = static_cast<uint32_t>(file_.pages.size()) + 1;
        BeginRecord(RecordType::kPageStart, 12);
        page_.number = TakeChecked("page number", number, number);
        page_.width = TakeChecked("page width", 1, UINT32_MAX);
        page_.length = TakeChecked("page length", 1, UINT32_MAX);
        ReadBlock(page_);
        BeginRecord(RecordType::kPageEnd, 4);
        TakeChecked("page number", number, number);
        file_.pages.push_back(page_);
        page_ = {};
    }

    void ReadBlock(PrintedPage& page) {
        BeginRecord(RecordType::kBlockStart, 12);
        page.top = TakeChecked("block top", 0, kMaxBlockRows);
        page.rowWidth = TakeChecked("row width", 1, kMaxRowWidth);
        page.announcedRows = TakeChecked("row count", 1, kMaxBlockRows);
        page.rowsOffset = reader_.Offset();
        above_.assign(page.rowWidth, 0);
        while (NextType() == static_cast<uint8_t>(RecordType::kRows)) ReadRowsRecord(page);
        if (page.rows == 0) throw PrintFileError(reader_.Offset(), NameOf(NextType()) + "; expected rows");
        BeginRecord(RecordType::kBlockEnd, 4);
        TakeChecked("number of rows handed over", page.rows, page.rows);
    }

    void ReadRowsRecord(PrintedPage& page) {
        BeginRecord(RecordType::kRows, 1, LargestRowsRecord(page.rowWidth));
        const uint32_t mostRows = page.announcedRows + HeadBlockSlack(file_.resolutionMode);
        for (std::span<const uint8_t> code = payload_; !code.empty(); ++page.rows) {
            const uint64_t codeEnd = payloadOffset_ + payload_.size();
            if (page.rows == mostRows) {
                throw PrintFileError(codeEnd - code.size(), "row " + std::to_string(page.rows + 1) +
                                                                " of a block of at most " +
                                                                std::to_string(mostRows));
            }
            if (const char* complaint = DecodeRow(code, above_)) {
                throw PrintFileError(codeEnd - code.size(), "row " + std::to_string(page.rows) + " of page " +
                                                                std::to_string(page.number) + ": " +
                                                                complaint);
            }
        }
        page.encodedSize += payload_.size();
        page.fingerprint = Fingerprint(page.fingerprint, payload_);
    }

    void ReadClosing() {
        const std::string_view end = reader_.TextAhead(kUniversalExit.size() + 1);
        if (end == kUniversalExit) return;
        throw PrintFileError(reader_.Offset(),
                             "\"" + PrintableText(end) +
                                 "\"; expected the closing universal exit ESC%-12345X and nothing after it");
    }

    PrintFile& file_;
    ByteReader reader_;
    std::span<const uint8_t> payload_;  // of the record, without the numbers that were taken
    uint64_t payloadOffset_ = 0;
    PrintedPage page_;  // that is being read
    std::vector<uint32_t> above_;
};

}  // namespace

PrintFile ParsePrintFile(std::unique_ptr<ByteSource> source) {
    PrintFile file;
    file.source = std::move(source);
    Parser parser(file);
    parser.ReadHeader();
    parser.ReadJob();
    return file;
}

PrintFile ParsePrintFile(std::vector<uint8_t> bytes) {
    return ParsePrintFile(std::make_unique<MemorySource>(std::move(bytes)));
}

PrintFile ReadPrintFile(const std::filesystem::path& path) {
    return ParsePrintFile(std::make_unique<FileSource>(path));
}

ReadablePart ParseReadablePart(std::unique_ptr<ByteSource> source) {
    ReadablePart part;
    part.file.source = std::move(source);
    Parser parser(part.file);
    parser.ReadHeader();
    try {
        parser.ReadJob();
    } catch (const PrintFileError& error) {
        parser.KeepCutPage();
        part.problem = error.what();
    }
    return part;
}

ReadablePart ReadReadablePart(const std::string& name) {
    try {
        return ParseReadablePart(std::make_unique<FileSource>(PathFromUtf8(name)));
    } catch (const PrintFileError& error) {
        throw std::runtime_error(name + kNotSound + error.what());
    }
}

void RequireSound(const std::string& name, const ReadablePart& part) {
    if (part.problem.empty()) return;
    throw std::runtime_error(name + (part.file.header.IsStandIn() ? kNotSound : " can be read in part: ") +
                             part.problem);
}

void ReadThumbnail(const PrintFile& file, const std::function<void(std::span<const uint8_t>)>& take) {
    constexpr uint64_t kPart = uint64_t{64} * 1024;
    const Thumbnail& thumbnail = *file.header.thumbnail;
    ByteReader reader(*file.source, thumbnail.offset);
    for (uint64_t left = thumbnail.size; left > 0;) {
        const auto size = static_cast<size_t>(std::min(left, kPart));
        const std::span<const uint8_t> text = reader.Take(size, "the thumbnail");
        take(DecodeBase64({reinterpret_cast<const char*>(text.data()), text.size()}));
        left -= size;
    }
}

RowReader::RowReader(const PrintedPage& page)
    : reader_(*page.source, page.rowsOffset),
      rowsLeft_(page.rows),
      blankLeft_(page.missingRows),
      row_(page.rowWidth) {}

std::span<const uint32_t> RowReader::Next() {
    if (rowsLeft_ == 0) return {};
    if (rowsLeft_-- <= blankLeft_) {
        std::fill(row_.begin(), row_.end(), 0u);
        return row_;
    }
    if (code_.empty()) TakeRecord();
    if (DecodeRow(code_, row_) != nullptr) throw PrintFileError(reader_.Offset(), kHasChanged);
    return row_;
}

// Takes the next rows record, which was checked when the file was parsed.
void RowReader::TakeRecord() {
    const uint64_t offset = reader_.Offset();
    const uint8_t type = reader_.TakeByte(kHasChanged);
    const uint32_t size = reader_.TakeNumber(kHasChanged);
    if (type != static_cast<uint8_t>(RecordType::kRows) ||
        size > LargestRowsRecord(static_cast<uint32_t>(row_.size()))) {
        throw PrintFileError(offset, kHasChanged);
    }
    // A copy, so that the source may be read elsewhere meanwhile.
    const std::span<const uint8_t> payload = reader_.Take(size, kHasChanged);
    record_.assign(payload.begin(), payload.end());
    code_ = record_;
    reader_.Take(kChecksumSize, kHasChanged);
}

std::vector<std::vector<uint32_t>> ReadRows(const PrintedPage& page) {
    std::vector<std::vector<uint32_t>> rows;
    RowReader reader(page);
    for (auto row = reader.Next(); !row.empty(); row = reader.Next())
        rows.emplace_back(row.begin(), row.end());
    return rows;
}

}  // namespace orvex::tools::view
