#ifdef ORVEX_LITTLE_CMS
#include <set>

#include "tests/tools/orvexprofile/measured_target.h"
#include "tests/tools/orvexprofile/profile_tool_fixture.h"
#include "tools/common/number_text.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/target_pages.h"
#endif

namespace orvex::tools::profile {

// Native only: the tool needs Little CMS.
#ifdef ORVEX_LITTLE_CMS

namespace {

using testing::HasSubstr;

TEST(TargetPatches, AddressEachInkValueByAGridColorOfItsOwn) {
    const std::vector<TargetPatch> patches = MakeTargetPatches(kNoInkLimit);
    std::set<uint32_t> colors, inks;
    for (const TargetPatch& patch : patches) {
        for (int shift : {0, 8, 16}) {
            const uint32_t component = patch.color >> shift & 0xFF;
            EXPECT_TRUE(component % 16 == 0 || component == 255) << patch.color;
        }
        colors.insert(patch.color);
        inks.insert(patch.inks);
    }
    EXPECT_EQ(colors.size(), patches.size());
    EXPECT_EQ(inks.size(), patches.size());
    EXPECT_EQ(patches[0].inks, 0u);
    EXPECT_EQ(patches[0].color, kWhite);
    EXPECT_FALSE(inks.contains(kNotComputed));
    EXPECT_TRUE(inks.contains(PackInks(254, 255, 255, 255)));
}

TEST(TargetPatches, HaveTheSameShareOfFullInkAt600Dpi) {
    const InkModel other = InkModelOf(PrintVariant::kOther), at600 = InkModelOf(PrintVariant::kAt600);
    for (const TargetPatch& patch : MakeTargetPatches(kNoInkLimit)) {
        const InkValue scaled = ScaleInk(patch.inks, kUsualScaleAt600);
        for (int ink = 0; ink < kInks; ++ink) {
            EXPECT_FLOAT_EQ(at600.Share(InkAmount(scaled, ink)), other.Share(InkAmount(patch.inks, ink)));
        }
    }
}

TEST(TargetPatches, CoverRampsOverprintsGraysAndTotals) {
    std::set<InkValue> inks;
    for (const TargetPatch& patch : MakeTargetPatches(kNoInkLimit)) inks.insert(patch.inks);
    for (int ink = 0; ink < kInks; ++ink) {
        const auto isOfThisInk = [ink](InkValue value) {
            return value != 0 && value == InkAmount(value, ink) << (8 * ink);
        };
        EXPECT_GE(std::count_if(inks.begin(), inks.end(), isOfThisInk), 14) << kInkLetters[ink];
        EXPECT_TRUE(inks.contains(255u << (8 * ink)));
    }
    for (uint32_t corner = 0; corner < 16; ++corner) {
        const auto full = [corner](uint32_t bit) { return corner & bit ? 255u : 0u; };
        EXPECT_TRUE(inks.contains(AvoidMark(PackInks(full(1), full(2), full(4), full(8))))) << corner;
    }
    EXPECT_TRUE(inks.contains(PackInks(0, 128, 128, 128))) << "a gray of three inks";
    EXPECT_TRUE(inks.contains(PackInks(204, 204, 204, 204))) << "320 % of total ink";
}

TEST(TargetPatches, KeepTheInkLimit) {
    for (const double limit : {100.0, 240.0}) {
        const std::vector<TargetPatch> patches = MakeTargetPatches(limit);
        uint32_t most = 0;
        for (const TargetPatch& patch : patches) most = std::max(most, TotalInk(patch.inks));
        EXPECT_LE(most, limit * 255 / 100);
        EXPECT_GE(most, limit * 255 / 100 - 3);
    }
}

TEST(TargetLayout, CountsRowsByLettersThroughAllPages) {
    const TargetLayout layout({.widthMm = 40, .lengthMm = 40, .patchMm = 8, .pixelsPerInch = 300}, 100);
    EXPECT_EQ(layout.Columns(), 3u);
    EXPECT_EQ(layout.Pages(), 12u) << "34 rows, 3 to a page";
    EXPECT_EQ(layout.LocationOf(0), "A1");
    EXPECT_EQ(layout.LocationOf(2), "A3");
    EXPECT_EQ(layout.LocationOf(3), "B1");
    EXPECT_EQ(layout.LocationOf(77), "Z3");
    EXPECT_EQ(layout.LocationOf(78), "AA1");
    EXPECT_EQ(layout.LocationOf(99), "AH1");
    EXPECT_EQ(layout.PlaceOf(8).page, 0u);
    EXPECT_EQ(layout.PlaceOf(9).page, 1u);
    EXPECT_EQ(layout.PlaceOf(9).y, layout.PlaceOf(0).y);
    EXPECT_EQ(layout.PlaceOf(4).x, layout.PlaceOf(0).x + layout.PatchSide());
}

class Target : public ProfileTool {};

// Returns whether all pixels of a patch have its color.
bool IsFilled(const RasterImage& page, const TargetLayout& layout, size_t patch, uint32_t color) {
    const TargetLayout::Place place = layout.PlaceOf(patch);
    for (uint32_t y = place.y; y < place.y + layout.PatchSide(); ++y) {
        const uint32_t* const row = page.Row(y) + place.x;
        if (!std::all_of(row, row + layout.PatchSide(), [color](uint32_t pixel) { return pixel == color; }))
            return false;
    }
    return true;
}

TEST_F(Target, PrintsEachPatchWithTheInksOfItsList) {
    struct Chart {
        uint32_t resolution;
        PrintVariant variant;
        int limit;  // percent
        int side;   // mm of the page, which is enough for all patches
    };
    for (const auto& [resolution, variant, limit, side] :
         {Chart{300, PrintVariant::kOther, 300, 120}, Chart{600, PrintVariant::kAt600, 100, 70}}) {
        EXPECT_EQ(Run({"target", "-o", Path("target"), "--dpi", std::to_string(resolution), "--width",
                       std::to_string(side), "--length", std::to_string(side), "--patch", "4", "--ink-limit",
                       std::to_string(limit)}),
                  0)
            << err_;
        const MeasuredTarget list(ReadBytes(Path("target.ti2")));
        const std::vector<TargetPatch> patches = MakeTargetPatches(limit);
        ASSERT_EQ(list.Count(), patches.size());
        const TargetLayout layout({static_cast<double>(side), static_cast<double>(side), 4, resolution},
                                  patches.size());
        ASSERT_EQ(layout.Pages(), 1u);
        const RasterImage page = LoadPng(Path("target-1.png"));
        EXPECT_NEAR(page.density->x * kMetersPerInch, resolution, 0.1);
        EXPECT_NEAR(page.width, side / 25.4 * resolution, 1);
        EXPECT_NEAR(page.height, side / 25.4 * resolution, 1);
        LoadAccepted(Path("target.zvp"), variant);
        const InkModel model = InkModelOf(variant);
        for (size_t patch = 0; patch < patches.size(); ++patch) {
            ASSERT_TRUE(IsFilled(page, layout, patch, patches[patch].color)) << patch;
            EXPECT_EQ(list.Text(patch, "SAMPLE_LOC"), layout.LocationOf(patch));
            const InkValue printed = LookupColor(patches[patch].color);
            for (int ink = 0; ink < kInks; ++ink) {
                EXPECT_NEAR(list.Percent(patch, ink), 100 * model.Share(InkAmount(printed, ink)), 1e-4);
            }
        }
    }
    EXPECT_THAT(Files(), testing::UnorderedElementsAre("target.zvp", "target.ti2", "target-1.png"));
}

TEST_F(Target, LabelsItsPagesInSolidBlack) {
    EXPECT_EQ(Run({"target", "-o", Path("t"), "--ink-limit", "120"}), 0) << err_;
    EXPECT_THAT(out_, testing::ContainsRegex("t.zvp .*t-1.png .*t-2.png .*t.ti2\n[0-9]+ patches on 2 pages, "
                                             "in rows of 10\n"));
    LoadAccepted(Path("t.zvp"), PrintVariant::kOther);
    const RasterImage page = LoadPng(Path("t-1.png"));
    const TargetLayout::Place first = TargetLayout(TargetFormat(), 1).PlaceOf(0);
    std::set<InkValue> printed;
    for (uint32_t y = 0; y < page.height; ++y) {
        const uint32_t end = y < first.y ? page.width : first.x;
        for (uint32_t x = 0; x < end; ++x) printed.insert(LookupColor(page.Row(y)[x]));
    }
    EXPECT_THAT(printed, testing::ElementsAre(0u, PackInks(255, 0, 0, 0)));
}

TEST_F(Target, HasTheResolutionCodesOfTheProfileThatIsToBeBuilt) {
    EXPECT_EQ(Run({"target", "-o", Path("t"), "--patch", "4", "--resolution-codes", "-1,3"}), 0) << err_;
    EXPECT_EQ(LoadAccepted(Path("t.zvp"), PrintVariant::kOther).Codes(), (ResolutionCodes{-1, 3}));
    EXPECT_EQ(Run({"target", "-o", Path("t"), "--patch", "4"}), 0) << err_;
    EXPECT_EQ(LoadAccepted(Path("t.zvp"), PrintVariant::kOther).Codes(), std::nullopt);
}

TEST_F(Target, SaysWhatIsWrong) {
    EXPECT_EQ(Run({"target", "-o", Path("t"), "--resolution-codes", "1"}), 1);
    EXPECT_THAT(err_, HasSubstr("two numbers from -128 to 127"));
    EXPECT_EQ(Run({"target", "-o", "-"}), 1);
    EXPECT_THAT(err_, HasSubstr("a target has several files, and standard output takes one"));
    EXPECT_EQ(Run({"target"}), 2);
    EXPECT_THAT(err_, HasSubstr("target: --output is required"));
    EXPECT_EQ(Run({"target", "-o", Path("t"), "--width", "40", "--patch", "30"}), 1);
    EXPECT_THAT(err_, HasSubstr("a page of 40.0 x 150.0 mm has no room for a patch of 30.0 mm"));
    EXPECT_EQ(Run({"target", "-o", Path("t"), "--dpi", "1200"}), 2);
    EXPECT_THAT(err_, HasSubstr("--dpi: \"1200\" is not allowed; it takes 300 or 600"));
    EXPECT_EQ(Run({"target", "-o", Path("none/t")}), 1);
    EXPECT_THAT(err_, HasSubstr("none/t.zvp can't be written"));
    EXPECT_THAT(Files(), testing::IsEmpty());
}

}  // namespace
#endif

}  // namespace orvex::tools::profile
