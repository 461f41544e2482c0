// Whole jobs through the driver and the stand-in engine's library, read back from the print file.

#include <cstring>

#include "driver/support/text.h"
#include "tests/driver/profiles/profile_bytes.h"
#include "tests/kit/driver_fixture.h"
#include "tests/kit/picture.h"
#include "tests/plain/large_profile.h"
#include "tools/orvexview/print_file.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;

namespace {

// Colors that profiles of every version hold: even components, at grid points of version 5.
constexpr uint32_t kColors[] = {0x000000, 0x102030, 0xF0E0D0, 0x808080,
                                0xA01000, 0x00F0E0, 0x40C080, 0xE000E0};
constexpr int32_t kStripe = 16;  // pixels of each color in the first scan lines

class WholeJob : public DriverTest {
  protected:
    WholeJob() { Restart(ProgramFolder() / "hpcrlib.dll"); }

    static DeviceMode Landscape() {
        DeviceMode mode = Mode();
        mode.pub.dmOrientation = DMORIENT_LANDSCAPE;
        return mode;
    }

    // Prints pages that begin with a stripe of each color, on white, and reads the print file.
    tools::view::PrintFile Print(const DeviceMode& mode, size_t pages = 1) {
        JobPlan plan;
        const std::vector<uint8_t> bytes = Bytes(mode);
        plan.deviceMode = bytes;
        plan.title = "whole job";
        plan.pages = pages;
        plan.draw = [](size_t, SURFOBJ& surface) {
            for (int32_t x = 0; x < kStripe * static_cast<int32_t>(std::size(kColors)); ++x) {
                for (int32_t y = 0; y < kStripe; ++y) SetPixel(surface, x, y, kColors[x / kStripe]);
            }
        };
        const JobOutcome outcome = Session().RunJob(plan);
        EXPECT_EQ(outcome.failure, "");
        const std::string& spooled = Printer().written;
        return tools::view::ParsePrintFile({spooled.begin(), spooled.end()});
    }

    // Returns the ink of each color in a landscape page's second row, which has no first-row marker.
    static std::vector<uint32_t> StripeInks(const tools::view::PrintFile& file, size_t page = 0) {
        const std::vector<uint32_t> row = tools::view::ReadRows(file.pages.at(page)).at(1);
        std::vector<uint32_t> inks;
        for (size_t i = 0; i < std::size(kColors); ++i) inks.push_back(row.at(i * kStripe + kStripe / 2));
        return inks;
    }

    template <typename InkOf>
    static std::vector<uint32_t> Expected(InkOf inkOf) {
        std::vector<uint32_t> inks;
        for (const uint32_t color : kColors) inks.push_back(inkOf(color));
        return inks;
    }
};

}  // namespace

TEST_F(WholeJob, PrintsThroughAProfileOfEachVersionAtBothResolutions) {
    for (const int version : {1, 2, 3, 4, 5}) {
        const std::string tags = NameTag("version " + std::to_string(version)) + ResolutionTag(3, 6);
        if (version == 5) {
            installation.Write("profiles/test.zvp", ProfileBytes(5, TagArea(tags), GridColors(&ProfileInk)));
        } else {
            WriteLargeProfile(installation.Path() / "profiles/test.zvp", version, tags);
        }
        for (const int16_t dpi : {300, 600}) {
            SCOPED_TRACE("version " + std::to_string(version) + " at " + std::to_string(dpi) + " dpi");
            Printer().written.clear();
            DeviceMode mode = Landscape();
            mode.pub.dmPrintQuality = dpi;
            const tools::view::PrintFile file = Print(mode);
            EXPECT_EQ(StripeInks(file),
                      Expected([&](uint32_t color) { return ProfileInk(color, dpi == 600); }));
            EXPECT_EQ(*file.header.Find("PROFILE"), "version " + std::to_string(version));
            EXPECT_EQ(file.header.FindNumber("HPRES"), dpi == 600 ? 6 : 3);
            EXPECT_EQ(file.dpi, static_cast<uint32_t>(dpi));
            EXPECT_EQ(file.pages.at(0).resolutionCode, dpi == 600 ? 6 : 3);
        }
    }
}

