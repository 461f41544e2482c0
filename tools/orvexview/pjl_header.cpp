#include "tools/orvexview/pjl_header.h"

#include "engine/print_stream.h"
#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"

namespace orvex::tools::view {

using print_stream::kEnterLanguage;
using print_stream::kUniversalExit;

namespace {

constexpr std::string_view kSet = "@PJL SET ";
constexpr std::string_view kJobName = "@PJL JOB NAME=";
constexpr std::string_view kComment = "@PJL COMMENT ";
constexpr std::string_view kThumbnail = "QRV_THUMBNAIL";

std::string_view TakeLine(ByteReader& reader) {
    const std::string_view rest = reader.RestAsText();
    const size_t length = rest.find('\n');
    if (length == std::string_view::npos) {
        throw PrintFileError(reader.Offset(), "the file ends within a PJL line: \"" +
                                                  PrintableText(rest, 40) + "\"; expected a line feed");
    }
    reader.Take(length + 1, "a PJL line");
    return rest.substr(0, length);
}

// Takes a value. Document names may contain line feeds, so a value whose quote is open continues in the next
// line.
std::string TakeValue(ByteReader& reader, std::string_view firstLine) {
    std::string value(firstLine);
    if (!value.starts_with('"')) return value;
    while (value.size() < 2 || !value.ends_with('"')) value.append("\n").append(TakeLine(reader));
    return value.substr(1, value.size() - 2);
}

void TakeVariable(ByteReader& reader, size_t offset, std::string_view assignment, PjlHeader& header) {
    const size_t equals = assignment.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        throw PrintFileError(offset, "PJL line \"" + std::string(kSet) + PrintableText(assignment, 40) +
                                         "\" sets nothing; expected NAME=VALUE");
    }
    const std::string_view name = assignment.substr(0, equals);
    std::string value = TakeValue(reader, assignment.substr(equals + 1));
    if (name == kThumbnail) {
        header.thumbnail = std::move(value);
    } else {
        header.variables.push_back({std::string(name), std::move(value)});
    }
}

void TakeOpening(ByteReader& reader) {
    const std::string_view start = reader.RestAsText();
    const std::string_view framing(reinterpret_cast<const char*>(print_stream::kFramingChunk),
                                   sizeof print_stream::kFramingChunk);
    if (start.starts_with(framing)) {
        throw PrintFileError(reader.Offset(),
                             "the engine's framing chunk, which the driver should have dropped; expected the "
                             "universal exit ESC%-12345X");
    }
    if (!start.starts_with(kUniversalExit)) {
        throw PrintFileError(reader.Offset(), "\"" + PrintableText(start.substr(0, 12)) +
                                                  "\"; expected the universal exit ESC%-12345X");
    }
    reader.Take(kUniversalExit.size(), "the universal exit");
    const size_t offset = reader.Offset();
    const std::string_view line = TakeLine(reader);
    if (line != "@PJL") {
        throw PrintFileError(offset, "\"" + PrintableText(line, 40) + "\"; expected the line \"@PJL\"");
    }
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

PjlHeader ReadPjlHeader(ByteReader& reader) {
    TakeOpening(reader);
    PjlHeader header;
    for (;;) {
        const size_t offset = reader.Offset();
        const std::string_view line = TakeLine(reader);
        if (line == kEnterLanguage) return header;
        if (line.starts_with(kSet)) {
            TakeVariable(reader, offset, line.substr(kSet.size()), header);
        } else if (line.starts_with(kJobName)) {
            header.variables.push_back({"JOB NAME", TakeValue(reader, line.substr(kJobName.size()))});
        } else if (line.starts_with(kComment)) {
            header.comment = TakeValue(reader, line.substr(kComment.size()));
        } else {
            throw PrintFileError(offset, "PJL line \"" + PrintableText(line, 40) +
                                             "\"; expected @PJL SET, @PJL JOB NAME, @PJL COMMENT or \"" +
                                             std::string(kEnterLanguage) + "\"");
        }
    }
}

}  // namespace orvex::tools::view
