// The largest page that a device mode can ask for, 297.0 x 901.7 mm at 600 dpi, through DrvSendPage.

#include <algorithm>
#include <cstring>
#include <iostream>

#include "driver/device_instance.h"
#include "tests/kit/driver_fixture.h"
#include "tests/kit/picture.h"
#include "tests/system/endurance/marked_page.h"
#include "tests/system/endurance/process_figures.h"

namespace orvex {

using namespace tools;
namespace {

constexpr int16_t kWidestTenthsMm = 2970;
constexpr int16_t kLongestTenthsMm = 9017;
constexpr int32_t kAcrossPx = 7016;
constexpr int32_t kAlongPx = 21300;

// A page allocates an output row and an input row, or a band of 64 when it is portrait, and little more: the
// padding of the band's rows, and names.
constexpr size_t kRowBytes = size_t{kAlongPx} * 4;
constexpr size_t kSmallChange = 12 * 1024;
constexpr size_t MostAllocated(bool landscape) {
    return (landscape ? 1 + 1 : 64 + 1) * kRowBytes + kSmallChange;
}

// Growth of the process beyond that: the sanitizers keep a shadow of the heap, and the system may use pages
// of 2 MiB.
constexpr size_t kBeyond = 2560 * 1024;

// The thumbnail of the landscape page, which is halved until it is at most 800 pixels wide.
constexpr int32_t kThumbnailPart = 32;
constexpr int32_t kThumbnailWidth = kAlongPx / kThumbnailPart;
constexpr int32_t kThumbnailHeight = kAcrossPx / kThumbnailPart;

constexpr int32_t kRowsAMeasure = 1000;

struct PageTurn {
    bool rotate180;
    bool mirrorImage;
};
constexpr PageTurn kTurns[] = {{false, false}, {false, true}, {true, false}, {true, true}};

// The pixels of a page that a row prints.
struct RowPlace {
    bool alongLine;  // a scan line, not a column
    int32_t index;   // the number of the line or column
    bool backwards;
};

// Memory of a page while it was sent.
struct PageMemory {
    size_t allocated;  // the sum of the driver's allocations
    size_t grown;      // the largest growth of the process
};

class LargestPage : public DriverTest {
  protected:
    static DeviceMode LargestMode(bool landscape) {
        DeviceMode mode = Mode();
        mode.pub.dmOrientation = landscape ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
        mode.pub.dmPaperWidth = kWidestTenthsMm;
        mode.pub.dmPaperLength = kLongestTenthsMm;
        mode.pub.dmPrintQuality = 600;
        return mode;
    }

    static RowPlace PlaceOf(bool landscape, PageTurn turn, int32_t row) {
        const int32_t last = kAcrossPx - 1;
        if (landscape) return {true, turn.rotate180 ? last - row : row, turn.rotate180 != turn.mirrorImage};
        // A rotated and mirrored page is shifted by a column.
        const int32_t column = turn.rotate180 ? (turn.mirrorImage ? last + 1 - row : row)
                                              : (turn.mirrorImage ? row : last - row);
        return {false, column, turn.rotate180};
    }

    // The inks of one row after another. They share their memory, so that the test adds nothing to the
    // page's.
    class ExpectedRow {
      public:
        explicit ExpectedRow(const MarkedPage& page) : page_(page) {}

        const std::vector<uint32_t>& Inks(RowPlace place) {
            Clear();
            // The column after the last one continues into the next scan line's first pixel.
            const bool afterLast = !place.alongLine && place.index == page_.width;
            const int32_t index = afterLast ? 0 : place.index;
            place.alongLine ? page_.MarksOfLine(index, marks_) : page_.MarksOfColumn(index, marks_);
            for (const int32_t mark : marks_) {
                const uint32_t color = place.alongLine ? page_.Color(mark, index) : page_.Color(index, mark);
                const int32_t at = afterLast ? mark - 1 : mark;
                if (at >= 0) Set(place.backwards ? kAlongPx - 1 - at : at, ProfileColor(color, true));
            }
            if (inks_[0] == 0 && first_) Set(0, 2);  // the first-row marker
            first_ = false;
            return inks_;
        }

      private:
        void Set(int32_t i, uint32_t ink) {
            inks_[static_cast<size_t>(i)] = ink;
            set_.push_back(i);
        }
        void Clear() {
            for (const int32_t i : set_) inks_[static_cast<size_t>(i)] = 0;
            set_.clear();
        }

        const MarkedPage& page_;
        bool first_ = true;
        std::vector<uint32_t> inks_ = std::vector<uint32_t>(static_cast<size_t>(kAlongPx));
        std::vector<int32_t> marks_ = std::vector<int32_t>(static_cast<size_t>(kAlongPx));
        std::vector<int32_t> set_ = std::vector<int32_t>(static_cast<size_t>(kAlongPx));
    };

