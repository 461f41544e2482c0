// Print files in the viewer: a file is refused at an offset within it, or every page has as many rows as it
// claims, with its image within them, and can be described and drawn.

#include "engine/print_stream.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/tools/orvexview/made_files.h"
#include "tools/orvexview/layout_picture.h"
#include "tools/orvexview/page_pictures.h"
#include "tools/orvexview/print_file.h"
#include "tools/orvexview/report.h"

namespace orvex::fuzz {

using namespace tools::view;
namespace {

// Returns the file for an input: its own bytes, or PJL lines and records with correct checksums.
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

constexpr uint64_t kSmallPage = 4096;  // pixels of a page that is drawn

// Requires that the image lies within its block and that the pictures have the resulting sizes. Only the
// sanitizers check their contents.
void CheckViews(const tools::view::PrintFile& file, const tools::view::PrintedPage& page,
                const tools::view::PagePlacement& placement) {
    const tools::view::BlockArea area = tools::view::ImageArea(placement);
    REQUIRE(area.width > 0 && area.left + area.width <= page.rowWidth);
    REQUIRE(area.rows > 0 && area.top + area.rows <= page.rows);
    REQUIRE(placement.purgeWidth + area.width == page.rowWidth);
    if (uint64_t{page.rowWidth} * page.rows > kSmallPage) return;
    for (const uint32_t scale : {1u, 3u}) {
        tools::view::Drawing drawing{.area = area, .scale = scale, .composite = true, .inks = true};
        drawing.turned = scale == 3;
        drawing.blockScale = tools::ScaleToFit(tools::view::LayoutRows(page, placement), 200);
        tools::view::PagePictures pictures =
            tools::view::DrawPage(tools::InkModel(file.dpi), page, placement, drawing);
        const uint32_t width = (area.width + scale - 1) / scale;
        const uint32_t height = (area.rows + scale - 1) / scale;
        REQUIRE(pictures.composite.width == (drawing.turned ? height : width));
        REQUIRE(pictures.composite.height == (drawing.turned ? width : height));
        REQUIRE(pictures.inks[3].samples.size() * 3 == pictures.composite.samples.size());
        REQUIRE(!tools::view::DescribePage(file, page, placement, pictures.means).empty());
        const tools::Picture layout =
            tools::view::DrawLayout(file, page, placement, std::move(pictures.block),
                                    {.scale = drawing.blockScale, .turned = drawing.turned});
        REQUIRE(layout.width > 0 && layout.height > 0);
    }
}

// Makes the tables and pictures of a file that was taken.
void CheckViews(const tools::view::PrintFile& file) {
    for (const tools::view::PrintedPage& page : file.pages) {
        CheckViews(file, page, tools::view::PlacePage(file, page));
    }
    REQUIRE(tools::view::DescribeHeader(file).find("\nPages: ") != std::string::npos);
    if (!file.header.thumbnail) return;
    uint64_t size = 0;
    tools::view::ReadThumbnail(file, [&](std::span<const uint8_t> bytes) { size += bytes.size(); });
    REQUIRE(size <= file.header.thumbnail->size / 4 * 3);
}

void CheckPage(const tools::view::PrintedPage& page) {
    REQUIRE(page.rowWidth > 0 && page.rowWidth <= print_stream::kMaxRowWidth);
    tools::view::RowReader reader(page);
    uint32_t rows = 0;
    for (std::span<const uint32_t> row = reader.Next(); !row.empty(); row = reader.Next()) {
        REQUIRE(row.size() == page.rowWidth);
        ++rows;
    }
    REQUIRE(rows == page.rows);
}

// Checks what there is of a file that is not sound.
void CheckReadablePart(const std::string& file) {
    try {
        const tools::view::ReadablePart part =
            tools::view::ParseReadablePart(std::make_unique<tools::view::MemorySource>(AsBytes(file)));
        REQUIRE(!part.problem.empty());
        for (const tools::view::PrintedPage& page : part.file.pages) {
            CheckPage(page);
            CheckViews(part.file, page, tools::view::PlacePage(part.file, page));
        }
    } catch (const tools::view::PrintFileError&) {
        // Not even the header can be read.
    }
}

// Returns the input for the records of a print file.
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
        const tools::view::PrintFile read = tools::view::ParsePrintFile(AsBytes(file));
        REQUIRE(!read.pages.empty());
        uint32_t number = 0;
        for (const tools::view::PrintedPage& page : read.pages) {
            REQUIRE(page.number == ++number);
            CheckPage(page);
        }
        CheckViews(read);
    } catch (const tools::view::PrintFileError& error) {
        REQUIRE(error.Offset() <= file.size());
        CheckReadablePart(file);
    }
}

Seeds PrintFileSeeds() {
    const Rows page = {{1, 2, 3}, {1, 2, 3}, {9, 9, 9}};
    const Rows wide = {std::vector<uint32_t>(200, 7), std::vector<uint32_t>(200, 8)};
    const std::string lines = "@PJL SET COPIES=3\n@PJL JOB NAME=\"a\nb\"\n@PJL SET QRV_THUMBNAIL=\"aGk=\"\n";
    // The job settings of a page of 3 x 2 with a purge bar of 1, sent landscape and full width.
    const std::string settings =
        "@PJL SET ORIGX=2\n@PJL SET ORIGY=3\n@PJL SET ALIGN=1\n@PJL SET PURGEBAR=1\n"
        "@PJL SET PURGEDOTS=1\n@PJL SET KWS=1\n@PJL SET FULLWIDTH=1\n@PJL SET PHOFFSET=-20\n";
    const std::string one = MakeFile({page}, "", kMode600Dpi);
    return {
        SeedOf(one, lines),
        SeedOf(one, settings),
        SeedOf(MakeFile({page, wide}, "", kMode300Dpi), ""),
        "\1" + MakeFile({{{5}}}, lines),
        "\1" + one.substr(0, one.size() - 30),
        // A job end right after the job start.
        std::string("\0\0J\x08\0\1\0\0\0\2\0\0\0j\4\2\0\0\0\0", 20),
    };
}

}  // namespace orvex::fuzz
