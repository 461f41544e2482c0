#include "engine/row_encoder.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

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

void ExpectRoundTrip(const Row& above, const Row& row) {
    ASSERT_EQ(Decode(above, Encode(above, row)), row);
}

uint8_t AboveBy(uint8_t count) {
    return count;
}
uint8_t RunOf(uint8_t count) {
    return static_cast<uint8_t>(0x40 | count);
}
uint8_t LiteralsOf(uint8_t count) {
    return static_cast<uint8_t>(0x80 | count);
}

}  // namespace

TEST(RowEncoder, MakesOneCommandOfAnUnchangedRow) {
    const Row row = {1, 2, 3, 4, 5};
    EXPECT_EQ(Encode(row, row), Bytes({AboveBy(5)}));
}

TEST(RowEncoder, MakesOneRunOfARowOfOneInkValue) {
    EXPECT_EQ(Encode(Row(9, 0), Row(9, 0x44332211)), Bytes({RunOf(9), 0x11, 0x22, 0x33, 0x44}));
}

TEST(RowEncoder, MakesLiteralsOfNewPixels) {
    EXPECT_EQ(Encode({0, 0}, {0x04030201, 0x08070605}), Bytes({LiteralsOf(2), 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(RowEncoder, PutsCountsUpTo63InTheCommandAndLongerOnesAfterIt) {
    EXPECT_EQ(Encode(Row(63, 7), Row(63, 7)), Bytes({AboveBy(63)}));
    EXPECT_EQ(Encode(Row(64, 7), Row(64, 7)), Bytes({AboveBy(0), 64, 0, 0, 0}));
    EXPECT_EQ(Encode(Row(32768, 0), Row(32768, 1)), Bytes({RunOf(0), 0, 0x80, 0, 0, 1, 0, 0, 0}));
}

TEST(RowEncoder, TakesTheLongerOfAboveAndRun) {
    const Row above = {5, 5, 5, 9, 9};
    EXPECT_EQ(Encode(above, Row({5, 5, 5, 5, 5})), Bytes({RunOf(5), 5, 0, 0, 0}));
    EXPECT_EQ(Encode(above, Row({5, 5, 5, 9, 9})), Bytes({AboveBy(5)}));
}

TEST(RowEncoder, KeepsAMatchOfOnePixelAndARunOfTwoAsLiterals) {
    EXPECT_EQ(Encode({0, 7, 0, 0}, {1, 7, 3, 3}),
              Bytes({LiteralsOf(4), 1, 0, 0, 0, 7, 0, 0, 0, 3, 0, 0, 0, 3, 0, 0, 0}));
}

TEST(RowEncoder, PutsOneCommandAfterTheOther) {
    const Row above = {0, 0, 0, 0, 0, 8, 9};
    const Row row = {1, 6, 6, 6, 2, 8, 9};
    EXPECT_EQ(Encode(above, row), Bytes({LiteralsOf(1), 1, 0, 0, 0, RunOf(3), 6, 0, 0, 0, LiteralsOf(1), 2, 0,
                                         0, 0, AboveBy(2)}));
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
        const uint32_t values = 1 + random() % 5;  // few, so that there are matches and runs
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

TEST(RowEncoder, IsReversibleForRandomBits) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        Row above(1 + random() % 300);
        Row row(above.size());
        for (uint32_t& pixel : above) pixel = static_cast<uint32_t>(random());
        for (uint32_t& pixel : row) pixel = static_cast<uint32_t>(random());
        ExpectRoundTrip(above, row);
    }
}

}  // namespace orvex
