#include "tools/orvexview/page_pictures.h"

#include <gtest/gtest.h>

#include "tests/tools/orvexview/made_files.h"

namespace orvex::tools::view {

namespace {

PrintFile Print300(const Rows& rows, const std::vector<Setting>& settings, uint32_t top = 0) {
    EngineOutput output;
    const uint64_t job = output.StartJob(kMode300Dpi);
    EXPECT_TRUE(PrintPage(job, rows, top));
    HPCRLIB_JobEnd(job);
    return ParsePrintFile(AsBytes(WithLines(output.File(), SettingLines(settings))));
}

Rgb PixelAt(const Picture& picture, uint32_t x, uint32_t y) {
    const uint8_t* pixel = picture.At(x, y);
    return {pixel[0], pixel[1], pixel[2]};
}

Rgb Gray(int level) {
    const auto each = static_cast<uint8_t>(level);
    return {each, each, each};
}

// Returns the amounts of ink that a gray picture shows.
std::vector<int> Amounts(const Picture& ink) {
    std::vector<int> amounts;
    for (const uint8_t sample : ink.samples) amounts.push_back(255 - sample);
    return amounts;
}

// Draws composite and inks of the image, or of the whole block.
PagePictures Draw(const PrintFile& file, uint32_t scale = 1, bool whole = false) {
    const PrintedPage& page = file.pages[0];
    const PagePlacement placement = PlacePage(file, page);
    return DrawPage(InkModel(file.dpi), page, placement,
                    {.area = whole ? WholeBlock(page) : ImageArea(placement),
                     .scale = scale,
                     .composite = true,
                     .inks = true,
                     .turned = !whole && placement.orientation == Orientation::kPortrait});
}

Picture DrawBlack(const PrintFile& file, uint32_t scale = 1) {
    return Draw(file, scale).inks[kBlackInk];
}

const Rgb kSolidBlack = InkModel(300).OnPaper(0x000000FF);

// The label, 3 pixels wide and 4 high:   1  2  3
//                                        4  5  6
//                                        7  8  9
//                                       10 11 12
// Its rightmost column is sent first, from the top down.
const Rows kPortraitRows = {{3, 6, 9, 12}, {2, 5, 8, 11}, {1, 4, 7, 10}};
const std::vector<Setting> kPortrait = {{"ORIGX", 3}, {"ORIGY", 4}};

}  // namespace

TEST(PagePictures, APortraitPageIsTurnedBackAsTheLabelReads) {
    const PrintFile file = Print300(kPortraitRows, kPortrait);
    ASSERT_TRUE(PlacePage(file, file.pages[0]).explained);
    EXPECT_EQ(Amounts(Draw(file, 1, true).inks[kBlackInk]),
              (std::vector<int>{3, 6, 9, 12, 2, 5, 8, 11, 1, 4, 7, 10}));
    const Picture upright = DrawBlack(file);
    EXPECT_EQ(upright.width, 3u);
    EXPECT_EQ(upright.height, 4u);
    EXPECT_EQ(Amounts(upright), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST(PagePictures, ALandscapePageStaysAsItIs) {
    const PrintFile file = Print300({{1, 2, 3}, {4, 5, 6}}, {{"ORIGX", 3}, {"ORIGY", 2}});
    EXPECT_EQ(Amounts(DrawBlack(file)), (std::vector<int>{1, 2, 3, 4, 5, 6}));
}

TEST(PagePictures, ThePurgeBarIsNotPartOfTheImage) {
    const PrintFile file = Print300({{0xFFFFFFFF, 0xFFFFFFFF, 1, 2, 3}, {0, 0, 4, 5, 6}},
                                    {{"ORIGX", 3}, {"ORIGY", 2}, {"PURGEBAR", 1}, {"PURGEDOTS", 2}});
    EXPECT_EQ(Amounts(DrawBlack(file)), (std::vector<int>{1, 2, 3, 4, 5, 6}));
    const PagePictures whole = Draw(file, 1, true);
    EXPECT_EQ(Amounts(whole.inks[kBlackInk]), (std::vector<int>{255, 255, 1, 2, 3, 0, 0, 4, 5, 6}));
    EXPECT_DOUBLE_EQ(whole.means[kBlackInk], 21 / (6 * 255.0)) << "of the image alone";
    EXPECT_EQ(whole.means[kCyanInk], 0);
}

TEST(PagePictures, CompositeAndInksShowTheSameRows) {
    const std::vector<uint32_t> kValues = {0, 0xFF000000, 0x00FF0000, 0x0000FF00, 0x000000FF, 0x04030201};
    const PagePictures pictures = Draw(Print300({kValues}, {}));
    const InkModel model(300);
    for (uint32_t x = 0; x < 6; ++x) {
        EXPECT_EQ(PixelAt(pictures.composite, x, 0), model.OnPaper(kValues[x])) << x;
    }
    EXPECT_EQ(PixelAt(pictures.composite, 0, 0), kPaperWhite);
    EXPECT_NE(PixelAt(pictures.composite, 1, 0), PixelAt(pictures.composite, 2, 0));
    using Samples = std::vector<uint8_t>;
    EXPECT_EQ(pictures.inks[kBlackInk].samples, Samples({255, 255, 255, 255, 0, 254}));
    EXPECT_EQ(pictures.inks[kCyanInk].samples, Samples({255, 255, 255, 0, 255, 253}));
    EXPECT_EQ(pictures.inks[kMagentaInk].samples, Samples({255, 255, 0, 255, 255, 252}));
    EXPECT_EQ(pictures.inks[kYellowInk].samples, Samples({255, 0, 255, 255, 255, 251}));
}

TEST(PagePictures, WhatIsNotAskedForIsEmpty) {
    const PrintFile file = Print300({{0x000000FF}}, {});
    const PagePictures pictures = DrawPage(InkModel(300), file.pages[0], PlacePage(file, file.pages[0]),
                                           {.area = WholeBlock(file.pages[0])});
    EXPECT_EQ(pictures.composite.samples.size() + pictures.block.samples.size(), 0u);
    EXPECT_EQ(pictures.inks[kBlackInk].samples.size(), 0u);
    EXPECT_EQ(pictures.means[kBlackInk], 1);
}

// More rows than are drawn at a time, each other than the one above.
TEST(PagePictures, AllPicturesShowEveryRowOfALongBlock) {
    Rows rows(300, std::vector<uint32_t>(3));
    for (uint32_t row = 0; row < 300; ++row) rows[row] = {row % 256, row % 256 << 8, row % 251};
    const PrintFile file = Print300(rows, {});
    const PrintedPage& page = file.pages[0];
    const PagePictures pictures =
        DrawPage(InkModel(300), page, PlacePage(file, page),
                 {.area = {1, 2, 2, 297}, .composite = true, .inks = true, .blockScale = 1});
    const InkModel model(300);
    for (uint32_t row = 0; row < 300; ++row) {
        for (uint32_t x = 0; x < 3; ++x) {
            const Rgb expected = model.OnPaper(rows[row][x]);
            ASSERT_EQ(PixelAt(pictures.block, x, row), expected) << x << " of row " << row;
            if (x < 1 || row < 2 || row >= 299) continue;
            ASSERT_EQ(PixelAt(pictures.composite, x - 1, row - 2), expected) << x << " of row " << row;
            ASSERT_EQ(*pictures.inks[kBlackInk].At(x - 1, row - 2), model.Gray(rows[row][x], kBlackInk));
        }
    }
}

TEST(PagePictures, PixelsAreAveraged) {
    const PrintFile file = Print300({{0, 20, 100}, {40, 60, 200}}, {});
    const Picture picture = DrawBlack(file, 2);
    EXPECT_EQ(picture.width, 2u);
    EXPECT_EQ(picture.height, 1u);
    EXPECT_EQ(Amounts(picture), (std::vector<int>{30, 150}));
    const Picture composite = Draw(file, 2).composite;
    const InkModel model(300);
    const int sum = 255 + model.OnPaper(20).red + model.OnPaper(40).red + model.OnPaper(60).red;
    EXPECT_EQ(PixelAt(composite, 0, 0), Gray((sum + 2) / 4));
}

namespace {

constexpr size_t kMost = size_t{64} << 20;

}  // namespace

TEST(Bands, ASmallPictureIsOneBand) {
    const Drawing drawing = {.area = {5, 6, 7000, 5000}, .scale = 5, .composite = true, .inks = true};
    const std::vector<BlockArea> bands = Bands(drawing, kMost);
    ASSERT_EQ(bands.size(), 1u);
    EXPECT_EQ(bands[0].left, 5u);
    EXPECT_EQ(bands[0].top, 6u);
    EXPECT_EQ(bands[0].width, 7000u);
    EXPECT_EQ(bands[0].rows, 5000u);
}

// The bands of the largest block follow each other without a gap, and none takes more memory than it may.
TEST(Bands, ALargePictureIsManyBandsOfItsLines) {
    for (const bool turned : {false, true}) {
        for (const uint32_t scale : {1u, 3u}) {
            const BlockArea area = {10, 20, 32768, 16384};
            uint32_t next = turned ? area.left : area.top;
            for (const BlockArea& band :
                 Bands({.area = area, .scale = scale, .composite = true, .inks = true, .turned = turned},
                       kMost)) {
                EXPECT_EQ(turned ? band.left : band.top, next);
                EXPECT_EQ(turned ? band.rows : band.width, turned ? area.rows : area.width);
                const uint32_t size = turned ? band.width : band.rows;
                next += size;
                EXPECT_LE(uint64_t{band.width / scale} * (band.rows / scale) * 7, kMost);
                EXPECT_TRUE(size % scale == 0 ||
                            next == (turned ? area.left + area.width : area.top + area.rows));
            }
            EXPECT_EQ(next, turned ? area.left + area.width : area.top + area.rows);
        }
    }
}

TEST(Bands, APageThatIsNotDrawnTakesOnePass) {
    EXPECT_EQ(Bands({.area = {0, 0, 32768, 16384}}, kMost).size(), 1u);
}

}  // namespace orvex::tools::view
