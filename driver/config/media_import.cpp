#include "driver/config/media_import.h"

#include <algorithm>
#include <charconv>

#include "driver/support/handle.h"
#include "driver/support/heap.h"
#include "driver/support/installation.h"
#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

// Takes one line off the front of `text` and returns it without its line feed.
std::string_view TakeLine(std::string_view* text) {
    const size_t end = text->find('\n');
    const std::string_view line = text->substr(0, end);
    text->remove_prefix(end == std::string_view::npos ? text->size() : end + 1);
    return line;
}

void SkipSeparators(std::string_view* line) {
    line->remove_prefix(std::min(line->find_first_not_of(" \t,"), line->size()));
}

// Takes separators and a quoted text off the front of `line`. Returns false when there is none that fits.
template <size_t N>
bool TakeQuoted(std::string_view* line, char (&field)[N]) {
    SkipSeparators(line);
    if (!line->starts_with('"')) return false;
    const size_t end = line->find('"', 1);
    if (end > N) return false;  // npos without an end quote
    CopyText(field, line->substr(1, end - 1));
    line->remove_prefix(end + 1);
    return true;
}

// Returns the decimal number at the front of `text`, after white space: 0 without one, INT32_MAX at most.
int32_t ReadNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    uint32_t magnitude = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    if (parsed.ec == std::errc::result_out_of_range || magnitude > INT32_MAX) magnitude = INT32_MAX;
    const auto number = static_cast<int32_t>(magnitude);
    return negative ? -number : number;
}

}  // namespace

bool ParseMediaLabel(std::string_view line, LabelSize* label) {
    if (!TakeQuoted(&line, label->name) || !TakeQuoted(&line, label->width) ||
        !TakeQuoted(&line, label->length)) {
        return false;
    }
    SkipSeparators(&line);
    label->units = static_cast<uint32_t>(ReadNumber(line));
    return true;
}

namespace {

void AddLabel(HANDLE printer, LabelSize* label) {
    // Deliberate: the level of errors, so that an import shows whenever errors are logged.
    LogError("Add %s %s %s %d", label->name, label->width, label->length, label->units);
    if (printer != nullptr && NextLabelNumber(printer, &label->number) == ERROR_SUCCESS &&
        WriteLabel(printer, *label) == ERROR_SUCCESS) {
        return;
    }
    LogError("Error adding label to registry!");
}

// Reads the file's text into `buffer` and returns it. A missing or empty file is logged and gives no text.
std::string_view ReadMediaFile(const WCHAR* folder, char (&buffer)[kMaxMediaBytes]) {
    const OwnedHandle file(OpenInstallationFile(folder, L"media.inf"));
    if (!file) {
        LogError("failed to open media.inf");
        return {};
    }
    const DWORD read = file.Read(buffer, sizeof buffer);
    if (read == 0) LogError("media.inf empty");
    return {buffer, TextLength(buffer, read)};
}

}  // namespace

int ImportMediaFile(HANDLE printer, const WCHAR* folder) {
    if (printer != nullptr && HasLabelList(printer)) return 0;
    char buffer[kMaxMediaBytes];
    std::string_view text = ReadMediaFile(folder, buffer);
    const size_t section = text.find(kMediaSection);
    if (section == std::string_view::npos) return 1;
    text.remove_prefix(section);
    TakeLine(&text);
    LabelSize label = {};
    while (!text.empty() && ParseMediaLabel(TakeLine(&text), &label)) AddLabel(printer, &label);
    return 1;
}

}  // namespace orvex
