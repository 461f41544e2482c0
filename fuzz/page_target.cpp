// Layout and rows of a page: any geometry is laid out as the plain definition does, without an overflow, and
// page and raster block are announced accordingly. The engine gets every row, fill rows and purge bar
// included, as the plain definition computes it, pixel by pixel through a color table that may have missing
// points. A call that the engine refuses is the last one. A page allocates two blocks of the documented sizes
// and frees them.

#include <algorithm>
#include <cstring>

#include "driver/config/device_mode.h"
#include "driver/device_capabilities.h"
#include "driver/job_state.h"
#include "fuzz/any_device_mode.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/input.h"
#include "fuzz/page_input.h"
#include "fuzz/target.h"
#include "tests/kit/heap_watch.h"
#include "tests/plain/device_mode.h"
#include "tests/plain/layout_input.h"
#include "tests/plain/page_layout.h"
#include "tests/plain/printed_rows.h"

namespace orvex::fuzz {

namespace {

constexpr int32_t kBandColumns = 64;  // columns that the driver reads at a time from a portrait page

// Returns a valid device mode, or, if a choice says so, one with any values in the fields that a page depends
// on. Nothing validates the settings of an instance whose caller gave no device mode.
DeviceMode ModeOf(FuzzInput& input) {
    DeviceMode mode = plain::ValidDeviceMode();
    const uint8_t flags = input.Byte();
    constexpr int16_t kDots[] = {1, 5, 10}, kGaps[] = {5, 10, 15}, kFrequencies[] = {0, 1, 2, 10, 20, 50};
    mode.pub.dmOrientation = flags & 1 ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
    mode.pub.dmPrintQuality = mode.pub.dmYResolution = flags & 2 ? 600 : 300;
    mode.priv.rotate180 = flags >> 2 & 1;
    mode.priv.mirrorImage = flags >> 3 & 1;
    mode.priv.kws = flags >> 4 & 1;
    mode.priv.kws_fullwidth = flags >> 5 & 1;
    mode.priv.alignment = static_cast<int16_t>(input.Byte() % 3);
    mode.priv.purgeBar = static_cast<int16_t>(input.Byte() % 3);
    mode.priv.purgeDots = kDots[input.Byte() % 3];
    mode.priv.purgeGap = kGaps[input.Byte() % 3];
    mode.priv.purgeFreq = kFrequencies[input.Byte() % 6];
    mode.priv.phHOffset = static_cast<int16_t>(input.Number<uint16_t>() % 2001 - 1000);
    mode.priv.colorMode = input.Byte() % 3;
    REQUIRE(plain::BrokenRule(mode) == nullptr);
    if (flags >> 6 == 3) SetAnyValues(mode, input);
    return mode;
}

int16_t DriverResolution(const DeviceMode& mode) {
    PDEV pdev = {};
    pdev.devmode = mode;
    return GetDeviceResolution(&pdev);
}

// Compares the driver's layout of its input with the plain one of the plain input.
void CheckLayout(const PageLayoutInput& input, const PageLayoutInput& plainInput) {
    const char* different =
        plain::DifferentMeasure(ComputePageLayout(input), plain::ComputeLayout(plainInput));
    REQUIRE(different == nullptr);
}

// Returns the ink of a color in the plain table.
struct PlainInkOf {
    const PageColors& colors;
    uint32_t operator()(uint32_t color) const { return colors.PlainInk(color); }
};

// The print engine, which compares a page with the plain definition and refuses at most one call.
struct EngineCheck {
    const DeviceMode& mode;
    const plain::Layout& layout;
    const HeapWatch& heap;
    plain::PrintedRows<PageArt, PlainInkOf> expected;
    int64_t refused = -1;  // the number of the call to refuse
    int64_t calls = 0;
    int64_t rows = 0;
    size_t blocksBefore = 0;  // allocations of the page before its rows

    int64_t Calls() const { return expected.Count() + 4; }

    uint32_t Answer() { return calls++ == refused ? 0 : 1; }

    uint32_t PageStart(uint32_t width, uint32_t length) {
        REQUIRE(calls == 0);
        REQUIRE(width == static_cast<uint32_t>(layout.pageW));
        REQUIRE(length == static_cast<uint32_t>(layout.pageLength));
        return Answer();
    }
    uint32_t BlockStart(uint32_t top, uint32_t rowWidth, uint32_t headRows) {
        REQUIRE(calls == 1);
        REQUIRE(top == static_cast<uint32_t>(layout.topOff));
        REQUIRE(rowWidth == static_cast<uint32_t>(layout.rowWidth));
        REQUIRE(headRows == static_cast<uint32_t>(layout.headRows));
        REQUIRE(heap.LiveSizes().empty());
        blocksBefore = heap.Allocations();
        return Answer();
    }
    uint32_t BlockEnd() {
        REQUIRE(calls == 2 + expected.Count() && rows == expected.Count());
        return Answer();
    }
    uint32_t PageEnd() {
        REQUIRE(calls == 3 + expected.Count());
        return Answer();
    }

