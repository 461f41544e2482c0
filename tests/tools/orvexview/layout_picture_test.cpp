#include "tools/orvexview/layout_picture.h"

#include <gtest/gtest.h>

#include "tests/tools/orvexview/made_files.h"
#include "tools/orvexview/page_pictures.h"

namespace orvex::tools::view {

namespace {

constexpr uint32_t kM = kLayoutMargin;

// A page printed at 300 dpi, where the head is 3510 rows wide.
struct PrintedLabel {
    PrintedLabel(const Rows& rows, const std::vector<Setting>& settings, uint32_t top = 0,
                 std::optional<Orientation> asked = std::nullopt) {
        EngineOutput output;
        const uint64_t job = output.StartJob(kMode300Dpi);
        EXPECT_TRUE(PrintPage(job, rows, top));
        HPCRLIB_JobEnd(job);
        file = ParsePrintFile(AsBytes(WithLines(output.File(), SettingLines(settings))));
        placement = PlacePage(file, Page(), asked);
    }

    const PrintedPage& Page() const { return file.pages[0]; }

    Picture Draw(uint32_t scale = 1, bool turned = false) const {
        PagePictures pictures =
            DrawPage(InkModel(300), Page(), placement, {.area = WholeBlock(Page()), .blockScale = scale});
        return DrawLayout(file, Page(), placement, std::move(pictures.block),
                          {.scale = scale, .turned = turned});
    }

