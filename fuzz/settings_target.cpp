// settings.inf: whatever the file contains, a look-up finds what the plain definition finds. The log's
// control file: whatever it contains, the mask is the number in it.

#include <bit>
#include <cstdlib>
#include <cstring>

#include "driver/support/log.h"
#include "driver/support/settings_file.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/driver/profiles/file_watch.h"
#include "tests/kit/log_capture.h"
#include "tests/plain/log_mask.h"

namespace orvex::fuzz {

using namespace tools;
namespace {

constexpr size_t kPieceBytes = 253;  // longer lines are read in pieces, and the byte after each piece is lost

struct Key {
    const char* section;
    const char* key;
};
constexpr Key kKeys[] = {{"[UI]", "Language="}, {"[Driver]", "Add_Thumb="}, {"[Color]", ""}};
constexpr size_t kValueCapacities[] = {0, 1, 2, 7, 254, 1000};

// Returns the lines with their line ends, each cut at its first zero byte.
std::vector<std::string> LinesOf(std::string_view file) {
    std::vector<std::string> lines;
    while (!file.empty()) {
        const std::string_view piece = file.substr(0, kPieceBytes);
        size_t size = piece.find_first_of("\r\n");
        size = size == std::string_view::npos    ? piece.size()
               : piece.substr(size, 2) == "\r\n" ? size + 2
                                                 : size + 1;
        const std::string_view line = piece.substr(0, size);
        lines.emplace_back(line.substr(0, line.find('\0')));
        const bool ended = line.ends_with('\r') || line.ends_with('\n');
        file.remove_prefix(std::min(file.size(), ended ? size : size + 1));
    }
    return lines;
}

// Returns the first value that fits or, if none does, the last one, cut.
std::string Expected(std::string_view file, const Key& wanted, size_t capacity) {
    std::string found;
    bool inSection = false;
    for (const std::string& line : LinesOf(file)) {
        if (line.starts_with('[')) {
            if (inSection) return found;
            inSection = line.starts_with(wanted.section);
        } else if (inSection && line.starts_with(wanted.key) && line.size() > strlen(wanted.key)) {
            const std::string value = line.substr(strlen(wanted.key));
            found = value.substr(0, capacity - 1);
            if (value.size() < capacity - 1) return found;
        }
    }
    return found;
}

// Requires that the text is read as the plain definition reads it, as the log's control file.
void CheckLogMask(std::string_view text) {
    const LogCapture log(0);
    WriteBytes(LogControlFile(), text);
    LoadLogMask();
    REQUIRE(logMask == plain::LogMask(text));
    REQUIRE(!std::filesystem::exists(LogFile()));
}

}  // namespace

void FuzzSettings(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    const Key& wanted = kKeys[choices.Byte() % std::size(kKeys)];
    const size_t capacity = kValueCapacities[choices.Byte() % std::size(kValueCapacities)];
    const std::string_view file = choices.RestAsText();
    FuzzInstallation().WriteSettings(file);

    const FileWatch watch;
    std::vector<char> out(capacity, '#');  // ends where its capacity ends
    const size_t length = LookupString(wanted.section, wanted.key, out.data(), capacity);
    const std::string expected = capacity == 0 ? "" : Expected(file, wanted, capacity);
    REQUIRE(length == expected.size());
    REQUIRE(capacity == 0 || expected == out.data());

    const std::string value = Expected(file, wanted, 254);
    const int flag = !value.empty() && strtol(value.c_str(), nullptr, 10) > 0 ? 1 : 0;
    REQUIRE(LookupFlag(wanted.section, wanted.key) == flag);
    const double number = value.empty() ? -1.5 : atof(value.c_str());
    const double found = LookupNumber(wanted.section, wanted.key, -1.5);
    REQUIRE(std::bit_cast<uint64_t>(found) == std::bit_cast<uint64_t>(number));
    CheckLogMask(file);
    REQUIRE(watch.Open() == 0);
}

Seeds SettingsSeeds() {
    const std::string plain =
        "; settings\r\n[Driver]\r\nAdd_Thumb=1\r\n[UI]\r\nLanguage=DEU\r\nDefault_Media=A\r\n";
    return {
        std::string("\0\4", 2) + plain,
        "\1\4" + plain,
        "\2\3[Color]\n0.5\rnan\n[x]\n",
        std::string("\0\3", 2) + "[UI]\nLanguage=" + std::string(300, 'x') + "\nLanguage=ok\n",
        std::string("\0\2", 2) + "[UI]" + std::string(260, ' ') + "\rLanguage=a\r\n",
        std::string("\0\0", 2) + "3\r\n",
        std::string("\0\0", 2) + " \t-18446744073709551615",
        std::string("\0\0", 2) + "+18446744073709551616",
        std::string("\0\0", 2) + std::string(60, '0') + "4294967299",
    };
}

}  // namespace orvex::fuzz
