#include "tools/orvexprofile/conversion.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/orvexprofile/profile_samples.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/loaded_profile.h"

namespace orvex::tools::profile {

namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

// Returns inks that grow with the square of what a component lacks, and black that grows with all three.
uint32_t SmoothInks(uint32_t color) {
    const uint32_t c = 255 - (color >> 16), m = 255 - (color >> 8 & 0xFF), y = 255 - (color & 0xFF);
    return PackInks(c * m / 255 * y / 256, c * c / 255, m * m / 255, y * y / 255);
}

Profile SmoothProfile(int version) {
    Profile profile;
    profile.version = version;
    profile.name = "Smooth";
    FillVariants(profile,
                 [](std::span<const uint32_t> colors, std::span<uint32_t> inks) {
                     std::transform(colors.begin(), colors.end(), inks.begin(), SmoothInks);
                 },
                 {});
    return profile;
}

class Conversions : public testing::Test {
  protected:
    std::filesystem::path Smooth(int version) {
        const std::filesystem::path path = scratch_.Path() / ("smooth" + std::to_string(version) + ".zvp");
        WriteProfileFile(SmoothProfile(version), path);
        return path;
    }
    std::filesystem::path Converted(const std::filesystem::path& from, int version) {
        const std::filesystem::path path = scratch_.Path() / "converted.zvp";
        WriteProfileFile(ConvertProfile(from, version), path);
        return path;
    }
    ConversionLoss Loss(const std::filesystem::path& from, const std::filesystem::path& to,
                        PrintVariant variant = PrintVariant::kOther) {
        return MeasureLoss(from, to, variant, colors_);
    }

    const std::vector<uint32_t> colors_ = ColorsEvery(7);
    const ScratchFolder scratch_;
};

uint32_t LargestOf(const InkDifference& difference) {
    uint32_t most = 0;
    for (const auto& amounts : difference.inks) most = std::max(most, amounts.most);
    return most;
}

TEST_F(Conversions, KeepNameAndCodes) {
    Profile profile = SampleProfile(5);
    profile.name = "Na\xEFve";  // not ASCII: the name of an existing file is kept
    const std::filesystem::path path = scratch_.Path() / "named.zvp";
    WriteProfileFile(profile, path);
    const Profile converted = ConvertProfile(path, 5);
    EXPECT_EQ(converted.name, profile.name);
    EXPECT_EQ(converted.codes, profile.codes);
    EXPECT_EQ(converted.at600, profile.at600);
    EXPECT_EQ(converted.other, profile.other);
}

// The driver computes a marked entry when it is looked up, and mixes other inks for a component of 255.
TEST_F(Conversions, KeepAllEntriesButMarksWithinAVersion) {
    const std::filesystem::path path = scratch_.Path() / "marked.zvp";
    std::string file = FileWithTags(Tag(1, "Marked"));
    const size_t lastEntry = file.size() - 4;  // white, all of whose components are 255
    file.replace(lastEntry, 4, 4, '\xFF');
    WriteBytes(path, file);
    const Profile converted = ConvertProfile(path, 5);
    Variant expected(LayoutOf(5).Entries(), 0);
    EXPECT_EQ(converted.at600, expected);
    expected.back() = PackInks(254, 255, 255, 255);
    EXPECT_EQ(converted.other, expected);
}

TEST_F(Conversions, LoseNothingFromAGridToEveryColorAndBack) {
    const std::filesystem::path grid = Smooth(5), full = Converted(grid, 1);
    for (PrintVariant variant : kBothVariants) {
        const ConversionLoss loss = Loss(grid, full, variant);
        EXPECT_EQ(loss.meant.different, 0u);
        EXPECT_EQ(loss.printed.different, 0u);
        EXPECT_EQ(loss.meant.colors, colors_.size());
    }
    EXPECT_EQ(VersionLoss(1), "");
    EXPECT_EQ(VersionLoss(2), "");
    const Profile back = ConvertProfile(full, 5);
    EXPECT_EQ(back.at600, SmoothProfile(5).at600);
    EXPECT_EQ(back.other, SmoothProfile(5).other);
}

TEST_F(Conversions, KeepTheGridOfAFinerOneAndInterpolateBetween) {
    const std::filesystem::path half = Smooth(4), grid = Converted(half, 5);
    const ConversionLoss loss = Loss(half, grid);
    EXPECT_GT(loss.meant.different, 0u);
    EXPECT_LE(LargestOf(loss.meant), 20u);
    EXPECT_GT(LargestOf(loss.printed), 200u) << "a half grid prints other colors than it means";
    EXPECT_EQ(MeasureLoss(half, grid, PrintVariant::kOther, ColorsEvery(128)).meant.different, 0u);
    EXPECT_THAT(VersionLoss(5), HasSubstr("17 values"));
}

TEST_F(Conversions, KeepEveryEntryBetweenTheHalfGrids) {
    const Profile entries = ConvertProfile(Smooth(4), 3);
    const Profile smooth = SmoothProfile(3);
    EXPECT_EQ(entries.at600, smooth.at600);
    EXPECT_EQ(entries.other, smooth.other);
}

TEST_F(Conversions, LoseTheInkOfOddColorsInVersion3) {
    const std::filesystem::path grid = Smooth(5), half = Converted(grid, 3);
    const std::vector<uint32_t> odd = {0xFF0000, 0x010101, 0x102131};
    const std::vector<uint32_t> even = {0x000000, 0x102030, 0x404040};
    EXPECT_EQ(MeasureLoss(grid, half, PrintVariant::kOther, odd).meant.different, 3u);
    EXPECT_EQ(MeasureLoss(grid, half, PrintVariant::kOther, even).meant.different, 0u);
    LoadAccepted(half, PrintVariant::kOther);
    EXPECT_EQ(LookupColor(0xFF0000), 0u);
    EXPECT_THAT(VersionLoss(3), HasSubstr("without ink"));
}

TEST_F(Conversions, KeepWhiteAndEvenColorsInVersion4AndSwapTheHuesOfOthers) {
    const std::filesystem::path grid = Smooth(5), half = Converted(grid, 4);
    LoadAccepted(grid, PrintVariant::kOther);
    const uint32_t blue = LookupColor(0x0000FF), dark = LookupColor(0x102030);
    LoadAccepted(half, PrintVariant::kOther);
    EXPECT_EQ(LookupColor(0xFFFFFF), 0u);
    EXPECT_EQ(LookupColor(0x102030), dark);
    EXPECT_EQ(LookupColor(0xFF0000), blue);
    EXPECT_THAT(VersionLoss(4), HasSubstr("red and blue exchanged"));
}

TEST_F(Conversions, FailWithTheReasonWhyAFileIsRefused) {
    const std::filesystem::path bad = scratch_.Write("bad.zvp", "ZVC");
    EXPECT_THAT([&] { ConvertProfile(bad, 5); },
                ThrowsMessage<std::runtime_error>(HasSubstr("error reading file")));
    EXPECT_THAT([&] { MeasureLoss(bad, bad, PrintVariant::kOther, colors_); },
                ThrowsMessage<std::runtime_error>(HasSubstr("error reading file")));
}

}  // namespace

}  // namespace orvex::tools::profile
