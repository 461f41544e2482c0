#include "engine/print_stream.h"

#include <gtest/gtest.h>

#include <random>

#include "engine/row_encoder.h"
#include "tests/engine/engine_output.h"

namespace orvex {

using namespace std::string_literals;

namespace {

uint8_t FirstAndLastThree(const std::string& chunk) {
    uint32_t sum = 0;
    for (size_t i = 0; i < 3; ++i) {
        sum += static_cast<uint8_t>(chunk[i]) + static_cast<uint8_t>(chunk[chunk.size() - 1 - i]);
    }
    return static_cast<uint8_t>(sum);
}

// Returns rows that do not compress.
Rows Noise(uint32_t rows, uint32_t width) {
    std::mt19937 random(11);
    Rows noise(rows, std::vector<uint32_t>(width));
    for (auto& row : noise) {
        for (uint32_t& pixel : row) pixel = static_cast<uint32_t>(random());
    }
    return noise;
}

}  // namespace

TEST(PrintStream, HasTheseChunksForASmallJob) {
    const EngineOutput output = PrintJob({{{1, 1, 1}, {1, 1, 1}}});
    const std::string row = "\x43\x01\x00\x00\x00\x03"s;
    const std::vector<std::string> expected = {
        "FRMSTANDIN\x01\x00\x1A"s,
        "\x1B%-12345X@PJL\n"
        "@PJL COMMENT \"Stand-in print stream 1. Made for inspection and tests; a printer does not read "
        "it.\"\n"
        "@PJL ENTER LANGUAGE=STANDIN\n",
        MakeRecord('J', {1, 1}) + "\x1B*o0M" + MakeRecord('P', {1, 2472, 86616}),
        MakeRecord('B', {0, 3, 2}),
        MakeRecord('R', row) + MakeRecord('b', {2}),
        MakeRecord('p', {1}),
        MakeRecord('j', {1}) + "\x1B%-12345X",
    };
    EXPECT_EQ(output.chunks, expected);
}

TEST(PrintStream, HasOneOpeningForAllPages) {
    const EngineOutput output = PrintJob({{{1}}, {{2}}});
    ASSERT_EQ(output.chunks.size(), 11u);
    EXPECT_EQ(output.chunks[6], "\x1B*o0M" + MakeRecord('P', {2, 2424, 86616}));
    EXPECT_EQ(output.chunks[9], MakeRecord('p', {2}));
    EXPECT_EQ(output.chunks[10], MakeRecord('j', {2}) + "\x1B%-12345X");
}

TEST(PrintStream, HasAResolutionCommandFor600DpiAndOneForAnyOther) {
    EXPECT_NE(PrintJob({{{1}}}, 1).chunks[2].find("\x1B*o0M"), std::string::npos);
    EXPECT_NE(PrintJob({{{1}}}, 0).chunks[2].find("\x1B*o-1M"), std::string::npos);
    EXPECT_NE(PrintJob({{{1}}}, 2).chunks[2].find("\x1B*o-1M"), std::string::npos);
}

// The driver drops leading chunks longer than 6 bytes whose first and last three bytes add up to 0 modulo
// 256.
TEST(PrintStream, HasOneChunkThatLooksLikeFraming) {
    const EngineOutput output = PrintJob({{{1}}});
    EXPECT_GT(output.chunks[0].size(), 6u);
    EXPECT_EQ(FirstAndLastThree(output.chunks[0]), 0);
    EXPECT_NE(FirstAndLastThree(output.chunks[1]), 0);
}

TEST(PrintStream, HasEachRowsRecordAsSoonAsItHas32Kib) {
    constexpr uint32_t kWidth = 1000;
    constexpr size_t kRowSize = row_code::MaxEncodedRowSize(kWidth);
    constexpr size_t kRowsPerChunk = (32 * 1024 + kRowSize - 1) / kRowSize;
    const Rows rows = Noise(20, kWidth);
    EngineOutput output;
    const uint64_t job = output.StartJob();
    ASSERT_EQ(StartFittingPage(job, kWidth, 20), 1u);
    ASSERT_EQ(HPCRLIB_RasterBlockStart(job, 0, 0, kWidth, 20), 1u);
    const size_t before = output.chunks.size();
    for (size_t row = 0; row < rows.size(); ++row) {
        ASSERT_EQ(HPCRLIB_RasterRow(job, rows[row].data()), 1u);
        EXPECT_EQ(output.chunks.size(), before + (row + 1) / kRowsPerChunk) << "row " << row;
    }
    EXPECT_EQ(output.chunks.back().size(), kRowsPerChunk * kRowSize + 9);
    EXPECT_EQ(output.chunks.back()[0], 'R');
    EXPECT_EQ(HPCRLIB_RasterBlockEnd(job), 1u);
    EXPECT_EQ(HPCRLIB_PageEnd(job), 1u);
    EXPECT_EQ(HPCRLIB_JobEnd(job), 1u);
}

TEST(PrintStream, HasNoEmptyRecordAfterAFullOne) {
    constexpr uint32_t kWidth = 8191;  // 32 KiB + 1 with the command
    const EngineOutput output = PrintJob({Noise(1, kWidth)});
    ASSERT_EQ(output.chunks.size(), 8u);
    EXPECT_EQ(output.chunks[4].size(), 32u * 1024 + 1 + 9);
    EXPECT_EQ(output.chunks[5], MakeRecord('b', {1}));
}

TEST(PrintStream, HasTheFirstRowOfEveryBlockEncodedAgainstNoInk) {
    const EngineOutput output = PrintJob({{{5, 5}}, {{5, 5}}, {{0, 0}}});
    const std::string literals = "\x82\x05\x00\x00\x00\x05\x00\x00\x00"s;
    EXPECT_EQ(output.chunks[4], MakeRecord('R', literals) + MakeRecord('b', {1}));
    EXPECT_EQ(output.chunks[8], MakeRecord('R', literals) + MakeRecord('b', {1}));
    EXPECT_EQ(output.chunks[12], MakeRecord('R', "\x02") + MakeRecord('b', {1}));
}

TEST(PrintStream, HasAdler32Checksums) {
    const std::string text = "Wikipedia";
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    EXPECT_EQ(print_stream::Adler32(bytes, text.size()), 0x11E60398u);
    const std::string large(100'000, '\xFF');
    const auto* largeBytes = reinterpret_cast<const uint8_t*>(large.data());
    EXPECT_EQ(print_stream::Adler32(largeBytes, large.size()), Checksum(large));
    const uint32_t half = print_stream::Adler32(largeBytes, 50'000);
    EXPECT_EQ(print_stream::Adler32(largeBytes + 50'000, 50'000, half), Checksum(large));
}

TEST(PrintStream, TakesTheHeadForElevenPointSevenInchesWide) {
    EXPECT_EQ(print_stream::HeadRows(0), 3510u);
    EXPECT_EQ(print_stream::HeadRows(1), 7020u);
    EXPECT_EQ(print_stream::HeadRows(2), 1755u);
    EXPECT_EQ(print_stream::UnitsPerPixel(0), 24u);
    EXPECT_EQ(print_stream::UnitsPerPixel(1), 12u);
}

}  // namespace orvex
