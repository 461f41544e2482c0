#include "tools/orvexview/page_placement.h"

#include <gtest/gtest.h>

#include "tests/tools/orvexview/made_files.h"

namespace orvex::tools::view {

namespace {

// A job of one page.
struct Job {
    Job(uint32_t mode, const std::vector<Setting>& settings) {
        file.resolutionMode = mode;
        file.dpi = print_stream::kDpi[mode];
        for (const Setting& setting : settings) {
            file.header.variables.push_back({setting.name, std::to_string(setting.value)});
        }
    }

    PagePlacement Place(std::optional<Orientation> asked = std::nullopt) const {
        return PlacePage(file, page, asked);
    }

    PrintFile file;
    PrintedPage page;
};

PrintedPage MakePage(uint32_t width, uint32_t length, uint32_t rowWidth, uint32_t rows) {
    PrintedPage page;
    page.width = width;
    page.length = length;
    page.rowWidth = rowWidth;
    page.announcedRows = page.rows = rows;
    return page;
}

// The 100 x 150 mm label at 600 dpi.
constexpr int kLabelWidth = 2362;
constexpr int kLabelHeight = 3543;

Job PortraitJob(std::vector<Setting> settings) {
    settings.insert(settings.begin(), {{"ORIGX", kLabelWidth}, {"ORIGY", kLabelHeight}});
    Job job(kMode600Dpi, settings);
    job.page = MakePage(12 * kLabelHeight + 2400, 86616, kLabelHeight, kLabelWidth);
    return job;
}

// Makes a job of the same label between fill rows that make it as wide as the head.
Job FullWidthJob(int alignment, int headOffset, uint32_t rows) {
    Job job = PortraitJob({{"FULLWIDTH", 1}, {"KWS", 1}, {"ALIGN", alignment}, {"PHOFFSET", headOffset}});
    job.page.announcedRows = 7020;
    job.page.rows = rows;
    return job;
}

// Verifies the image within its block: in pixels along the row, and in rows.
void ExpectImage(const PagePlacement& placement, uint32_t left, uint32_t width, uint32_t top, uint32_t rows) {
    EXPECT_EQ(placement.imageLeft, left);
    EXPECT_EQ(placement.imageWidth, width);
    EXPECT_EQ(placement.imageTop, top);
    EXPECT_EQ(placement.imageRows, rows);
}

void ExpectFill(const Job& job, uint32_t top, uint32_t bottom) {
    const PagePlacement placement = job.Place();
    EXPECT_TRUE(placement.explained);
    ExpectImage(placement, 0, 3543, top, 2362);
    EXPECT_EQ(placement.fillBottom, bottom);
    EXPECT_EQ(placement.headTop, 0u);
}

}  // namespace

TEST(PagePlacement, APortraitPageHasTheLabelsHeightInARow) {
    Job job = PortraitJob({{"ALIGN", 0}});
    job.page.top = 7020 - kLabelWidth;
    const PagePlacement placement = job.Place();
    EXPECT_TRUE(placement.explained);
    EXPECT_EQ(placement.orientation, Orientation::kPortrait);
    ExpectImage(placement, 0, 3543, 0, 2362);
    EXPECT_EQ(placement.purgeWidth, 0u);
    EXPECT_EQ(placement.fillBottom, 0u);
    EXPECT_EQ(placement.headRows, 7020u);
    EXPECT_EQ(placement.headTop, 4658u);
}

TEST(PagePlacement, ALandscapePageHasTheLabelsWidthInARow) {
    Job job(kMode300Dpi, {{"ORIGX", 1417}, {"ORIGY", 945}});
    job.page = MakePage(24 * 1417 + 2400, 86616, 1417, 945);
    const PagePlacement placement = job.Place();
    EXPECT_TRUE(placement.explained);
    EXPECT_EQ(placement.orientation, Orientation::kLandscape);
    ExpectImage(placement, 0, 1417, 0, 945);
    EXPECT_EQ(placement.headRows, 3510u);
}

TEST(PagePlacement, ASquareLabelIsTakenForPortrait) {
    Job job(kMode300Dpi, {{"ORIGX", 600}, {"ORIGY", 600}});
    job.page = MakePage(24 * 600 + 2400, 86616, 600, 600);
    EXPECT_EQ(job.Place().orientation, Orientation::kPortrait);
    EXPECT_EQ(job.Place(Orientation::kLandscape).orientation, Orientation::kLandscape);
    EXPECT_TRUE(job.Place(Orientation::kLandscape).explained);
}

// A page shorter than the head is centered, with 1200 units before its first row and after its last one.
TEST(PagePlacement, AShortPageIsCenteredUnderTheHead) {
    Job job = PortraitJob({{"ALIGN", 1}});
    job.page.length = 12 * kLabelWidth + 2400;
    EXPECT_EQ(job.Place().headTop, (86616u - 12 * 2362 - 2400) / 2 / 12);
    job.page.top = 94;
    EXPECT_EQ(job.Place().headTop, (86616u - 12 * 2362 - 2400) / 2 / 12 + 94);
    job.page.length = 100'000;
    EXPECT_EQ(job.Place().headTop, 94u);
}

TEST(PagePlacement, ALeadingPurgeBarIsBeforeTheImage) {
    Job job = PortraitJob({{"PURGEBAR", 1}, {"PURGEDOTS", 10}, {"PURGEGAP", 5}});
    job.page.rowWidth = 3543 + 10 + 23 * 5;
    const PagePlacement placement = job.Place();
    EXPECT_TRUE(placement.explained);
    EXPECT_EQ(placement.purgeWidth, 125u);
    ExpectImage(placement, 125, 3543, 0, 2362);
    EXPECT_TRUE(placement.PurgeLeads());
}

TEST(PagePlacement, ATrailingPurgeBarIsAfterTheImage) {
    Job job(kMode300Dpi,
            {{"ORIGX", 1417}, {"ORIGY", 945}, {"PURGEBAR", 2}, {"PURGEDOTS", 1}, {"PURGEGAP", 15}});
    job.page = MakePage(90'000, 86616, 1417 + 1 + 11 * 15, 945);
    const PagePlacement placement = job.Place();
    EXPECT_TRUE(placement.explained);
    EXPECT_EQ(placement.purgeWidth, 166u);
    EXPECT_EQ(placement.imageLeft, 0u);
    EXPECT_FALSE(placement.PurgeLeads());
}

TEST(PagePlacement, APurgeBarAsWideAsTheRowIsIgnored) {
    Job job = PortraitJob({{"PURGEBAR", 1}, {"PURGEDOTS", 3543}});
    EXPECT_EQ(job.Place().purgeWidth, 0u);
    EXPECT_EQ(job.Place().imageWidth, 3543u);
    EXPECT_TRUE(PortraitJob({{"PURGEBAR", -1}, {"PURGEDOTS", 5}}).Place().explained);
    EXPECT_EQ(PortraitJob({{"PURGEBAR", 1}, {"PURGEDOTS", -5}, {"PURGEGAP", -5}}).Place().purgeWidth, 0u);
}

TEST(PagePlacement, FillRowsAreOnTheSideThatTheAlignmentLeaves) {
    ExpectFill(FullWidthJob(0, 0, 7020), 4658, 0);
    ExpectFill(FullWidthJob(1, 0, 7020), 2329, 2329);
    ExpectFill(FullWidthJob(2, 0, 7020), 0, 4658);
}

// An offset of 2.0 mm is 47 rows at 600 dpi.
TEST(PagePlacement, ThePrintHeadOffsetMovesFillRows) {
    ExpectFill(FullWidthJob(0, 20, 7020), 4658 - 47, 47);
    ExpectFill(FullWidthJob(0, -20, 7020), 4658, 0);
    ExpectFill(FullWidthJob(2, -20, 7020), 46, 4658 - 46);
    ExpectFill(FullWidthJob(2, 20, 7020), 0, 4658);
}

TEST(PagePlacement, TheOffsetChangesBothSidesOfACenteredLabelAlike) {
    ExpectFill(FullWidthJob(1, 20, 7020 - 94), 2329 - 47, 2329 - 47);
    ExpectFill(FullWidthJob(1, -20, 7020 + 92), 2329 + 46, 2329 + 46);
    ExpectFill(FullWidthJob(1, 1000, 2362), 0, 0);
}

TEST(PagePlacement, APurgeBarAloneAlsoMakesFullWidth) {
    Job job = PortraitJob({{"FULLWIDTH", 1}, {"ALIGN", 2}, {"PURGEBAR", 2}, {"PURGEDOTS", 1}});
    job.page.rowWidth = 3544;
    job.page.announcedRows = job.page.rows = 7020;
    EXPECT_TRUE(job.Place().explained);
    EXPECT_EQ(job.Place().fillBottom, 4658u);
    job.file.header.variables[4].value = "0";
    EXPECT_FALSE(job.Place().explained) << "without wet nozzles and purge bar there is no full width";
}

TEST(PagePlacement, APageThatTheHeaderDoesNotExplainIsItsWholeBlock) {
    Job job = PortraitJob({{"PURGEBAR", 1}, {"PURGEDOTS", 10}});
    job.page.rowWidth = 1000;
    job.page.rows = job.page.announcedRows = 500;
    const PagePlacement placement = job.Place();
    EXPECT_FALSE(placement.explained);
    EXPECT_EQ(placement.orientation, Orientation::kLandscape);
    ExpectImage(placement, 10, 990, 0, 500);
    EXPECT_EQ(job.Place(Orientation::kPortrait).orientation, Orientation::kPortrait);
}

TEST(PagePlacement, AHeaderWithoutSettingsExplainsNothing) {
    Job job(kMode600Dpi, {});
    job.page = MakePage(5000, 6000, 10, 20);
    EXPECT_FALSE(job.Place().explained);
    EXPECT_EQ(job.Place().imageRows, 20u);
}

TEST(PagePlacement, SettingsOutOfRangeDoNoHarm) {
    for (const int extreme : {-1'000'000, 1'000'000}) {
        Job job(kMode600Dpi, {{"ORIGX", extreme},
                              {"ORIGY", extreme},
                              {"ALIGN", extreme},
                              {"FULLWIDTH", extreme},
                              {"KWS", extreme},
                              {"PURGEBAR", extreme},
                              {"PURGEDOTS", extreme},
                              {"PURGEGAP", extreme},
                              {"PHOFFSET", extreme}});
        job.page = MakePage(5000, 6000, 10, 20);
        const PagePlacement placement = job.Place();
        EXPECT_FALSE(placement.explained);
        EXPECT_EQ(placement.imageWidth, 10u);
    }
}

}  // namespace orvex::tools::view
