#include "driver/support/settings_file.h"

#include <cstdlib>
#include <string_view>

#include "driver/support/handle.h"
#include "driver/support/installation.h"
#include "driver/support/log.h"

namespace orvex {

namespace {

// Walks a file line by line through its file pointer.
class LineReader {
  public:
    explicit LineReader(const OwnedHandle& file) : file_(file) {}

    // Reads the next line with its line end (CR, LF or CR LF); the text ends before a zero byte. Returns
    // false at the end of the file or when it can't be read. The text is valid until the next call.
    //
    // Deliberate: a line longer than the buffer comes in pieces, and the byte after each of them is skipped.
    bool Next(std::string_view* line) {
        const DWORD read = file_.Read(buffer_, kPieceBytes);
        if (read == 0) return false;
        const std::string_view piece(buffer_, read);
        size_t end = piece.find_first_of("\r\n");
        if (end == std::string_view::npos) end = read;
        if (After(piece, end).starts_with("\r\n")) ++end;
        position_.QuadPart += static_cast<LONGLONG>(end) + 1;
        if (!SetFilePointerEx(file_.Get(), position_, nullptr, FILE_BEGIN)) return false;
        *line = {buffer_, TextLength(buffer_, piece.substr(0, end + 1).size())};
        return true;
    }

  private:
    static constexpr DWORD kPieceBytes = 253;

    const OwnedHandle& file_;
    LARGE_INTEGER position_ = {};
    char buffer_[kPieceBytes];
};

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
    LineReader lines(file);
    const auto valueOf = [key = std::string_view(key)](std::string_view line) {
        return line.starts_with(key) ? After(line, key.size()) : std::string_view();
    };
    return FindInSection(lines, std::string_view(section), valueOf, out, capacity);
}

int LookupFlag(const char* section, const char* key) {
    char value[kSettingCapacity];
    const bool found = LookupString(section, key, value, sizeof value) > 0;
    const int result = found && strtol(value, nullptr, 10) > 0 ? 1 : 0;
    LogInfo("%s:%s:%d", section, key, result);
    return result;
}

double LookupNumber(const char* section, const char* key, double absent) {
    char value[kSettingCapacity];
    return LookupString(section, key, value, sizeof value) > 0 ? atof(value) : absent;
}

}  // namespace orvex
