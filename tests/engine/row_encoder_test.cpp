#include "engine/row_encoder.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/plain/row_code.h"
#include "tools/orvexview/row_decoder.h"

namespace orvex {

using tools::view::DecodeRow;

namespace {

using Row = std::vector<uint32_t>;
using Bytes = std::vector<uint8_t>;

// Encodes into memory of exactly the size that must suffice.
Bytes Encode(const Row& above, const Row& row) {
    const auto width = static_cast<uint32_t>(row.size());
    Bytes code(row_code::MaxEncodedRowSize(width));
    code.resize(EncodeRow(above.data(), row.data(), width, code.data()));
    return code;
}

Row Decode(const Row& above, const Bytes& code) {
    Row row = above;
    std::span<const uint8_t> rest = code;
    const char* complaint = DecodeRow(rest, row);
    EXPECT_EQ(complaint, nullptr) << complaint;
    EXPECT_TRUE(rest.empty());
    return row;
}

// Verifies the code of a row, and that it is decoded to the row.
void ExpectRoundTrip(const Row& above, const Row& row) {
    const Bytes code = Encode(above, row);
    ASSERT_EQ(code, plain::EncodedRow(above, row));
    ASSERT_EQ(Decode(above, code), row);
}

// The commands; a count from 1 to 63 is added to them.
constexpr uint8_t kAbove = 0x00;
constexpr uint8_t kRun = 0x40;
constexpr uint8_t kLiterals = 0x80;

}  // namespace

TEST(RowEncoder, MakesOneCommandOfAnUnchangedRow) {
    const Row row = {1, 2, 3, 4, 5};
    EXPECT_EQ(Encode(row, row), Bytes({kAbove + 5}));
}

TEST(RowEncoder, MakesOneRunOfARowOfOneInkValue) {
    EXPECT_EQ(Encode(Row(9, 0), Row(9, 0x44332211)), Bytes({kRun + 9, 0x11, 0x22, 0x33, 0x44}));
}

TEST(RowEncoder, MakesLiteralsOfNewPixels) {
    EXPECT_EQ(Encode({0, 0}, {0x04030201, 0x08070605}), Bytes({kLiterals + 2, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(RowEncoder, PutsCountsUpTo63InTheCommandAndLongerOnesAfterIt) {
    EXPECT_EQ(Encode(Row(63, 7), Row(63, 7)), Bytes({kAbove + 63}));
    EXPECT_EQ(Encode(Row(64, 7), Row(64, 7)), Bytes({kAbove + 0, 64, 0, 0, 0}));
    EXPECT_EQ(Encode(Row(32768, 0), Row(32768, 1)), Bytes({kRun + 0, 0, 0x80, 0, 0, 1, 0, 0, 0}));
}

TEST(RowEncoder, TakesTheLongerOfAboveAndRun) {
    const Row above = {5, 5, 5, 9, 9};
    EXPECT_EQ(Encode(above, Row({5, 5, 5, 5, 5})), Bytes({kRun + 5, 5, 0, 0, 0}));
    EXPECT_EQ(Encode(above, Row({5, 5, 5, 9, 9})), Bytes({kAbove + 5}));
}

TEST(RowEncoder, KeepsAMatchOfOnePixelAndARunOfTwoAsLiterals) {
    EXPECT_EQ(Encode({0, 7, 0, 0}, {1, 7, 3, 3}),
              Bytes({kLiterals + 4, 1, 0, 0, 0, 7, 0, 0, 0, 3, 0, 0, 0, 3, 0, 0, 0}));
}

TEST(RowEncoder, PutsOneCommandAfterTheOther) {
    const Row above = {0, 0, 0, 0, 0, 8, 9};
    const Row row = {1, 6, 6, 6, 2, 8, 9};
    EXPECT_EQ(Encode(above, row), Bytes({kLiterals + 1, 1, 0, 0, 0, kRun + 3, 6, 0, 0, 0, kLiterals + 1, 2, 0,
                                         0, 0, kAbove + 2}));
}

TEST(RowEncoder, NeedsTheLargestSizeForARowOfDifferentPixels) {
    Row row(1000);
    for (uint32_t i = 0; i < row.size(); ++i) row[i] = i + 1;
    const Bytes code = Encode(Row(1000, 0), row);
    EXPECT_EQ(code.size(), row_code::MaxEncodedRowSize(1000));
    EXPECT_EQ(Decode(Row(1000, 0), code), row);
}

// Short literals between the shortest runs and matches are the worst case. The sanitizers detect a write past
// the memory that must suffice.
TEST(RowEncoder, NeverNeedsMoreThanTheLargestSize) {
    for (uint32_t width = 1; width <= 40; ++width) {
        for (uint32_t literals = 1; literals <= 5; ++literals) {
            for (uint32_t same = 1; same <= 4; ++same) {
                Row above(width, 0);
                Row row(width);
                for (uint32_t i = 0; i < width; ++i) {
                    row[i] = i % (literals + same) < literals ? i + 1 : 0xFFFFFFFF;
                    if (width % 2) above[i] = row[i] == 0xFFFFFFFF ? row[i] : 0;
                }
                ExpectRoundTrip(above, row);
            }
        }
    }
}

TEST(RowEncoder, IsReversibleForEveryRowOfFourPixelsOfThreeValues) {
    const auto rowOf = [](int number) {
        Row row(4);
        for (uint32_t& pixel : row) {
            pixel = static_cast<uint32_t>(number % 3);
            number /= 3;
        }
        return row;
    };
    for (int above = 0; above < 81; ++above) {
        for (int row = 0; row < 81; ++row) ExpectRoundTrip(rowOf(above), rowOf(row));
    }
}

TEST(RowEncoder, IsReversibleForRandomRows) {
    std::mt19937 random(20240521);
    for (int round = 0; round < 3000; ++round) {
        const uint32_t width = 1 + random() % 400;
        const uint32_t values = round % 10 ? 1 + random() % 5 : UINT32_MAX;  // few make matches and runs
        const uint32_t stay = random() % 100;
        Row above(width);
        Row row(width);
        for (uint32_t i = 0; i < width; ++i) {
            above[i] = random() % values * 0x01010101u;
            row[i] = i > 0 && random() % 100 < stay ? row[i - 1] : random() % values * 0x01010101u;
            if (random() % 100 < stay) row[i] = above[i];
        }
        ExpectRoundTrip(above, row);
    }
}

}  // namespace orvex
