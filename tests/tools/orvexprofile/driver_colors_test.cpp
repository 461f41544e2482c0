#include "tools/orvexprofile/loaded_profile.h"

#include <gmock/gmock.h>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/orvexprofile/profile_samples.h"

namespace orvex::tools::profile {

namespace {

using testing::ElementsAre;

uint32_t Meant(int version, uint32_t color) {
    uint32_t inks = 0;
    LoadedColors(version)({&color, 1}, {&inks, 1});
    return inks;
}

TEST(DriverColors, AreThoseOfTheLoadedVariant) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Path() / "sample.zvp";
    WriteProfileFile(SampleProfile(5), path);
    LoadAccepted(path, PrintVariant::kAt600);
    EXPECT_EQ(LookupColor(0x102030), SampleInks(0x102030, true));
    EXPECT_EQ(LoadedEntries(5), SampleProfile(5).at600);
    LoadAccepted(path, PrintVariant::kOther);
    EXPECT_EQ(LookupColor(0x102030), SampleInks(0x102030, false));
    EXPECT_EQ(LoadedEntries(5), SampleProfile(5).other);
}

TEST(DriverColors, WithoutAProfileAreTheBuiltInConversion) {
    LoadGenericIntoDriver(PrintVariant::kAt600);
    EXPECT_EQ(LookupColor(0), PackInks(128, 0, 0, 0));
    LoadGenericIntoDriver(PrintVariant::kOther);
    EXPECT_EQ(LookupColor(0), PackInks(255, 0, 0, 0));
    EXPECT_EQ(LookupColor(0xFF0000), PackInks(0, 0, 255, 255));
}

TEST(DriverColors, BetweenTheEntriesOfAHalfGridAreOnTheStraightLine) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Path() / "half.zvp";
    for (int version : {3, 4}) {
        SCOPED_TRACE(version);
        WriteProfileFile(SampleProfile(version), path);
        LoadAccepted(path, PrintVariant::kOther);
        EXPECT_FALSE(PrintsAsMeant(version));
        EXPECT_EQ(Meant(version, 0x102030), SampleInks(0x102030, false));
        EXPECT_EQ(Meant(version, 0x112030), SampleInks(0x112030, false));
        EXPECT_EQ(Meant(version, 0x112131), SampleInks(0x112131, false));
        EXPECT_EQ(Meant(version, 0xFFFFFF), SampleInks(0xFFFFFF, false));
        EXPECT_EQ(Meant(version, 0xFF0010), SampleInks(0xFF0010, false));
        // 254 has the inks of 255, so 253 is between 252 and 255, rounded up.
        EXPECT_EQ(Meant(version, 0xFD1010), SampleInks(0xFE1010, false));
        EXPECT_EQ(LoadedEntries(version), SampleProfile(version).other);
    }
}

TEST(DriverColors, OfOtherVersionsAreMeantAsTheyPrint) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Path() / "grid.zvp";
    WriteProfileFile(SampleProfile(5), path);
    LoadAccepted(path, PrintVariant::kOther);
    EXPECT_TRUE(PrintsAsMeant(5));
    const std::vector<uint32_t> colors = ColorsEvery(13);
    std::vector<uint32_t> meant(colors.size());
    LoadedColors(5)(colors, meant);
    EXPECT_EQ(meant, PrintedInks(colors));
}

TEST(DriverColors, EveryStepIncludesBothEnds) {
    const std::vector<uint32_t> colors = ColorsEvery(128);
    EXPECT_EQ(colors.size(), 27u);
    EXPECT_EQ(colors.front(), 0u);
    EXPECT_EQ(colors[1], 0x000080u);
    EXPECT_EQ(colors[2], 0x0000FFu);
    EXPECT_EQ(colors.back(), 0xFFFFFFu);
    EXPECT_THAT(ColorsEvery(255),
                ElementsAre(0, 0xFF, 0xFF00, 0xFFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF));
}

}  // namespace

}  // namespace orvex::tools::profile