    // Sends the page in another turn and checks each of its rows. Changes the settings of the instance
    // itself, so that one bitmap serves all turns.
    PageMemory Send(Device& device, const MarkedPage& page, bool landscape, PageTurn turn) {
        PrivateDevMode& settings = reinterpret_cast<PDEV*>(device.Instance())->devmode.priv;
        settings.rotate180 = turn.rotate180;
        settings.mirrorImage = turn.mirrorImage;

        ExpectedRow expected(page);
        int32_t rows = 0, wrong = 0;
        ForgetPeak();
        const ProcessFigures before = MeasureProcess();
        PageMemory memory = {};
        const auto measure = [&](size_t ProcessFigures::*figure, size_t start) {
            const size_t now = MeasureProcess().*figure;
            memory.grown = std::max(memory.grown, now - std::min(now, start));
        };
        Heap().OnAllocate([&](const char*, size_t bytes) { return memory.allocated += bytes, false; });
        engine.onRow = [&](std::span<const uint32_t> row) {
            if (rows % kRowsAMeasure == 0) measure(&ProcessFigures::residentBytes, before.residentBytes);
            const std::vector<uint32_t>& inks = expected.Inks(PlaceOf(landscape, turn, rows));
            const bool same = row.size() == inks.size() && memcmp(row.data(), inks.data(), kRowBytes) == 0;
            if (!same && wrong++ == 0) ADD_FAILURE() << "row " << rows << " is the first that is wrong";
            ++rows;
        };
        EXPECT_TRUE(Session().SendPage(device));
        engine.onRow = nullptr;
        Heap().OnAllocate({});
        EXPECT_EQ(rows, kAcrossPx);
        EXPECT_EQ(wrong, 0);
        measure(&ProcessFigures::peakResidentBytes, std::max(before.residentBytes, before.peakResidentBytes));
        return memory;
    }

    void SendInEveryTurn(bool landscape) {
        const std::unique_ptr<Device> device = StartPage(LargestMode(landscape));
        SURFOBJ& surface = *device->Surface();
        const MarkedPage page(landscape ? kAlongPx : kAcrossPx, landscape ? kAcrossPx : kAlongPx);
        ASSERT_EQ(surface.sizlBitmap.cx, page.width);
        ASSERT_EQ(surface.sizlBitmap.cy, page.height);
        ASSERT_EQ(surface.cjBits, 597763200u);
        page.Draw(surface);
        PageMemory most = {};
        for (const PageTurn turn : kTurns) {
            SCOPED_TRACE(testing::Message()
                         << "rotate180 " << turn.rotate180 << " mirror " << turn.mirrorImage);
            const PageMemory memory = Send(*device, page, landscape, turn);
            EXPECT_LE(memory.allocated, MostAllocated(landscape));
            EXPECT_LE(memory.grown, MostAllocated(landscape) + kBeyond);
            most = {std::max(most.allocated, memory.allocated), std::max(most.grown, memory.grown)};
        }
        EXPECT_TRUE(device->Intact());
        EXPECT_TRUE(Session().EndDoc(*device));
        std::cout << "largest page, " << (landscape ? "landscape" : "portrait") << ": bitmap "
                  << surface.cjBits / 1024 << " KiB, DrvSendPage allocates at most " << most.allocated / 1024
                  << " KiB and adds " << most.grown / 1024 << " KiB\n";
    }

    // Returns the picture of the landscape page, in which each pixel is the average of a part of the page.
    static std::vector<uint8_t> ExpectedThumbnail(const MarkedPage& page) {
        constexpr size_t kPixels = size_t{kThumbnailWidth} * kThumbnailHeight;
        constexpr uint32_t kPartPixels = kThumbnailPart * kThumbnailPart;
        std::vector<uint32_t> sums(kPixels * 4, 255 * kPartPixels);  // white
        std::vector<int32_t> marks;
        for (int32_t y = 0; y < kThumbnailHeight * kThumbnailPart; ++y) {
            page.MarksOfLine(y, marks);
            std::sort(marks.begin(), marks.end());
            marks.erase(std::unique(marks.begin(), marks.end()), marks.end());
            for (const int32_t x : marks) {
                if (x >= kThumbnailWidth * kThumbnailPart) continue;
                const uint32_t color = page.Color(x, y);
                uint32_t* sum =
                    &sums[static_cast<size_t>(y / kThumbnailPart * kThumbnailWidth + x / kThumbnailPart) * 4];
                for (int byte = 0; byte < 3; ++byte) sum[byte] -= 255 - (color >> 8 * byte & 0xFF);
            }
        }
        std::vector<uint8_t> bytes;
        for (const uint32_t sum : sums) bytes.push_back(static_cast<uint8_t>(sum / kPartPixels));
        return bytes;
    }
};

}  // namespace

TEST_F(LargestPage, PrintsEachPortraitRowInEveryTurnWithinTheMemoryOfABand) {
    SendInEveryTurn(false);
}

TEST_F(LargestPage, PrintsEachLandscapeRowInEveryTurnWithinTheMemoryOfARow) {
    SendInEveryTurn(true);
}

TEST_F(LargestPage, CarriesAThumbnailOfTheWholePage) {
    installation.Write("settings.inf", "[Driver]\nAdd_Thumb=1\n");
    const std::unique_ptr<Device> device = StartPage(LargestMode(true));
    const MarkedPage page(kAlongPx, kAcrossPx);
    page.Draw(*device->Surface());
    engine.onPageStart = [this] { EXPECT_EQ(engine.Output("@PJL COMMENT\n"), 1); };
    const PageMemory memory = Send(*device, page, true, kTurns[0]);
    EXPECT_TRUE(device->Intact());
    EXPECT_TRUE(Session().EndDoc(*device));

    const std::string& header = Printer().written;
    constexpr std::string_view kOpening = "@PJL SET QRV_THUMBNAIL=\"";
    const size_t start = header.find(kOpening);
    ASSERT_NE(start, std::string::npos);
    const size_t text = start + kOpening.size();
    const Picture picture =
        DecodePicture(DecodeBase64(std::string_view(header).substr(text, header.find('"', text) - text)));
    EXPECT_EQ(picture.width, kThumbnailWidth);
    EXPECT_EQ(picture.height, kThumbnailHeight);
    EXPECT_TRUE(picture.rgba == ExpectedThumbnail(page));
    std::cout << "largest page with a thumbnail: DrvSendPage allocates " << memory.allocated / 1024
              << " KiB\n";
}

}  // namespace orvex
