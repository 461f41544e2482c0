#include "driver/support/settings_file.h"

#include <cstdlib>
#include <string_view>

#include "driver/support/handle.h"
#include "driver/support/installation.h"
#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

constexpr size_t kValueCapacity = 254;  // of flags and numbers, terminator included

// Returns the text after its first `count` characters, which it must have. substr() would link the C++
// runtime's exceptions into the driver, with locks whose handles leak when the driver is unloaded.
std::string_view After(std::string_view text, size_t count) {
    text.remove_prefix(count);
    return text;
}

// Walks a file line by line through its file pointer.
class LineReader {
  public:
    explicit LineReader(HANDLE file) : file_(file) {}

    // Reads the next line with its line end (CR, LF or CR LF); the text ends before a zero byte. Returns
    // false at the end of the file or when it can't be read. The text is valid until the next call.
    //
    // Deliberate: a line longer than the buffer comes in pieces, and the byte after each full piece is
    // skipped.
    bool Next(std::string_view* line) {
        DWORD read = 0;
        if (!ReadFile(file_, buffer_, kPieceBytes, &read, nullptr) || read == 0) return false;
        const std::string_view piece(buffer_, read);
        size_t end = piece.find_first_of("\r\n");
        if (end == std::string_view::npos) end = read;
        if (After(piece, end).starts_with("\r\n")) ++end;
        position_.QuadPart += static_cast<LONGLONG>(end) + 1;
        if (!SetFilePointerEx(file_, position_, nullptr, FILE_BEGIN)) return false;
        *line = {buffer_, TextLength(buffer_, piece.substr(0, end + 1).size())};
        return true;
    }

  private:
    static constexpr DWORD kPieceBytes = 253;

    HANDLE file_;
    LARGE_INTEGER position_ = {};
    char buffer_[kPieceBytes];
};

// Stores the last value of `key` in `section`, up to the first one that fits into `out`. Returns its length
// there.
size_t FindValue(LineReader& lines, std::string_view section, std::string_view key, char* out,
                 size_t capacity) {
    size_t length = 0;
    bool inSection = false;
    for (std::string_view line; lines.Next(&line);) {
        if (line.starts_with('[')) {
            if (inSection) break;
            inSection = line.starts_with(section);
            continue;
        }
        if (!inSection || !line.starts_with(key)) continue;
        const std::string_view value = After(line, key.size());
        if (value.empty()) continue;
        CopyText(out, capacity, value);
        if (value.size() < capacity - 1) return value.size();
        // Deliberate: after a value that had to be cut, a later line with the key still replaces it.
        length = capacity - 1;
    }
    return length;
}

}  // namespace

size_t LookupString(const char* section, const char* key, char* out, size_t capacity) {
    if (capacity == 0) return 0;
    out[0] = '\0';
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    const OwnedHandle file(OpenInstallationFile(folder.get(), L"settings.inf"));
    if (!file) {
        LogError("failed to open settings.inf");
        return 0;
    }
    LineReader lines(file.Get());
    return FindValue(lines, section, key, out, capacity);
}

int LookupFlag(const char* section, const char* key) {
    char value[kValueCapacity];
    const bool found = LookupString(section, key, value, sizeof value) > 0;
    const int result = found && strtol(value, nullptr, 10) > 0 ? 1 : 0;
    LogInfo("%s:%s:%d", section, key, result);
    return result;
}

double LookupNumber(const char* section, const char* key, double absent) {
    char value[kValueCapacity];
    return LookupString(section, key, value, sizeof value) > 0 ? atof(value) : absent;
}

}  // namespace orvex
