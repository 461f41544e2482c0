// A printer's color from the target to the proof, with a simulated printer: one that prints as the
// colorimetric table of an ICC profile says.
#ifdef ORVEX_LITTLE_CMS
#include <cmath>
#include <cstdio>

#include "tests/tools/orvexprofile/measured_target.h"
#include "tests/tools/orvexprofile/profile_tool_fixture.h"
#include "tools/orvexprofile/little_cms.h"
#include "tools/orvexprofile/predicted_colors.h"
#include "tools/orvexprofile/target_pages.h"
#endif

namespace orvex::tools::profile {

// Native only: the tool needs Little CMS.
#ifdef ORVEX_LITTLE_CMS

namespace {

constexpr const char* kLabFields[] = {"LAB_L", "LAB_A", "LAB_B"};

// Returns what a screen shows for an sRGB color.
LabColor ScreenLab(uint32_t color) {
    const OwnedProfile screen(cmsCreate_sRGBProfile()), lab(cmsCreateLab4Profile(nullptr));
    const OwnedTransform transform(cmsCreateTransform(screen.get(), TYPE_BGRA_8, lab.get(), TYPE_Lab_DBL,
                                                      INTENT_RELATIVE_COLORIMETRIC, kExact));
    LabColor shown;
    cmsDoTransform(transform.get(), &color, &shown, 1);
    return shown;
}

class ClosedLoop : public ProfileTool {
  protected:
    // Lists: of a target, and of what an instrument that goes over its printed pages sees.
    struct Lists {
        std::string target;
        std::string measured;
    };
    // Returns the same lists for every test.
    const Lists& Measured() {
        static const Lists lists = [this] {
            const std::string measured = Measure();
            return Lists{ReadBytes(Path("target.ti2")), measured};
        }();
        return lists;
    }

  private:
    // Writes the target and measures it.
    std::string Measure() {
        EXPECT_EQ(Run({"target", "-o", Path("target"), "--patch", "4"}), 0) << err_;
        const MeasuredTarget list(ReadBytes(Path("target.ti2")));
        const TargetLayout layout({.patchMm = 4}, list.Count());
        LoadAccepted(Path("target.zvp"), PrintVariant::kOther);
        std::vector<RasterImage> pages;
        for (size_t page = 1; page <= layout.Pages(); ++page)
            pages.push_back(LoadPng(Path("target-" + std::to_string(page) + ".png")));
        std::vector<InkValue> inks;
        for (size_t patch = 0; patch < list.Count(); ++patch) {
            const TargetLayout::Place place = layout.PlaceOf(patch);
            const uint32_t half = layout.PatchSide() / 2;
            inks.push_back(LookupColor(pages[place.page].Row(place.y + half)[place.x + half]));
        }
        return Measurement(list,
                           PredictedColors(kPrinterIcc, PrintVariant::kOther, PaperColor::kOwn).Lab(inks));
    }

