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

Picture DrawBlack(const PrintFile& file, const BlockArea& area, uint32_t scale = 1) {
    return DrawInk(file, file.pages[0], area, scale, kBlackInk);
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
    const PagePlacement placement = PlacePage(file, file.pages[0]);
    ASSERT_TRUE(placement.explained);
    const Picture sent = DrawBlack(file, ImageArea(placement));
    EXPECT_EQ(Amounts(sent), (std::vector<int>{3, 6, 9, 12, 2, 5, 8, 11, 1, 4, 7, 10}));
    const Picture upright = Upright(sent, placement);
    EXPECT_EQ(upright.width, 3u);
    EXPECT_EQ(upright.height, 4u);
    EXPECT_EQ(Amounts(upright), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST(PagePictures, ALandscapePageStaysAsItIs) {
    const PrintFile file = Print300({{1, 2, 3}, {4, 5, 6}}, {{"ORIGX", 3}, {"ORIGY", 2}});
    const PagePlacement placement = PlacePage(file, file.pages[0]);
    const Picture upright = Upright(DrawBlack(file, ImageArea(placement)), placement);
    EXPECT_EQ(Amounts(upright), (std::vector<int>{1, 2, 3, 4, 5, 6}));
}

TEST(PagePictures, ThePurgeBarIsNotPartOfTheImage) {
    const PrintFile file = Print300({{0xFFFFFFFF, 0xFFFFFFFF, 1, 2, 3}, {0, 0, 4, 5, 6}},
                                    {{"ORIGX", 3}, {"ORIGY", 2}, {"PURGEBAR", 1}, {"PURGEDOTS", 2}});
    const PagePlacement placement = PlacePage(file, file.pages[0]);
    EXPECT_EQ(Amounts(DrawBlack(file, ImageArea(placement))), (std::vector<int>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(Amounts(DrawBlack(file, WholeBlock(file.pages[0]))),
              (std::vector<int>{255, 255, 1, 2, 3, 0, 0, 4, 5, 6}));
}

TEST(PagePictures, CompositeAndInksShowTheSameRows) {
    const std::vector<uint32_t> kValues = {0, 0xFF000000, 0x00FF0000, 0x0000FF00, 0x000000FF, 0x04030201};
    const PrintFile file = Print300({kValues}, {});
    const BlockArea area = WholeBlock(file.pages[0]);
    const Picture composite = DrawComposite(file, file.pages[0], area, 1);
    const InkModel model(300);
    for (uint32_t x = 0; x < 6; ++x) EXPECT_EQ(PixelAt(composite, x, 0), model.OnPaper(kValues[x])) << x;
    EXPECT_EQ(PixelAt(composite, 0, 0), kPaperWhite);
    EXPECT_NE(PixelAt(composite, 1, 0), PixelAt(composite, 2, 0));
    using Samples = std::vector<uint8_t>;
    EXPECT_EQ(DrawInk(file, file.pages[0], area, 1, kBlackInk).samples,
              Samples({255, 255, 255, 255, 0, 254}));
    EXPECT_EQ(DrawInk(file, file.pages[0], area, 1, kCyanInk).samples, Samples({255, 255, 255, 0, 255, 253}));
    EXPECT_EQ(DrawInk(file, file.pages[0], area, 1, kMagentaInk).samples,
              Samples({255, 255, 0, 255, 255, 252}));
    EXPECT_EQ(DrawInk(file, file.pages[0], area, 1, kYellowInk).samples,
              Samples({255, 0, 255, 255, 255, 251}));
}

TEST(PagePictures, PixelsAreAveraged) {
    const PrintFile file = Print300({{0, 20, 100}, {40, 60, 200}}, {});
    const Picture picture = DrawBlack(file, WholeBlock(file.pages[0]), 2);
    EXPECT_EQ(picture.width, 2u);
    EXPECT_EQ(picture.height, 1u);
    EXPECT_EQ(Amounts(picture), (std::vector<int>{30, 150}));
    const Picture composite = DrawComposite(file, file.pages[0], WholeBlock(file.pages[0]), 2);
    const InkModel model(300);
    const int sum = 255 + model.OnPaper(20).red + model.OnPaper(40).red + model.OnPaper(60).red;
    EXPECT_EQ(PixelAt(composite, 0, 0), Gray((sum + 2) / 4));
}

// The head is 3510 rows wide at 300 dpi.
TEST(LayoutPicture, ShowsTheBlockInItsPlaceOnTheHead) {
    const PrintFile file = Print300({{255, 0, 0, 255}, {0, 0, 0, 0}}, {{"ORIGX", 4}, {"ORIGY", 2}}, 3508);
    const PagePlacement placement = PlacePage(file, file.pages[0]);
    EXPECT_EQ(LayoutLength(file.pages[0], placement), 3510u);
    const Picture layout = DrawLayout(file, file.pages[0], placement, 1);
    constexpr uint32_t kM = kLayoutMargin;
    EXPECT_EQ(layout.width, 4 + 2 * kM);
    EXPECT_EQ(layout.height, 3511 + 2 * kM);
    EXPECT_EQ(PixelAt(layout, kM, kM - 1), kPaperWhite) << "above the head";
    EXPECT_EQ(PixelAt(layout, kM, kM), kHeadColor) << "the head's first row";
    EXPECT_EQ(PixelAt(layout, kM, kM + 3506), kHeadColor);
    EXPECT_EQ(PixelAt(layout, kM, kM + 3507), kImageOutline);
    EXPECT_EQ(PixelAt(layout, kM - 1, kM + 3508), kImageOutline);
    EXPECT_EQ(PixelAt(layout, kM, kM + 3508), kSolidBlack) << "the image's first pixel";
    EXPECT_EQ(PixelAt(layout, kM + 1, kM + 3508), kPaperWhite);
    EXPECT_EQ(PixelAt(layout, kM + 3, kM + 3508), kSolidBlack);
    EXPECT_EQ(PixelAt(layout, kM + 4, kM + 3508), kImageOutline);
    EXPECT_EQ(PixelAt(layout, kM, kM + 3509), kPaperWhite);
    EXPECT_EQ(PixelAt(layout, kM, kM + 3510), kImageOutline);
    EXPECT_EQ(PixelAt(layout, 0, kM + 3509), kHeadColor) << "the head's last row";
    EXPECT_EQ(PixelAt(layout, 0, kM + 3510), kPaperWhite);
}

TEST(LayoutPicture, HasTicksEveryTenMillimetersAndLongerOnesEveryFifty) {
    const PrintFile file = Print300({{0}}, {{"ORIGX", 1}, {"ORIGY", 1}});
    const Picture layout = DrawLayout(file, file.pages[0], PlacePage(file, file.pages[0]), 1);
    const auto tickLength = [&](uint32_t mm) {
        const uint32_t y = kLayoutMargin + mm * 3000 / 254;
        uint32_t length = 0;
        while (PixelAt(layout, length, y) == kTickColor) ++length;
        EXPECT_EQ(PixelAt(layout, layout.width - 1, y), length > 0 ? kTickColor : kHeadColor);
        return length;
    };
    EXPECT_EQ(tickLength(5), 0u);
    EXPECT_EQ(tickLength(10), 6u);
    EXPECT_EQ(tickLength(50), 12u);
    EXPECT_EQ(tickLength(290), 6u);
}

// There are fill rows with the wet-nozzle pattern before and after the image, and a purge bar before each
// row.
TEST(LayoutPicture, ShowsFillRowsAndPurgeBarOnColoredPaper) {
    const uint32_t dot = 0xFFFFFFFF;
    Rows rows(3510, {dot, 0x00000033, 0});
    rows[1755] = {0, 0x000000FF, 0};
    const std::vector<Setting> settings = {{"ORIGX", 2},    {"ORIGY", 2},     {"FULLWIDTH", 1}, {"KWS", 1},
                                           {"PURGEBAR", 1}, {"PURGEDOTS", 1}, {"ALIGN", 1}};
    const PrintFile file = Print300(rows, settings);
    const PagePlacement placement = PlacePage(file, file.pages[0], Orientation::kLandscape);
    ASSERT_TRUE(placement.explained);
    ASSERT_EQ(placement.imageTop, 1754u);
    const Picture layout = DrawLayout(file, file.pages[0], placement, 1);
    constexpr uint32_t kM = kLayoutMargin;
    EXPECT_EQ(PixelAt(layout, kM, kM), Gray(0)) << "purge dot";
    EXPECT_EQ(PixelAt(layout, kM + 2, kM), kFillPaper);
    EXPECT_EQ(PixelAt(layout, kM + 1, kM), (Rgb{182, 196, 211})) << "some black on the paper of fill rows";
    EXPECT_EQ(PixelAt(layout, kM + 2, kM + 1752), kFillPaper);
    EXPECT_EQ(PixelAt(layout, kM + 2, kM + 1754), kPaperWhite);
    EXPECT_EQ(PixelAt(layout, kM + 1, kM + 1755), kSolidBlack);
    EXPECT_EQ(PixelAt(layout, kM + 2, kM + 1755), kPaperWhite);
    EXPECT_EQ(PixelAt(layout, kM, kM + 1755), kImageOutline) << "over the gap beside the image";
    EXPECT_EQ(PixelAt(layout, kM + 2, kM + 1757), kFillPaper);
    EXPECT_EQ(PixelAt(layout, kM + 2, kM + 3509), kFillPaper);
}

TEST(LayoutPicture, TintsTheGapOfThePurgeBar) {
    const PrintFile file =
        Print300({{0, 0, 0, 255}}, {{"ORIGX", 1}, {"ORIGY", 1}, {"PURGEBAR", 1}, {"PURGEDOTS", 3}});
    const Picture layout = DrawLayout(file, file.pages[0], PlacePage(file, file.pages[0]), 1);
    EXPECT_EQ(PixelAt(layout, kLayoutMargin, kLayoutMargin), kPurgePaper);
    EXPECT_EQ(PixelAt(layout, kLayoutMargin + 3, kLayoutMargin), kSolidBlack);
}

TEST(LayoutPicture, FitsAtAnyScale) {
    const PrintFile file =
        Print300(Rows(11, std::vector<uint32_t>(13, 77)), {{"ORIGX", 11}, {"ORIGY", 13}}, 3499);
    const PagePlacement placement = PlacePage(file, file.pages[0]);
    for (uint32_t scale = 1; scale < 40; ++scale) {
        const Picture layout = DrawLayout(file, file.pages[0], placement, scale);
        EXPECT_EQ(layout.width, (13 + scale - 1) / scale + 2 * kLayoutMargin);
        EXPECT_EQ(PixelAt(layout, kLayoutMargin, kLayoutMargin + 3499 / scale), InkModel(300).OnPaper(77))
            << scale;
    }
}

}  // namespace orvex::tools::view
