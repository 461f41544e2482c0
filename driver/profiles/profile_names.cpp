#include "driver/profiles/profile_names.h"

#include <algorithm>

#include "driver/support/handle.h"
#include "driver/support/heap.h"
#include "driver/support/installation.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

constexpr LONGLONG kByteOrderMarkBytes = 2;

// Walks a file of UTF-16 text line by line, starting after its byte-order mark.
class WideLineReader {
  public:
    explicit WideLineReader(HANDLE file) : file_(file) { position_.QuadPart = kByteOrderMarkBytes; }

    // Reads the next line, up to its line end (CR, LF or CR LF) or to a zero character. A line longer than
    // the buffer comes in pieces. Returns false at the end of the file or when it can't be read. The text is
    // valid until the next call.
    bool Next(WideView* line) {
        DWORD came = 0;
        if (!SetFilePointerEx(file_, position_, nullptr, FILE_BEGIN)) return false;
        if (!ReadFile(file_, buffer_, sizeof buffer_, &came, nullptr)) return false;
        const WCHAR* const start = buffer_;
        const WCHAR* const end = start + came / sizeof(WCHAR);
        if (end == start) return false;
        const WCHAR* const lineEnd =
            std::find_if(start, end, [](WCHAR c) { return c == L'\r' || c == L'\n'; });
        const WCHAR* next = lineEnd;
        if (next != end && *next++ == L'\r' && next != end && *next == L'\n') ++next;
        position_.QuadPart += (next - start) * static_cast<LONGLONG>(sizeof(WCHAR));
        *line = {start, TextLength(start, static_cast<size_t>(lineEnd - start))};
        return true;
    }

  private:
    static constexpr size_t kPieceCharacters = 253;

    HANDLE file_;
    LARGE_INTEGER position_;
    WCHAR buffer_[kPieceCharacters];
};

bool StartsWith(WideView text, WideView start) {
    return text.size >= start.size && SameText({text.data, start.size}, start);
}

// Returns the text after "<key>=" when the line begins with that, or an empty one.
WideView ValueOf(WideView line, WideView key) {
    if (!StartsWith(line, key) || line.size == key.size || line.data[key.size] != L'=') return {};
    return {line.data + key.size + 1, line.size - key.size - 1};
}

// Copies a value of `key` in `section` to `out`: the first one that fits, or else the last one, cut. Returns
// its length there, 0 when there is none.
size_t FindValue(WideLineReader& lines, WideView section, WideView key, WCHAR* out, size_t capacity) {
    size_t length = 0;
    bool inSection = false;
    for (WideView line; lines.Next(&line);) {
        if (StartsWith(line, {L"[", 1})) {
            if (inSection) break;
            inSection = StartsWith(line, section);
            continue;
        }
        const WideView value = inSection ? ValueOf(line, key) : WideView{};
        if (value.size == 0) continue;
        CopyText(out, capacity, value);
        if (value.size < capacity - 1) return value.size;
        length = capacity - 1;
    }
    return length;
}

}  // namespace

size_t QRV_GetProfileFieldW(const WCHAR* section, const WCHAR* fileName, WCHAR* name, size_t capacity) {
    if (capacity == 0) return 0;
    name[0] = 0;
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    const OwnedHandle file(OpenInstallationFile(folder.get(), L"profilenames.inf"));
    if (!file) return 0;
    WideLineReader lines(file.Get());
    return FindValue(lines, {section, TextLength(section)}, {fileName, TextLength(fileName)}, name, capacity);
}

}  // namespace orvex