TEST_F(WholeJob, PrintsGenericColorsWithoutAProfile) {
    std::filesystem::remove_all(installation.Path() / "profiles");
    DeviceMode mode = Landscape();
    mode.priv.colorProfile[0] = 0;
    const tools::view::PrintFile file = Print(mode);
    EXPECT_EQ(StripeInks(file), Expected([](uint32_t color) { return plain::Generic(color, 100); }));
    EXPECT_EQ(*file.header.Find("PROFILE"), "Default");
}

TEST_F(WholeJob, PrintsGenericColorsForAProfileNameThatLeadsElsewhere) {
    installation.Write("stray.zvp", ReadBytes(installation.Path() / "profiles/test.zvp"));
    DeviceMode mode = Landscape();
    CopyText(mode.priv.colorProfile, WideView{L"..\\stray.zvp", 12});
    const tools::view::PrintFile file = Print(mode);
    EXPECT_EQ(StripeInks(file), Expected([](uint32_t color) { return plain::Generic(color, 100); }));
    EXPECT_THAT(LogLines(),
                testing::Contains("[Error] Error: could not open file [profiles\\..\\stray.zvp]"));
}

TEST_F(WholeJob, PrintsAdjustedColorsButLeavesWhitePaperAlone) {
    DeviceMode mode = Landscape();
    const std::vector<uint32_t> plain = StripeInks(Print(mode));
    Printer().written.clear();
    mode.priv.adj_brightness = 30;
    mode.priv.adj_saturation = -20;
    const tools::view::PrintFile file = Print(mode);
    EXPECT_NE(StripeInks(file), plain);
    EXPECT_EQ(tools::view::ReadRows(file.pages.at(0)).back().back(), 0u);
}

TEST_F(WholeJob, PrintsOnALabelOfThePrintersList) {
    PrinterData& data = Printer().data;
    data.SetNumber("Label Sizes\\300", "version", 1);
    data.SetText("Label Sizes\\300", "name", "Narrow");
    data.SetText("Label Sizes\\300", "width", "1.5");
    data.SetText("Label Sizes\\300", "length", "2");
    data.SetNumber("Label Sizes\\300", "units", 1);
    DeviceMode mode = Mode();
    mode.pub.dmPaperSize = 300;
    const tools::view::PrintFile file = Print(mode);
    EXPECT_EQ(file.header.FindNumber("ORIGX"), 450);
    EXPECT_EQ(file.header.FindNumber("ORIGY"), 600);
    EXPECT_EQ(file.pages.at(0).rows, 450u);
    EXPECT_EQ(file.pages.at(0).rowWidth, 600u);
}

TEST_F(WholeJob, CarriesAThumbnailThatAnotherDecoderReads) {
    installation.Write("settings.inf",
                       "[Driver]\r\nAdd_Thumb=1\r\nthumb_max_width=200\r\nthumb_max_height=200\r\n");
    const tools::view::PrintFile file = Print(Landscape());
    ASSERT_TRUE(file.header.thumbnail);
    const tools::view::Thumbnail& thumbnail = *file.header.thumbnail;
    const std::span<const uint8_t> text = file.source->At(thumbnail.offset, thumbnail.size);
    const Picture picture =
        DecodePicture(DecodeBase64({reinterpret_cast<const char*>(text.data()), text.size()}));
    ASSERT_EQ(picture.width, kHeightPx / 4);  // the longer side, halved until it is at most 200
    ASSERT_EQ(picture.height, kWidthPx / 4);
    for (size_t i = 0; i < std::size(kColors); ++i) {
        // A block in the middle of a stripe has one color; blue comes first in memory.
        const size_t at = (size_t{2} * static_cast<size_t>(picture.width) + i * kStripe / 4 + 2) * 4;
        const uint32_t color = kColors[i];
        EXPECT_THAT(std::vector<uint32_t>(picture.rgba.begin() + static_cast<ptrdiff_t>(at),
                                          picture.rgba.begin() + static_cast<ptrdiff_t>(at) + 4),
                    ElementsAre(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF, 0xFFu));
    }
}

TEST_F(WholeJob, PrintsManyPagesAlike) {
    const tools::view::PrintFile file = Print(Landscape(), 5);
    ASSERT_EQ(file.pages.size(), 5u);
    for (size_t page = 0; page < 5; ++page) {
        EXPECT_EQ(StripeInks(file, page),
                  Expected([](uint32_t color) { return ProfileColor(color, false); }));
        EXPECT_EQ(file.pages[page].resolutionCode, 3);
    }
}

}  // namespace orvex
