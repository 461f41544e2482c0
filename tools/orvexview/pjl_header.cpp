#include "tools/orvexview/pjl_header.h"

#include <algorithm>

#include "engine/print_stream.h"
#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"
#include "tools/orvexview/base64_decoder.h"

namespace orvex::tools::view {

using print_stream::kEnterLanguage;
using print_stream::kUniversalExit;

namespace {

constexpr std::string_view kSet = "@PJL SET ";
constexpr std::string_view kJobName = "@PJL JOB NAME=";
constexpr std::string_view kComment = "@PJL COMMENT ";
constexpr std::string_view kThumbnail = "@PJL SET QRV_THUMBNAIL=\"";
constexpr std::string_view kThumbnailEnd = "\"\n";
constexpr std::string_view kFirstLine = "@PJL\n";
constexpr std::string_view kOtherLine = "@PJL ";
// kEnterLanguage without the equals sign and the language.
constexpr std::string_view kEnter = kEnterLanguage.substr(0, kEnterLanguage.find('='));

// The largest label has 150 million pixels, and a thumbnail may be as large.
constexpr uint64_t kMaxThumbnailSize = uint64_t{1} << 30;
constexpr size_t kTakenAtATime = size_t{64} * 1024;

// A header's lines without the thumbnail; the driver's are some 2,000 bytes.
constexpr uint64_t kMaxLinesSize = uint64_t{1} << 20;
constexpr size_t kUsualLine = 256;

// The lines of a header, in order.
class Lines {
  public:
    explicit Lines(ByteReader& reader) : reader_(reader) {}

    std::string Take() {
        for (size_t size = kUsualLine;; size *= 2) {
            const std::string_view ahead = reader_.TextAhead(size);
            const size_t length = ahead.find('\n');
            if (taken_ + std::min(length, ahead.size()) > kMaxLinesSize) {
                Fail("the PJL lines go on for more than " + std::to_string(kMaxLinesSize) +
                     " bytes; expected \"" + std::string(kEnterLanguage) + "\" before");
            }
            if (length != std::string_view::npos) {
                std::string line(ahead.substr(0, length));
                reader_.Take(length + 1, "a PJL line");
                taken_ += length + 1;
                return line;
            }
            if (ahead.size() < size) {
                Fail("the file ends within a PJL line: \"" + PrintableText(ahead, 40) +
                     "\"; expected a line feed");
            }
        }
    }

    // Takes the value that begins in a line. Document names may contain line feeds, so a value whose quote is
    // open continues in the next line.
    std::string TakeValue(std::string_view firstLine) {
        std::string value(firstLine);
        if (!value.starts_with('"')) return value;
        while (value.size() < 2 || !value.ends_with('"')) value.append("\n").append(Take());
        return value.substr(1, value.size() - 2);
    }

  private:
    [[noreturn]] void Fail(const std::string& complaint) const {
        throw PrintFileError(reader_.Offset(), complaint);
    }

