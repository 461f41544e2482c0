#include "tests/system/endurance/log_text.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "driver/support/handle.h"
#include "tests/system/endurance/helper/log_writers.h"

namespace orvex {

namespace fs = std::filesystem;

namespace {

constexpr uint32_t kShortLine = 64;  // longer than the numbers of any line, shorter than a long one

// Returns the text of a line "[time] [TID: n] [Info]  text"; empty for any other line.
std::string TextOf(const std::string& line) {
    int year, month, day, hour, minute, second, millisecond, end = 0;
    unsigned thread;
    if (sscanf(line.c_str(), "[%4d-%2d-%2d %2d:%2d:%2d.%3d] [TID: %u] [Info]%n", &year, &month, &day, &hour,
               &minute, &second, &millisecond, &thread, &end) != 8 ||
        line.compare(static_cast<size_t>(end), 2, "  ") != 0) {
        return {};
    }
    return line.substr(static_cast<size_t>(end) + 2);
}

bool ReadTurn(const std::string& text, Turn& turn) {
    const std::string start = text.substr(0, kShortLine);
    if (sscanf(start.c_str(), "yCoord %u<-%u", &turn.writer, &turn.number) != 2 &&
        sscanf(start.c_str(), "writer %u line %u ", &turn.writer, &turn.number) != 2) {
        return false;
    }
    return text == WriterText(turn);
}

}  // namespace

void GrowPastLimit(const fs::path& log) {
    // One byte is written far past the end. Setting the file's size could cut off a line written at that
    // moment.
#ifdef _WIN32
    // The writers must be able to rotate the log meanwhile.
    const OwnedHandle file(CreateFileW(log.c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER last;
    last.QuadPart = kMaxLogBytes;
    DWORD written = 0;
    if (!file || !SetFilePointerEx(file.Get(), last, nullptr, FILE_BEGIN) ||
        !WriteFile(file.Get(), "", 1, &written, nullptr)) {
        throw std::runtime_error("the log can't be grown");
    }
#else
    std::fstream file(log, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(kMaxLogBytes));
    file.put('\0');
    if (!file.flush()) throw std::runtime_error("the log can't be grown");
#endif
}

std::string ReadGrownLog(const fs::path& log) {
    std::ifstream file(log, std::ios::binary);
    std::string text;
    std::string chunk(1 << 18, '\0');
    const auto read = [&] {
        file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        return std::string_view(chunk).substr(0, static_cast<size_t>(file.gcount()));
    };
    bool beyondHole = false;
    for (std::string_view lines = read(); !lines.empty(); lines = read()) {
        const size_t hole = beyondHole ? std::string_view::npos : lines.find('\0');
        text += lines.substr(0, hole);
        if (hole == std::string_view::npos) continue;
        beyondHole = true;
        file.clear();
        file.seekg(static_cast<std::streamoff>(kMaxLogBytes) + 1);
    }
    return text;
}

std::vector<Turn> ReadTurns(std::string_view text, std::vector<std::string>& strangers) {
    std::vector<Turn> turns;
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        Turn turn = {};
        if (ReadTurn(TextOf(line), turn)) {
            turns.push_back(turn);
        } else {
            strangers.push_back(line);
        }
    }
    if (!text.empty() && text.back() != '\n') strangers.push_back("the last line has no end");
    return turns;
}

}  // namespace orvex
