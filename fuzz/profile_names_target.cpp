// profilenames.inf: whatever the file contains, a look-up finds what the plain definition finds. Names of
// profiles: whatever a job asks for, no device is opened and nothing outside the profiles folder.

#include <cstring>

#include "driver/profiles/profile_catalogue.h"
#include "driver/profiles/profile_file.h"
#include "driver/support/text.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/driver/profiles/file_watch.h"
#include "tests/plain/profile_name.h"

namespace orvex::fuzz {

using namespace tools;
using namespace std::string_view_literals;

namespace {

constexpr size_t kPieceCharacters = 253;
constexpr WCHAR kSection[] = L"[DEU]";
constexpr WCHAR kFile[] = L"a.zvp";
constexpr size_t kNameCapacities[] = {0, 1, 2, 7, 100, 512};

// Returns the characters after the byte-order mark, without half a character at the end.
std::u16string CharactersOf(std::string_view file) {
    file.remove_prefix(std::min<size_t>(2, file.size()));
    std::u16string characters(file.size() / 2, u'\0');
    if (!characters.empty()) memcpy(characters.data(), file.data(), characters.size() * 2);
    return characters;
}

// Returns the lines without their line ends, each cut at its first zero character.
std::vector<std::u16string> LinesOf(std::u16string_view text) {
    std::vector<std::u16string> lines;
    while (!text.empty()) {
        const std::u16string_view piece = text.substr(0, kPieceCharacters);
        const size_t end = std::min(piece.find_first_of(u"\r\n"), piece.size());
        const std::u16string_view line = piece.substr(0, end);
        lines.emplace_back(line.substr(0, line.find(u'\0')));
        const std::u16string_view lineEnd = piece.substr(end);
        text.remove_prefix(end + (lineEnd.starts_with(u"\r\n") ? 2 : lineEnd.empty() ? 0 : 1));
    }
    return lines;
}

std::u16string Expected(std::string_view file, size_t capacity) {
    std::u16string found;
    bool inSection = false;
    for (const std::u16string& line : LinesOf(CharactersOf(file))) {
        if (line.starts_with(u'[')) {
            if (inSection) return found;
            inSection = line.starts_with(u"[DEU]");
        } else if (inSection && line.starts_with(u"a.zvp=") && line.size() > 6) {
            found = line.substr(6, capacity - 1);
            if (line.size() - 6 < capacity - 1) return found;
        }
    }
    return found;
}

// Checks a text as the name of a profile.
void CheckName(const std::string& name, const FileWatch& watch) {
    const bool isBare = plain::IsBareFileName(name);
    REQUIRE(IsBareFileName(name.c_str()) == isBare);
    if (isBare) return;
    const size_t opened = watch.Opened();
    char profile[512] = {};
    signed char code = 0;
    static uint32_t unused[1];  // a profile that is not opened fills nothing
    const std::string path = "profiles\\" + name;
    REQUIRE(ReadProfile(path.c_str(), profile, sizeof profile, false, unused, &code) == 0);
    REQUIRE(watch.Opened() == opened);
}

std::string Wide(std::u16string_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * 2};
}

}  // namespace

void FuzzProfileNames(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    const size_t capacity = kNameCapacities[choices.Byte() % std::size(kNameCapacities)];
    const std::string_view file = choices.RestAsText();
    FuzzInstallation().Write("profilenames.inf", file);

    const FileWatch watch;
    std::vector<WCHAR> out(capacity, L'#');
    const size_t length = QRV_GetProfileFieldW(kSection, kFile, out.data(), capacity);
    const std::u16string expected = capacity == 0 ? u"" : Expected(file, capacity);
    REQUIRE(length == expected.size());
    REQUIRE(capacity == 0 || memcmp(out.data(), expected.c_str(), 2 * (length + 1)) == 0);
    REQUIRE(watch.Open() == 0);
    CheckName(std::string(file.substr(0, file.find('\0'))), watch);
}

Seeds ProfileNamesSeeds() {
    return {
        "\5" + Wide(u"\xFEFF[ENU]\r\na.zvp=Paper\r\n[DEU]\r\nb.zvp=Papier\r\na.zvp=Seide\r\n"),
        "\3" + Wide(u"\xFEFF[DEU]\na.zvp=lang und l\u00E4nger\ra.zvp=kurz\n[x"),
        "\5" + Wide(u"\xFEFF[DEU]\r" + std::u16string(252, u' ') + u"\r\na.zvp=x"),
        "\4" + Wide(u"\xFEFF[DEU]\n\0a.zvp=1\na.zvp=\0\n"sv) + "x",
        std::string("\0Coated paper.zvp", 17),
        std::string("\0nul  .zvp", 10),
        std::string("\0cOnIn$", 7),
        std::string("\0LPT\xC2\xB2.a", 8),
        std::string("\0COM0", 5),
        std::string("\0..", 3),
        std::string("\0..\\profiles/a", 14),
        std::string("\0c:a", 4),
    };
}

}  // namespace orvex::fuzz