    ByteReader& reader_;
    uint64_t taken_ = 0;
};

void TakeVariable(Lines& lines, uint64_t offset, std::string_view assignment, PjlHeader& header) {
    const size_t equals = assignment.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        throw PrintFileError(offset, "PJL line \"" + std::string(kSet) + PrintableText(assignment, 40) +
                                         "\" sets nothing; expected NAME=VALUE");
    }
    const std::string_view name = assignment.substr(0, equals);
    header.variables.push_back({std::string(name), lines.TakeValue(assignment.substr(equals + 1))});
}

// Takes base64 digits and padding.
Thumbnail TakeBase64(ByteReader& reader) {
    Thumbnail thumbnail{.offset = reader.Offset()};
    size_t padding = 0;
    for (;;) {
        const std::span<const uint8_t> ahead = reader.Ahead(kTakenAtATime);
        const std::string_view text(reinterpret_cast<const char*>(ahead.data()), ahead.size());
        size_t taken = padding > 0 ? 0 : CountBase64Digits(text);
        for (; taken < text.size() && text[taken] == '=' && padding < 2; ++taken) ++padding;
        if (taken == 0 || thumbnail.size > kMaxThumbnailSize) return thumbnail;
        thumbnail.checksum = print_stream::Adler32(ahead.data(), taken, thumbnail.checksum);
        thumbnail.size += taken;
        reader.Take(taken, "the thumbnail");
    }
}

void TakeThumbnail(ByteReader& reader, PjlHeader& header) {
    reader.Take(kThumbnail.size(), "the thumbnail");
    header.thumbnail = TakeBase64(reader);
    const std::string_view end = reader.TextAhead(kThumbnailEnd.size());
    if (header.thumbnail->size % 4 != 0 || end != kThumbnailEnd) {
        throw PrintFileError(reader.Offset(),
                             "\"" + PrintableText(end) + "\" after " +
                                 std::to_string(header.thumbnail->size) +
                                 " characters of the thumbnail; expected base64 digits, a multiple of 4 and "
                                 "at most " +
                                 std::to_string(kMaxThumbnailSize) + ", and a closing quote");
    }
    reader.Take(kThumbnailEnd.size(), "the thumbnail");
}

void TakeOpening(ByteReader& reader) {
    const std::string_view framing(reinterpret_cast<const char*>(print_stream::kFramingChunk),
                                   sizeof print_stream::kFramingChunk);
    const std::string_view start = reader.TextAhead(framing.size());
    if (start == framing) {
        throw PrintFileError(reader.Offset(),
                             "the engine's framing chunk, which the driver should have dropped; expected the "
                             "universal exit ESC%-12345X");
    }
    if (!start.starts_with(kUniversalExit)) {
        throw PrintFileError(reader.Offset(), "\"" + PrintableText(start.substr(0, 12)) +
                                                  "\"; expected the universal exit ESC%-12345X");
    }
    reader.Take(kUniversalExit.size(), "the universal exit");
    constexpr std::string_view kOtherFirstLine = "@PJL\r\n";
    if (reader.TextAhead(kOtherFirstLine.size()) == kOtherFirstLine) {
        reader.Take(kOtherFirstLine.size(), "the first PJL line");
        return;
    }
    const std::string_view line = reader.TextAhead(kFirstLine.size());
    if (line != kFirstLine) {
        throw PrintFileError(reader.Offset(), "\"" + PrintableText(line) + "\"; expected the line \"@PJL\"");
    }
    reader.Take(kFirstLine.size(), "the first PJL line");
}

std::string_view WithoutBlanks(std::string_view text) {
    const size_t start = std::min(text.find_first_not_of(" \t"), text.size());
    return text.substr(start, text.find_last_not_of(" \t") + 1 - start);
}

// Returns the language that a line enters, if it is such a line. Some engines put blanks around the equals
// sign.
std::optional<std::string_view> LanguageOf(std::string_view line) {
    if (!line.starts_with(kEnter)) return std::nullopt;
    const std::string_view value = WithoutBlanks(line.substr(kEnter.size()));
    if (!value.starts_with('=')) return std::nullopt;
    return WithoutBlanks(value.substr(1));
}

}  // namespace

const std::string* PjlHeader::Find(std::string_view name) const {
    for (const HeaderVariable& variable : variables) {
        if (variable.name == name) return &variable.value;
    }
    return nullptr;
}

std::optional<int32_t> PjlHeader::FindNumber(std::string_view name) const {
    constexpr int32_t kLimit = 1'000'000;
    const std::string* text = Find(name);
    const std::optional<int32_t> number = text ? ParseWhole(*text) : std::nullopt;
    return number && *number >= -kLimit && *number <= kLimit ? number : std::nullopt;
}

bool PjlHeader::IsStandIn() const {
    return language == kEnterLanguage.substr(kEnter.size() + 1);
}

PjlHeader ReadPjlHeader(ByteReader& reader) {
    TakeOpening(reader);
    Lines lines(reader);
    PjlHeader header;
    std::optional<PrintFileError> stray;  // the first line that the stand-in engine does not write
    for (;;) {
        const uint64_t offset = reader.Offset();
        if (reader.TextAhead(kThumbnail.size()) == kThumbnail) {
            TakeThumbnail(reader, header);
            continue;
        }
        std::string line = lines.Take();
        if (line.ends_with('\r')) line.pop_back();
        const std::string_view text = line;
        if (const std::optional<std::string_view> language = LanguageOf(text)) {
            header.language = *language;
            if (stray && header.IsStandIn()) throw PrintFileError(*stray);
            return header;
        }
        if (text.starts_with(kSet)) {
            TakeVariable(lines, offset, text.substr(kSet.size()), header);
        } else if (text.starts_with(kJobName)) {
            header.variables.push_back({"JOB NAME", lines.TakeValue(text.substr(kJobName.size()))});
        } else if (text.starts_with(kComment)) {
            header.comment = lines.TakeValue(text.substr(kComment.size()));
        } else {
            const PrintFileError error(offset,
                                       "PJL line \"" + PrintableText(text, 40) +
                                           "\"; expected @PJL SET, @PJL JOB NAME, @PJL COMMENT or \"" +
                                           std::string(kEnterLanguage) + "\"");
            if (!text.starts_with(kOtherLine)) throw PrintFileError(error);
            if (!stray) stray = error;
        }
    }
}

}  // namespace orvex::tools::view
