// media.inf: whatever the file contains, the printer then has the labels that the plain definition finds in
// it, numbered without a gap. A second import changes nothing.

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <optional>

#include "driver/config/label_sizes.h"
#include "driver/config/media_import.h"
#include "driver/support/installation.h"
#include "driver/support/text.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/fuzz_printer.h"
#include "fuzz/input.h"
#include "tests/driver/profiles/file_watch.h"
#include "tools/common/wide_text.h"

namespace orvex::fuzz {

using namespace tools;
namespace {

constexpr size_t kBytesThatCount = 4095;

struct MediaLine {
    std::string name, width, length;
    uint32_t units;
};

// Takes the text in the next pair of quotes if only blanks, tabs and commas precede it.
std::optional<std::string> TakeQuoted(std::string& line, size_t most) {
    const size_t open = line.find_first_not_of(" \t,");
    if (open == std::string::npos || line[open] != '"') return std::nullopt;
    const size_t close = line.find('"', open + 1);
    if (close == std::string::npos || close - open - 1 > most) return std::nullopt;
    std::string text = line.substr(open + 1, close - open - 1);
    line.erase(0, close + 1);
    return text;
}

std::optional<MediaLine> ReadLine(std::string line) {
    const auto name = TakeQuoted(line, 63), width = TakeQuoted(line, 7), length = TakeQuoted(line, 7);
    if (!name || !width || !length) return std::nullopt;
    line.erase(0, line.find_first_not_of(" \t,"));
    const auto units = std::clamp<long long>(strtoll(line.c_str(), nullptr, 10), -INT32_MAX, INT32_MAX);
    return MediaLine{*name, *width, *length, static_cast<uint32_t>(units)};
}

// Returns the labels that a file adds to an empty list.
std::vector<MediaLine> Expected(std::string_view file) {
    std::string text(file.substr(0, kBytesThatCount));
    text.resize(std::min(text.find('\0'), text.size()));
    std::vector<MediaLine> lines;
    size_t at = text.find("[Media]");
    while (at < text.size() && (at = text.find('\n', at)) != std::string::npos && ++at < text.size()) {
        const std::optional<MediaLine> line = ReadLine(text.substr(at, text.find('\n', at) - at));
        if (!line) break;
        lines.push_back(*line);
    }
    return lines;
}

}  // namespace

void FuzzMediaImport(std::span<const uint8_t> input) {
    const std::string_view file = FuzzInput(input).RestAsText();
    const std::vector<MediaLine> expected = Expected(file);
    FuzzInstallation().Write("media.inf", file);
    const HeapArray<WCHAR> folder = GetInstallationFolder();

    FuzzPrinter printer;
    const FileWatch watch;
    REQUIRE(ImportMediaFile(printer.Handle(), folder.get()) == 1);
    REQUIRE(ImportMediaFile(nullptr, folder.get()) == 1);

    std::vector<LabelSize> labels(expected.size() + 1);
    uint32_t count = 0;
    const auto room = static_cast<uint32_t>(labels.size());
    REQUIRE(ReadPrinterLabelList(printer.Handle(), labels.data(), room, &count) == ERROR_SUCCESS);
    REQUIRE(count == expected.size());
    REQUIRE(printer.Data().SubKeys("Label Sizes").size() == count);
    for (uint32_t i = 0; i < count; ++i) {
        REQUIRE(labels[i].number == 258 + i);
        REQUIRE(FieldText(labels[i].name) == expected[i].name);
        REQUIRE(FieldText(labels[i].width) == expected[i].width);
        REQUIRE(FieldText(labels[i].length) == expected[i].length);
        REQUIRE(labels[i].units == expected[i].units);
    }

    const PrinterData before = printer.Data();
    const int again = ImportMediaFile(printer.Handle(), folder.get());
    REQUIRE(again == (count > 0 ? 0 : 1));
    REQUIRE(printer.Data() == before);
    REQUIRE(watch.Open() == 0);
}

Seeds MediaImportSeeds() {
    std::string many = "[Media]\n";
    for (int i = 0; i < 30; ++i) many += "\"x\" \"4\" \"6\" 1\n";
    // Labels around the last byte that is read, which is in the number of one, at the end of a line or before
    // it.
    const auto around = [](size_t inFront) {
        const std::string labels = "[Media]\n\"Wine\" \"4\" \"6\" 10\n";
        std::string file(kBytesThatCount + inFront - labels.size(), ';');
        return file + labels + "\"Bread\" \"4\" \"6\" 1\n";
    };
    return {
        around(1),
        around(2),
        around(0),
        around(12),
        around(40),
        "; labels\r\n[Media]\r\n\"Shipping 4 x 6\", \"4\", \"6\", 1\r\n\"Wine\" \"90.5\"\t\"120\" 0 rest\r\n",
        "[Media]\n\"\" \"1234567\" \"0\" -2147483649\n\"a\",\"1\",\"2\" 4294967296",
        "[Media]\n\"" + std::string(63, 'n') + "\"\"1\"\"2\"\n\"12345678\"\n",
        many,
    };
}

}  // namespace orvex::fuzz