    // Requires that the page has allocated the row for the engine and the band that the bitmap is read
    // through: 64 columns of a portrait page or a scan line of a landscape one, each in an odd number of
    // cache lines.
    void CheckMemory() const {
        const size_t bandRows = mode.pub.dmOrientation == DMORIENT_LANDSCAPE ? 1 : kBandColumns;
        const auto pitch = static_cast<size_t>(((layout.imageWidth + 15) / 16 | 1) * 16);
        std::vector<size_t> pageBlocks = {size_t{4} * static_cast<size_t>(layout.rowWidth),
                                          bandRows * pitch * 4};
        std::sort(pageBlocks.begin(), pageBlocks.end());
        REQUIRE(heap.LiveSizes() == pageBlocks);
    }
    uint32_t Row(const uint32_t* row) {
        REQUIRE(calls == 2 + rows && rows < expected.Count());
        if (rows == 0) CheckMemory();
        REQUIRE(heap.Allocations() == blocksBefore + 2);  // no row allocates another block
        const std::vector<uint32_t>& next = expected.Next();
        REQUIRE(memcmp(row, next.data(), next.size() * sizeof *row) == 0);
        ++rows;
        return Answer();
    }
};

EngineCheck* currentCheck = nullptr;
constexpr uint64_t kJob = 0x1122334455667788;

// Passes one of the engine's calls to the check.
template <typename Call>
uint32_t InJob(uint64_t job, Call call) {
    REQUIRE(job == kJob);
    return call(*currentCheck);
}

uint32_t HPCRLIB_CALL StartPage(uint64_t job, uint32_t width, uint32_t length) {
    return InJob(job, [=](EngineCheck& check) { return check.PageStart(width, length); });
}
uint32_t HPCRLIB_CALL StartBlock(uint64_t job, uint32_t reserved, uint32_t top, uint32_t rowWidth,
                                 uint32_t rows) {
    REQUIRE(reserved == 0);
    return InJob(job, [=](EngineCheck& check) { return check.BlockStart(top, rowWidth, rows); });
}
uint32_t HPCRLIB_CALL TakeRow(uint64_t job, const uint32_t* row) {
    return InJob(job, [=](EngineCheck& check) { return check.Row(row); });
}
uint32_t HPCRLIB_CALL EndBlock(uint64_t job) {
    return InJob(job, [](EngineCheck& check) { return check.BlockEnd(); });
}
uint32_t HPCRLIB_CALL EndPage(uint64_t job) {
    return InJob(job, [](EngineCheck& check) { return check.PageEnd(); });
}

// The page's job, while the page is sent.
struct RunningJob {
    explicit RunningJob(EngineCheck& check) {
        currentCheck = &check;
        g_hJob = kJob;
        g_hHpcrlib = reinterpret_cast<HMODULE>(&currentCheck);
        g_engine.HPCRLIB_PageStart = &StartPage;
        g_engine.HPCRLIB_RasterBlockStart = &StartBlock;
        g_engine.HPCRLIB_RasterRow = &TakeRow;
        g_engine.HPCRLIB_RasterBlockEnd = &EndBlock;
        g_engine.HPCRLIB_PageEnd = &EndPage;
        g_resolutionSwitch = {};
    }
    ~RunningJob() {
        g_engine = {};
        g_hHpcrlib = nullptr;
        currentCheck = nullptr;
    }
    RunningJob(const RunningJob&) = delete;
    RunningJob& operator=(const RunningJob&) = delete;
};

// Returns whether a page is too large to be sent once for every input. Its rows differ from those of smaller
// pages only in their number and length.
bool TakesTooLong(const plain::Layout& layout) {
    constexpr int64_t kMostPixels = int64_t{16} << 20;
    const int64_t fill = int64_t{std::max(layout.fullTop, 0)} + std::max(layout.fullBottom, 0);
    return (fill + layout.rows) * layout.rowWidth > kMostPixels;
}

// Sends a page. If `refuses`, the engine refuses call number `refused`, modulo the number of calls.
void CheckPage(FuzzInput& input, const DeviceMode& mode, bool refuses, uint32_t refused) {
    const PageColors colors(input);
    PageArt page(input, colors);
    const plain::Layout layout = plain::ComputeLayout(plain::LayoutInput(mode, page.width, page.height));
    if (TakesTooLong(layout)) return;
    // A first page makes no thumbnail if settings.inf is empty.
    if (g_nPage == 1) FuzzInstallation().WriteSettings("");
    PDEV pdev = {};
    pdev.signature = pdev.signatureTail = kPdevSignature;
    pdev.devmode = mode;
    SURFOBJ surface = page.Surface();
    surface.dhpdev = reinterpret_cast<DHPDEV>(&pdev);

    const HeapWatch heap;
    EngineCheck check{mode, layout, heap, {mode, g_nPage, page, PlainInkOf{colors}}};
    if (refuses) check.refused = refused % check.Calls();
    const RunningJob job(check);
    REQUIRE(DrvSendPage(&surface));
    REQUIRE(heap.LiveSizes().empty());
    REQUIRE(check.calls == (refuses ? check.refused + 1 : check.Calls()));
    REQUIRE(pdev.pageCount == 1);
    REQUIRE(colors.TablesAgree());
}

}  // namespace

void FuzzPage(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    constexpr uint32_t kPages[] = {1, 2, 3, 10, 11, 20, 21, 50, 51, 101, 65534, 65535, 65536, 0x80000001};
    g_nPage = kPages[choices.Byte() % std::size(kPages)];
    const DeviceMode mode = ModeOf(choices);
    const auto width = choices.Number<int32_t>(), height = choices.Number<int32_t>();
    CheckLayout(LayoutInput(mode, DriverResolution(mode), width, height),
                plain::LayoutInput(mode, width, height));
    PageLayoutInput any = plain::LayoutInput(mode, width, height);
    any.phHOffset = choices.Number<int16_t>();
    any.alignment = choices.Number<int16_t>();
    CheckLayout(any, any);
    const bool refuses = choices.Flag();
    const auto refused = choices.Number<uint16_t>();
    CheckPage(choices, mode, refuses, refused);
}

Seeds PageSeeds() {
    // The bytes of a seed: page number, flags, alignment, purge bar, dots, gap, frequency, offset, color
    // mode, two lengths, offset and alignment of the second layout; whether a call is refused and which; kind
    // of the color table and its missing points; width, height, format, direction, padding and pixels of the
    // bitmap.
    Seeds seeds;
    for (char flags = 0; flags < 64; flags = static_cast<char>(flags + 7)) {
        std::string seed{0, flags, static_cast<char>(flags % 3), static_cast<char>(flags % 4), 1, 0, 1};
        seed += std::string("\xE8\x03\0\x10\x27\0\0\xFF\xFF\xFF\x7F\x18\xFC\1\0", 15);
        seed += {flags == 14 ? '\1' : '\0', flags, '\0'};
        seed += {static_cast<char>(flags / 7 % 6), 0, static_cast<char>(0x44 * (flags % 2)), 0, 0};
        seed += std::string{16, static_cast<char>(17 + flags % 3), flags, static_cast<char>(flags / 2), 3};
        for (int i = 0; i < 300; ++i) seed += static_cast<char>(i * 5);
        seeds.push_back(seed);
    }
    // A page of two bands and part of a third, in each order of columns.
    for (const char flags : {0, 4, 8, 12}) {
        std::string seed(30, '\0');
        seed[1] = flags;
        seeds.push_back(seed + "\xFF\xC5");
    }
    // Squares of 9 pixels of a color between two missing grid points, with one of the points in the middle,
    // whose look-up fills it; in every order of rows.
    for (const char flags : {0, 1, 4, 5, 8, 9, 12, 13}) {
        std::string seed(25, '\0');
        seed[1] = flags;
        const char side = static_cast<char>(115 + 7 * 9);
        seed += {1, 0, 0x44, 0, 0, side, side, 0, static_cast<char>(0x90), 0};
        seed += std::string(24, '\x12') + '\x17' + std::string(24, '\x12');
        seeds.push_back(seed);
    }
    // Device modes that break rules: a purge bar of many dots on every 65,534th page, signs that don't
    // matter, and values of flags and enumerations beside the usual ones.
    const auto broken = [&seeds](char page, const std::string& fields) {
        seeds.push_back(page + ('\xC1' + std::string(8, '\0')) + fields + std::string(30, '\7'));
    };
    broken('\x0B',
           InputForFields({{"purgeBar", 1}, {"purgeDots", -65000}, {"purgeFreq", -2}, {"purgeGap", 300}}));
    broken('\0', InputForFields({{"purgeBar", 7}, {"purgeDots", 40}, {"purgeGap", -65530}, {"kws", -1}}));
    broken('\0', InputForFields(
                     {{"dmOrientation", 0}, {"dmPrintQuality", 1200}, {"purgeBar", -2}, {"colorMode", -1}}));
    broken('\0', InputForFields({{"dmPrintQuality", 601},
                                 {"alignment", -3},
                                 {"rotate180", 2},
                                 {"mirrorImage", 4},
                                 {"phHOffset", -300}}));
    return seeds;
}

}  // namespace orvex::fuzz