    PrintFile file;
    PagePlacement placement;
};

Rgb ColorAt(const Picture& picture, uint32_t x, uint32_t y) {
    const uint8_t* pixel = picture.At(x, y);
    return {pixel[0], pixel[1], pixel[2]};
}

// Returns how many pixels of a part of the picture have the color.
int Count(const Picture& picture, uint32_t left, uint32_t top, uint32_t width, uint32_t height, Rgb color) {
    int count = 0;
    for (uint32_t y = top; y < top + height; ++y) {
        for (uint32_t x = left; x < left + width; ++x) count += ColorAt(picture, x, y) == color;
    }
    return count;
}

const Rgb kSolid = InkModel(300).OnPaper(0x000000FF);
constexpr Rgb kNoLight = {0, 0, 0};

}  // namespace

TEST(LayoutPicture, ShowsTheBlockInItsPlaceOnTheHead) {
    const PrintedLabel label({{255, 0, 0, 255}, {0, 0, 0, 0}}, {{"ORIGX", 4}, {"ORIGY", 2}}, 3508);
    EXPECT_EQ(LayoutRows(label.Page(), label.placement), 3510u);
    const Picture layout = label.Draw();
    EXPECT_GT(layout.height, 3511 + 2 * kM) << "the legend is below";
    EXPECT_EQ(ColorAt(layout, kM, kM - 1), kPaperWhite) << "above the head";
    EXPECT_EQ(ColorAt(layout, kM, kM), kHeadColor) << "the head's first row";
    EXPECT_EQ(ColorAt(layout, kM, kM + 3506), kHeadColor);
    EXPECT_EQ(ColorAt(layout, kM, kM + 3507), kImageOutline);
    EXPECT_EQ(ColorAt(layout, kM - 1, kM + 3508), kImageOutline);
    EXPECT_EQ(ColorAt(layout, kM, kM + 3508), kSolid) << "the image's first pixel";
    EXPECT_EQ(ColorAt(layout, kM + 1, kM + 3508), kPaperWhite);
    EXPECT_EQ(ColorAt(layout, kM + 3, kM + 3508), kSolid);
    EXPECT_EQ(ColorAt(layout, kM + 4, kM + 3508), kImageOutline);
    EXPECT_EQ(ColorAt(layout, kM, kM + 3509), kPaperWhite);
    EXPECT_EQ(ColorAt(layout, kM, kM + 3510), kImageOutline);
    EXPECT_EQ(ColorAt(layout, 0, kM + 3509), kHeadColor) << "the head's last row";
    EXPECT_EQ(ColorAt(layout, 0, kM + 3510), kPaperWhite);
}

// The head's first row, its left end, is at the right of a portrait page.
TEST(LayoutPicture, APortraitPageIsTurned) {
    const PrintedLabel label({{255, 0, 0, 0}, {0, 0, 0, 0}}, {{"ORIGX", 2}, {"ORIGY", 4}}, 10);
    const Picture layout = label.Draw(1, true);
    EXPECT_EQ(layout.width, 3511 + 2 * kM);
    const uint32_t right = kM + 3511 - 1;
    EXPECT_EQ(ColorAt(layout, right, 0), kTickColor) << "the tick at 0 mm";
    EXPECT_EQ(ColorAt(layout, right - 5, kM), kHeadColor);
    EXPECT_EQ(ColorAt(layout, right - 10, kM), kSolid) << "the first row begins at the label's top right";
    EXPECT_EQ(ColorAt(layout, right - 10, kM + 1), kPaperWhite);
    EXPECT_EQ(ColorAt(layout, right - 9, kM), kImageOutline);
    EXPECT_EQ(ColorAt(layout, right - 12, kM), kImageOutline);
    EXPECT_EQ(ColorAt(layout, right - 10, kM + 4), kImageOutline);
}

TEST(LayoutPicture, NamesTheSidesAndShowsThePaperFeed) {
    const PrintedLabel label(Rows(40, std::vector<uint32_t>(60)), {{"ORIGX", 60}, {"ORIGY", 40}});
    const Picture lying = label.Draw(10);
    EXPECT_GT(Count(lying, kM, kM - 20, 40, 19, kTextColor), 20) << "left, above the head's first row";
    EXPECT_GT(Count(lying, kM, kM + 352, 40, 20, kTextColor), 20) << "right, below its last row";
    EXPECT_GT(Count(lying, 0, kM - 20, kM - 8, 19, kTextColor), 20) << "the arrow";
    const Picture turned = label.Draw(10, true);
    EXPECT_GT(Count(turned, kM + 352, kM, kM - 1, 12, kTextColor), 20)
        << "left, right of the head's first row";
    EXPECT_GT(Count(turned, 0, kM, kM - 1, 12, kTextColor), 20) << "right, left of its last row";
    EXPECT_GT(Count(turned, kM + 352, 5, kM - 1, 25, kTextColor), 20) << "the arrow";
}

TEST(LayoutPicture, HasTicksEveryTenMillimetersAndLongerOnesEveryFifty) {
    const PrintedLabel label({{0}}, {{"ORIGX", 1}, {"ORIGY", 1}});
    const Picture layout = label.Draw();
    const uint32_t right = 1 + 2 * kM - 1;  // the body's last column; the legend makes the picture wider
    const auto tickLength = [&](uint32_t mm) {
        const uint32_t y = kM + mm * 3000 / 254;
        uint32_t length = 0;
        while (ColorAt(layout, length, y) == kTickColor) ++length;
        EXPECT_EQ(ColorAt(layout, right, y), length > 0 ? kTickColor : kHeadColor);
        return length;
    };
    EXPECT_EQ(tickLength(5), 0u);
    EXPECT_EQ(tickLength(10), 6u);
    EXPECT_EQ(tickLength(50), 12u);
    EXPECT_EQ(tickLength(290), 6u);
    const auto numberBeside = [&](uint32_t mm) {
        return Count(layout, 13, kM + mm * 3000 / 254 - 4, 25, 12, kTextColor) > 10;
    };
    EXPECT_TRUE(numberBeside(50));
    EXPECT_TRUE(numberBeside(250));
    EXPECT_FALSE(numberBeside(40));
}

// There are fill rows with the wet-nozzle pattern before and after the image, and a purge bar before each
// row.
TEST(LayoutPicture, ShowsFillRowsAndPurgeBarOnColoredPaper) {
    const uint32_t dot = 0xFFFFFFFF;
    Rows rows(3510, {dot, 0x00000033, 0});
    rows[1755] = {0, 0x000000FF, 0};
    const PrintedLabel label(rows,
                             {{"ORIGX", 2},
                              {"ORIGY", 2},
                              {"FULLWIDTH", 1},
                              {"KWS", 1},
                              {"PURGEBAR", 1},
                              {"PURGEDOTS", 1},
                              {"ALIGN", 1}},
                             0, Orientation::kLandscape);
    ASSERT_TRUE(label.placement.explained);
    ASSERT_EQ(label.placement.imageTop, 1754u);
    const Picture layout = label.Draw();
    EXPECT_EQ(ColorAt(layout, kM, kM), kNoLight) << "purge dot";
    EXPECT_EQ(ColorAt(layout, kM + 2, kM), kFillPaper);
    EXPECT_EQ(ColorAt(layout, kM + 1, kM), (Rgb{182, 196, 211})) << "some black on the paper of fill rows";
    EXPECT_EQ(ColorAt(layout, kM + 2, kM + 1752), kFillPaper);
    EXPECT_EQ(ColorAt(layout, kM + 2, kM + 1754), kPaperWhite);
    EXPECT_EQ(ColorAt(layout, kM + 1, kM + 1755), kSolid);
    EXPECT_EQ(ColorAt(layout, kM + 2, kM + 1755), kPaperWhite);
    EXPECT_EQ(ColorAt(layout, kM, kM + 1755), kImageOutline) << "over the gap beside the image";
    EXPECT_EQ(ColorAt(layout, kM + 2, kM + 1757), kFillPaper);
    EXPECT_EQ(ColorAt(layout, kM + 2, kM + 3509), kFillPaper);
}

TEST(LayoutPicture, TintsTheGapOfThePurgeBar) {
    const PrintedLabel label({{0, 0, 0, 255}},
                             {{"ORIGX", 1}, {"ORIGY", 1}, {"PURGEBAR", 1}, {"PURGEDOTS", 3}});
    const Picture layout = label.Draw();
    EXPECT_EQ(ColorAt(layout, kM, kM), kPurgePaper);
    EXPECT_EQ(ColorAt(layout, kM + 3, kM), kSolid);
}

TEST(LayoutPicture, TheLegendExplainsTheColorsThatAreThere) {
    const auto legendOf = [](const PrintedLabel& label) {
        const Picture layout = label.Draw(10);
        const uint32_t top = 352 + 2 * kM;
        const auto has = [&](Rgb color) { return Count(layout, 0, top, 30, layout.height - top, color) > 0; };
        return std::vector<bool>{has(kHeadColor), has(kImageOutline), has(kFillPaper), has(kPurgePaper)};
    };
    EXPECT_EQ(legendOf({{{0}}, {{"ORIGX", 1}, {"ORIGY", 1}}}), (std::vector<bool>{true, true, false, false}));
    EXPECT_EQ(legendOf({{{0, 0}}, {{"ORIGX", 1}, {"ORIGY", 1}, {"PURGEBAR", 2}, {"PURGEDOTS", 1}}}),
              (std::vector<bool>{true, true, false, true}));
    EXPECT_EQ(
        legendOf({Rows(3510, {0}), {{"ORIGX", 1}, {"ORIGY", 1}, {"ALIGN", 2}, {"FULLWIDTH", 1}, {"KWS", 1}}}),
        (std::vector<bool>{true, true, true, false}));
}

TEST(LayoutPicture, FitsAtAnyScale) {
    const PrintedLabel label(Rows(11, std::vector<uint32_t>(13, 77)), {{"ORIGX", 11}, {"ORIGY", 13}}, 3499);
    const Rgb color = InkModel(300).OnPaper(77);
    for (uint32_t scale = 1; scale < 40; ++scale) {
        EXPECT_EQ(ColorAt(label.Draw(scale), kM, kM + 3499 / scale), color) << scale;
        const Picture turned = label.Draw(scale, true);
        EXPECT_EQ(ColorAt(turned, kM + (3510 + scale - 1) / scale - 3499 / scale, kM), color) << scale;
    }
}

}  // namespace orvex::tools::view
