// Print files in the viewer: a file is refused at a place within it, or every page has the rows that it says
// it has.

#include "engine/print_stream.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/viewer/made_files.h"
#include "viewer/print_file.h"

namespace {

// The file of an input: its own bytes, or PJL lines and records, whose checksums are made right.
std::string FileOf(FuzzInput& input) {
    if (input.Flag()) return std::string(input.RestAsText());
    const uint8_t lines = input.Byte();
    std::string file = WithLines(std::string(print_stream::kPjlOpening), input.TakeText(lines));
    while (!input.Empty()) {
        const char type = static_cast<char>(input.Byte());
        if (type == '\x1B') {
            file += '\x1B';
            file += input.TakeText(input.Byte() % 16);
        } else {
            const auto size = input.Number<uint16_t>();
            file += MakeRecord(type, std::string(input.TakeText(size)));
        }
    }
    return file + "\x1B%-12345X";
}

void CheckPage(const viewer::PrintedPage& page) {
    REQUIRE(page.rowWidth > 0 && page.rowWidth <= print_stream::kMaxRowWidth);
    viewer::RowReader reader(page);
    uint32_t rows = 0;
    for (std::span<const uint32_t> row = reader.Next(); !row.empty(); row = reader.Next()) {
        REQUIRE(row.size() == page.rowWidth);
        ++rows;
    }
    REQUIRE(rows == page.rows);
}

// The records of a print file in the form of an input.
std::string SeedOf(std::string_view file, std::string_view lines) {
    std::string seed = std::string(1, '\0') + static_cast<char>(lines.size()) + std::string(lines);
    file.remove_prefix(print_stream::kPjlOpening.size());
    file.remove_suffix(print_stream::kUniversalExit.size());
    while (!file.empty()) {
        if (file[0] == '\x1B') {
            const size_t size = file.find('M');
            seed += std::string{'\x1B', static_cast<char>(size)} + std::string(file.substr(1, size));
            file.remove_prefix(size + 1);
            continue;
        }
        const size_t size = static_cast<uint8_t>(file[1]) | size_t{static_cast<uint8_t>(file[2])} << 8;
        seed += std::string(file.substr(0, 3)) + std::string(file.substr(5, size));
        file.remove_prefix(5 + size + 4);
    }
    return seed;
}

}  // namespace

void FuzzPrintFile(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    const std::string file = FileOf(choices);
    try {
        const viewer::PrintFile read = viewer::ParsePrintFile(AsBytes(file));
        REQUIRE(!read.pages.empty());
        uint32_t number = 0;
        for (const viewer::PrintedPage& page : read.pages) {
            REQUIRE(page.number == ++number);
            CheckPage(page);
        }
    } catch (const viewer::PrintFileError& error) {
        REQUIRE(error.Offset() <= file.size());
    }
}

Seeds PrintFileSeeds() {
    const Rows page = {{1, 2, 3}, {1, 2, 3}, {9, 9, 9}};
    const Rows wide = {std::vector<uint32_t>(200, 7), std::vector<uint32_t>(200, 8)};
    const std::string lines = "@PJL SET COPIES=3\n@PJL JOB NAME=\"a\nb\"\n@PJL SET QRV_THUMBNAIL=\"aGk=\"\n";
    const std::string one = MakeFile({page}, "", kMode600Dpi);
    return {
        SeedOf(one, lines),
        SeedOf(MakeFile({page, wide}, "", kMode300Dpi), ""),
        "\1" + MakeFile({{{5}}}, lines),
        "\1" + one.substr(0, one.size() - 30),
    };
}
