#include "driver/render/page_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/kit/allocation_failure.h"
#include "tests/plain/page_order.h"

namespace orvex {

namespace {

constexpr uint32_t kColorBits = 0x00FFFFFF;

// A bitmap of random pixels in a heap block that ends with its last scan line.
struct Page {
    Page(int32_t w, int32_t h, int32_t bytesPerPixel, ptrdiff_t padding = 0)
        : width(w), height(h), pixelBytes(bytesPerPixel), stride(w * bytesPerPixel + padding) {
        std::mt19937 random(static_cast<uint32_t>(w * 7919 + h * 31 + bytesPerPixel));
        bytes.resize(h > 0 ? static_cast<size_t>(stride * h) : 0);
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    }

    PageBitmap Bitmap() const { return {Line(0), width, height, bottomUp ? -stride : stride, pixelBytes}; }

    uint32_t Pixel(int32_t x, int32_t y) const {
        uint32_t pixel = 0;
        memcpy(&pixel, Line(y) + x * pixelBytes, static_cast<size_t>(pixelBytes));
        return pixel & kColorBits;
    }

    const uint8_t* Line(int32_t y) const { return bytes.data() + (bottomUp ? height - 1 - y : y) * stride; }

    int32_t width, height, pixelBytes;
    ptrdiff_t stride;
    std::vector<uint8_t> bytes;
    bool bottomUp = false;  // the last scan line comes first in memory
};

void ExpectRows(const Page& page, RowOrder order) {
    RowReader reader(page.Bitmap(), order);
    ASSERT_TRUE(reader);
    ASSERT_EQ(reader.RowCount(), order.landscape ? page.height : page.width);
    ASSERT_EQ(reader.RowWidth(), order.landscape ? page.width : page.height);
    for (int32_t row = 0; row < reader.RowCount(); ++row) {
        const uint32_t* pixels = reader.Row(row);
        for (int32_t i = 0; i < reader.RowWidth(); ++i) {
            ASSERT_EQ(pixels[i] & kColorBits, plain::PagePixel(page, order, row, i))
                << "row " << row << " pixel " << i;
        }
    }
}

std::string Name(RowOrder order) {
    return std::string(order.landscape ? "landscape" : "portrait") + (order.rotate180 ? " rotated" : "") +
           (order.mirrorImage ? " mirrored" : "");
}

std::vector<RowOrder> AllOrders() {
    std::vector<RowOrder> orders;
    for (int i = 0; i < 8; ++i) orders.push_back({(i & 4) != 0, (i & 2) != 0, (i & 1) != 0});
    return orders;
}

}  // namespace

TEST(PageRows, ComeInEveryOrderForPagesOfManySizes) {
    for (const RowOrder order : AllOrders()) {
        for (const int32_t width : {1, 2, 3, 15, 16, 17, 31, 32, 33, 64, 100}) {
            for (const int32_t height : {1, 2, 3, 4, 5, 7, 8, 37}) {
                SCOPED_TRACE(Name(order) + " " + std::to_string(width) + "x" + std::to_string(height));
                ExpectRows(Page(width, height, 4), order);
                ExpectRows(Page(width, height, 3), order);
            }
        }
    }
}

TEST(PageRows, ComeInEveryOrderForPagesOfSeveralBands) {
    for (const RowOrder order : AllOrders()) {
        for (const int32_t width : {127, 128, 129, 130, 192, 193}) {
            for (const int32_t height : {47, 48, 49}) {
                SCOPED_TRACE(Name(order) + " " + std::to_string(width) + "x" + std::to_string(height));
                ExpectRows(Page(width, height, 4), order);
                ExpectRows(Page(width, height, 3), order);
            }
        }
    }
}

TEST(PageRows, OfABottomUpBitmapComeFromItsTopScanLine) {
    for (const RowOrder order : AllOrders()) {
        for (const int32_t bytesPerPixel : {3, 4}) {
            SCOPED_TRACE(Name(order) + " of " + std::to_string(bytesPerPixel) + " bytes");
            Page page(131, 21, bytesPerPixel, 4);
            page.bottomUp = true;
            ExpectRows(page, order);
        }
    }
}

TEST(PageRows, SkipThePaddingOfScanLines) {
    for (const RowOrder order : AllOrders()) {
        SCOPED_TRACE(Name(order));
        ExpectRows(Page(37, 19, 4, 12), order);
        ExpectRows(Page(37, 19, 3, 1), order);
        ExpectRows(Page(37, 19, 4, 1), order);  // pixels that are not aligned
    }
}

TEST(PageRows, CanBeReadInAnyOrderAndAgain) {
    const Page page(50, 21, 4);
    const RowOrder order = {false, true, true};
    RowReader reader(page.Bitmap(), order);
    for (const int32_t row : {0, 49, 0, 17, 33, 1, 0, 48}) {
        const uint32_t* pixels = reader.Row(row);
        for (int32_t i = 0; i < reader.RowWidth(); ++i) {
            ASSERT_EQ(pixels[i] & kColorBits, plain::PagePixel(page, order, row, i))
                << "row " << row << " pixel " << i;
        }
    }
}

TEST(PageRows, OfARotatedMirroredPortraitPageBeginAfterTheLastColumn) {
    const Page page(5, 3, 4);
    RowReader reader(page.Bitmap(), {false, true, true});
    const uint32_t* first = reader.Row(0);
    EXPECT_EQ(first[0] & kColorBits, 0xFFFFFFu);  // nothing follows the last scan line
    EXPECT_EQ(first[1] & kColorBits, page.Pixel(0, 2));
    EXPECT_EQ(first[2] & kColorBits, page.Pixel(0, 1));
    const uint32_t* second = reader.Row(1);
    EXPECT_EQ(second[0] & kColorBits, page.Pixel(4, 2));
}

TEST(PageRows, HaveAZeroFourthByteForPixelsOf24Bits) {
    const Page page(3, 2, 3);
    RowReader reader(page.Bitmap(), {true, false, false});
    EXPECT_EQ(reader.Row(1)[2], page.Pixel(2, 1));
}

TEST(PageRows, DoNotExistOnAnEmptyPage) {
    for (const RowOrder order : AllOrders()) {
        RowReader reader(Page(0, 0, 4).Bitmap(), order);
        EXPECT_TRUE(reader);
        EXPECT_EQ(reader.RowCount(), 0);
    }
}

// Returns the bytes between two rows of a band: four for each pixel, in an odd number of cache lines.
size_t RowBytes(int32_t pixels) {
    const size_t lines = static_cast<size_t>(pixels + 15) / 16;
    return 64 * (lines + (lines % 2 == 0 ? 1 : 0));
}

TEST(PageRows, TakeTheMemoryOf64ColumnsOrOneScanLine) {
    for (const int32_t side : {1, 15, 16, 17, 100}) {
        for (const RowOrder order : AllOrders()) {
            const Page page(side, side, 4);
            const AllocationFailure memory((order.landscape ? 1 : 64) * RowBytes(side));
            EXPECT_FALSE(RowReader(page.Bitmap(), order));
            EXPECT_EQ(memory.Count(), 1) << Name(order) << " " << side;
        }
    }
}

TEST(PageRows, OfAnEmptyPageTakeNoMemory) {
    for (const auto& [width, height] : {std::pair{0, 0}, {0, 5}, {5, 0}}) {
        for (const RowOrder order : AllOrders()) {
            const AllocationFailure memory(order.landscape ? RowBytes(width) : 64 * RowBytes(height));
            EXPECT_TRUE(RowReader(Page(width, height, 4).Bitmap(), order));
            EXPECT_EQ(memory.Count(), 0) << Name(order) << " " << width << " " << height;
        }
    }
}

TEST(PageRows, OfAPlainLandscapePageLieInTheBitmapItself) {
    const Page page(8, 2, 4);
    RowReader reader(page.Bitmap(), {true, false, false});
    EXPECT_EQ(static_cast<const void*>(reader.Row(1)), page.bytes.data() + page.stride);
}

TEST(PageRows, RepeatOnlyWithThePixelsOfTheRowBefore) {
    for (const RowOrder order : AllOrders()) {
        for (const int32_t bytesPerPixel : {3, 4}) {
            SCOPED_TRACE(Name(order) + " " + std::to_string(bytesPerPixel));
            // Lines or columns come in threes that are alike.
            Page page(70, 41, bytesPerPixel);
            for (int32_t y = 0; y < page.height; ++y) {
                for (int32_t x = 0; x < page.width; ++x) {
                    memset(page.bytes.data() + y * page.stride + x * bytesPerPixel,
                           order.landscape ? y / 3 : x / 3, static_cast<size_t>(bytesPerPixel));
                }
            }
            RowReader reader(page.Bitmap(), order);
            std::vector<uint32_t> before;
            int32_t repeated = 0;
            for (int32_t row = 0; row < reader.RowCount(); ++row) {
                const uint32_t* pixels = reader.Row(row);
                const std::vector<uint32_t> now(pixels, pixels + reader.RowWidth());
                if (reader.Repeats()) {
                    ++repeated;
                    ASSERT_EQ(now, before) << "row " << row;
                }
                before = now;
            }
            EXPECT_GT(repeated, reader.RowCount() / 2);
        }
    }
}

TEST(PageRows, DoNotRepeatARowOfAnotherBand) {
    // The columns have two colors, so a column is often like one in the next band.
    Page page(400, 20, 4);
    std::mt19937 random(1);
    std::vector<uint8_t> colors(400);
    for (uint8_t& color : colors) color = random() % 2 == 0 ? 0x11 : 0x77;
    for (size_t i = 0; i < page.bytes.size(); ++i) page.bytes[i] = colors[i / 4 % 400];
    for (const RowOrder order : AllOrders()) {
        if (order.landscape) continue;
        RowReader reader(page.Bitmap(), order);
        uint32_t before = 0;
        for (int32_t row = 0; row < reader.RowCount(); ++row) {
            const uint32_t now = reader.Row(row)[1] & kColorBits;
            ASSERT_TRUE(!reader.Repeats() || now == before) << Name(order) << " row " << row;
            before = now;
        }
    }
}

TEST(PageRows, AfterTheLastColumnNeverRepeatAndAreNeverMistakenForOthers) {
    Page page(80, 20, 4);
    std::fill(page.bytes.begin(), page.bytes.end(), uint8_t{0x5A});
    for (int32_t y = 0; y < page.height; ++y) memset(page.bytes.data() + y * page.stride, 0x11, 4);
    const RowOrder order = {false, true, true};
    RowReader reader(page.Bitmap(), order);
    // Row 16 is column 64, the first one of its band.
    for (const int32_t row : {15, 14, 0, 16, 0, 16}) {
        const uint32_t* pixels = reader.Row(row);
        for (int32_t i = 0; i < reader.RowWidth(); ++i) {
            ASSERT_EQ(pixels[i] & kColorBits, plain::PagePixel(page, order, row, i)) << row;
        }
        EXPECT_EQ(reader.Repeats(), row == 14);
    }
}

TEST(PageRows, ThatDifferInOnePixelDoNotRepeat) {
    for (const RowOrder order : AllOrders()) {
        for (int32_t place = 0; place < 40; ++place) {
            SCOPED_TRACE(Name(order) + " " + std::to_string(place));
            Page page(40, 40, 4);
            std::fill(page.bytes.begin(), page.bytes.end(), uint8_t{0});
            const int32_t x = order.landscape ? place : 20, y = order.landscape ? 20 : place;
            page.bytes[static_cast<size_t>(y * page.stride + x * 4)] = 1;
            RowReader reader(page.Bitmap(), order);
            uint32_t sumBefore = 0;
            for (int32_t row = 0; row < reader.RowCount(); ++row) {
                const uint32_t* pixels = reader.Row(row);
                uint32_t sum = 0;
                for (int32_t i = 0; i < reader.RowWidth(); ++i) sum += pixels[i] & kColorBits;
                if (sum != sumBefore) {
                    ASSERT_FALSE(reader.Repeats()) << "row " << row;
                }
                sumBefore = sum;
            }
        }
    }
}

TEST(PageRows, OfUnalignedScanLinesRepeatToo) {
    Page page(27, 32, 4, 6);
    std::fill(page.bytes.begin(), page.bytes.end(), uint8_t{0x5A});
    for (const RowOrder order : AllOrders()) {
        SCOPED_TRACE(Name(order));
        ExpectRows(page, order);
    }
}

}  // namespace orvex