    // Returns the list of a target with measured colors, as CGATS.
    static std::string Measurement(const MeasuredTarget& list, const std::vector<LabColor>& colors) {
        const OwnedCgats cgats(cmsIT8Alloc(nullptr));
        std::vector<const char*> fields = {"SAMPLE_ID", "SAMPLE_LOC"};
        fields.insert(fields.end(), kInkFields.begin(), kInkFields.end());
        fields.insert(fields.end(), std::begin(kLabFields), std::end(kLabFields));
        cmsIT8SetSheetType(cgats.get(), "CGATS.17");
        cmsIT8SetPropertyDbl(cgats.get(), "NUMBER_OF_FIELDS", static_cast<double>(fields.size()));
        cmsIT8SetPropertyDbl(cgats.get(), "NUMBER_OF_SETS", static_cast<double>(list.Count()));
        for (size_t field = 0; field < fields.size(); ++field)
            cmsIT8SetDataFormat(cgats.get(), static_cast<int>(field), fields[field]);
        for (size_t patch = 0; patch < list.Count(); ++patch) {
            const std::string id = list.Text(patch, "SAMPLE_ID");
            cmsIT8SetDataRowCol(cgats.get(), static_cast<int>(patch), 0, id.c_str());
            for (size_t field = 1; field < 2 + kInks; ++field)
                cmsIT8SetData(cgats.get(), id.c_str(), fields[field],
                              list.Text(patch, fields[field]).c_str());
            const double lab[] = {colors[patch].lightness, colors[patch].a, colors[patch].b};
            for (size_t i = 0; i < std::size(lab); ++i)
                cmsIT8SetDataDbl(cgats.get(), id.c_str(), kLabFields[i], lab[i]);
        }
        cmsUInt32Number size = 0;
        cmsIT8SaveToMem(cgats.get(), nullptr, &size);
        std::string text(size, '\0');
        EXPECT_TRUE(cmsIT8SaveToMem(cgats.get(), text.data(), &size));
        return text.substr(0, text.find('\0'));
    }
};

// Returns the ink value that a list tells for a patch.
InkValue ListedInks(const MeasuredTarget& list, size_t patch) {
    InkValue inks = 0;
    for (int ink = 0; ink < kInks; ++ink)
        inks |= static_cast<InkValue>(std::lround(list.Percent(patch, ink) * 2.55)) << (8 * ink);
    return inks;
}

LabColor MeasuredLab(const MeasuredTarget& list, size_t patch) {
    return {list.Number(patch, "LAB_L"), list.Number(patch, "LAB_A"), list.Number(patch, "LAB_B")};
}

// Returns the only ink of a patch, or -1.
int OnlyInk(const MeasuredTarget& list, size_t patch) {
    int only = -1;
    for (int ink = 0; ink < kInks; ++ink) {
        if (list.Percent(patch, ink) == 0) continue;
        if (only >= 0) return -1;
        only = ink;
    }
    return only;
}

TEST_F(ClosedLoop, MeasuresEveryPatchOfTheTargetOnce) {
    const MeasuredTarget measured(Measured().measured), list(Measured().target);
    ASSERT_EQ(measured.Count(), list.Count());
    const PredictedColors printer(kPrinterIcc, PrintVariant::kOther, PaperColor::kOwn);
    const double paper = measured.Number(0, "LAB_L");
    std::array<double, kInks> before;
    before.fill(paper);
    for (size_t patch = 0; patch < list.Count(); ++patch) {
        EXPECT_EQ(measured.Text(patch, "SAMPLE_ID"), std::to_string(patch + 1));
        for (int ink = 0; ink < kInks; ++ink)
            EXPECT_EQ(measured.Percent(patch, ink), list.Percent(patch, ink)) << patch;
        const InkValue inks = ListedInks(list, patch);
        EXPECT_LT(DifferenceOf(MeasuredLab(measured, patch), printer.Lab({&inks, 1})[0]), 0.01) << patch;
        const double lightness = measured.Number(patch, "LAB_L");
        EXPECT_GE(lightness, 0) << patch;
        EXPECT_LE(lightness, paper) << patch << ": darker than paper";
        // A ramp gets darker from step to step.
        if (const int ink = OnlyInk(list, patch); ink >= 0) {
            EXPECT_LT(lightness, before[static_cast<size_t>(ink)]) << patch;
            before[static_cast<size_t>(ink)] = lightness;
        }
    }
}

// The estimates of the list are those of the page's colors, which are near to the print's.
TEST_F(ClosedLoop, EstimatesTheColorsInItsList) {
    const MeasuredTarget measured(Measured().measured), list(Measured().target);
    EXPECT_NEAR(list.Number(0, "XYZ_X"), 96.42, 0.02);
    EXPECT_NEAR(list.Number(0, "XYZ_Y"), 100, 0.02);
    EXPECT_NEAR(list.Number(0, "XYZ_Z"), 82.49, 0.02);
    double sum = 0;
    for (size_t patch = 0; patch < list.Count(); ++patch) {
        const cmsCIEXYZ xyz = {list.Number(patch, "XYZ_X") / 100, list.Number(patch, "XYZ_Y") / 100,
                               list.Number(patch, "XYZ_Z") / 100};
        cmsCIELab lab;
        cmsXYZ2Lab(nullptr, &lab, &xyz);
        sum += DifferenceOf({lab.L, lab.a, lab.b}, MeasuredLab(measured, patch));
    }
    EXPECT_LT(sum / static_cast<double>(list.Count()), 20);
}

// docs/color-profiles.md shows these figures.
constexpr struct {
    const char* variant;
    double largest;
} kStatedDifferences[] = {{"600", 2.06}, {"other", 1.94}};

TEST_F(ClosedLoop, ProofsNeutralArtInTheColorsThatAreWanted) {
    ASSERT_EQ(Run({"build", "--icc", kPrinterIcc, "-o", Path("print.zvp"), "--intent", "relative"}), 0)
        << err_;
    // Grays that are no darker than the printer's black.
    constexpr int kDarkest = 64;
    tools::Picture ramp(256 - kDarkest, 1, 3);
    for (size_t i = 0; i < ramp.samples.size(); ++i) ramp.samples[i] = static_cast<uint8_t>(kDarkest + i / 3);
    SavePng(ramp, 300, Path("ramp.png"));
    for (const auto& stated : kStatedDifferences) {
        ASSERT_EQ(Run({"proof", Path("ramp.png"), "--profile", Path("print.zvp"), "--icc", kPrinterIcc,
                       "--variant", stated.variant, "-o", Path("proof.png")}),
                  0)
            << err_;
        const RasterImage proof = LoadPng(Path("proof.png"));
        double largest = 0;
        for (uint32_t x = 0; x < ramp.width; ++x) {
            const uint32_t gray = (kDarkest + x) * 0x010101;
            largest = std::max(largest, DifferenceOf(ScreenLab(gray), ScreenLab(proof.Row(0)[x])));
        }
        std::printf("proof of neutral art, %s: largest dE2000 %.2f\n", stated.variant, largest);
        EXPECT_NEAR(largest, stated.largest, 0.005);
    }
}

}  // namespace
#endif

}  // namespace orvex::tools::profile
