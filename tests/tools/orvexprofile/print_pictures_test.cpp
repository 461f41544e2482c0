#include <gmock/gmock.h>

#include "tests/tools/orvexprofile/profile_samples.h"
#include "tools/orvexprofile/loaded_profile.h"
#include "tools/orvexprofile/print_pictures.h"

namespace orvex::tools::profile {

namespace {

using testing::ElementsAre;
using testing::Not;

std::vector<int> PixelAt(const Picture& picture, uint32_t x, uint32_t y) {
    const uint8_t* samples = picture.At(x, y);
    return {samples, samples + picture.channels};
}

constexpr uint32_t kRedInks = PackInks(0, 0, 255, 255);
constexpr uint32_t kBlackInks = PackInks(255, 0, 0, 0);

RasterImage ThreePixels() {
    RasterImage image = MakeImage(3, 1);
    image.pixels[0] = 0xFFFFFF;
    image.pixels[1] = 0xFF0000;
    image.pixels[2] = 0x000000;
    return image;
}

TEST(PrintedPicture, ShowsTheCompositeAndEveryInk) {
    LoadGenericIntoDriver(PrintVariant::kOther);
    const InkPictures print = PrintPicture(ThreePixels(), PrintVariant::kOther);
    EXPECT_EQ(PixelAt(print.composite, 0, 0), Shown(0));
    EXPECT_EQ(PixelAt(print.composite, 1, 0), Shown(kRedInks));
    EXPECT_EQ(PixelAt(print.composite, 2, 0), Shown(kBlackInks));
    EXPECT_THAT(print.inks[kBlackInk].samples, ElementsAre(255, 255, 0));
    EXPECT_THAT(print.inks[kCyanInk].samples, ElementsAre(255, 255, 255));
    EXPECT_THAT(print.inks[kMagentaInk].samples, ElementsAre(255, 0, 255));
    EXPECT_THAT(print.inks[kYellowInk].samples, ElementsAre(255, 0, 255));
}

TEST(PrintedPicture, TakesHalfOfAnAmountAsFullAt600Dpi) {
    LoadGenericIntoDriver(PrintVariant::kAt600);
    EXPECT_THAT(PrintPicture(ThreePixels(), PrintVariant::kAt600).inks[kMagentaInk].samples,
                ElementsAre(255, 0, 255));
    EXPECT_THAT(PrintPicture(ThreePixels(), PrintVariant::kOther).inks[kMagentaInk].samples,
                ElementsAre(255, 127, 255));
}

TEST(PrintedPicture, KeepsTheDensityOfThePicture) {
    LoadGenericIntoDriver(PrintVariant::kOther);
    RasterImage image = ThreePixels();
    EXPECT_DOUBLE_EQ(PrintPicture(image, PrintVariant::kOther).pixelsPerInch, 96);
    image.density = PixelDensity{10000, 10000};
    EXPECT_DOUBLE_EQ(PrintPicture(image, PrintVariant::kOther).pixelsPerInch, 254);
}

class Charts : public testing::Test {
  protected:
    Charts() {
        LoadGenericIntoDriver(PrintVariant::kOther);
        chart_ = DrawChart("Title", PrintVariant::kOther);
    }
    Picture chart_;
};

TEST_F(Charts, DrawRampsFromWhiteOverThePrimaryToBlack) {
    for (int ramp = 0; ramp < static_cast<int>(kChartRamps.size()); ++ramp) {
        SCOPED_TRACE(kChartRamps[static_cast<size_t>(ramp)].name);
        const ChartPlace place = RampPrint(ramp);
        EXPECT_EQ(RampColor(ramp, 0), 0xFFFFFFu);
        EXPECT_EQ(RampColor(ramp, place.width - 1), 0u);
        EXPECT_EQ(PixelAt(chart_, place.x, place.y), Shown(0));
        EXPECT_EQ(PixelAt(chart_, place.x + place.width - 1, place.y + place.height - 1), Shown(kBlackInks));
    }
    EXPECT_EQ(RampColor(0, 128), 0xFF7F7Fu);
    EXPECT_EQ(RampColor(0, 384), 0x7F0000u);
    const ChartPlace red = RampPrint(0);
    EXPECT_EQ(PixelAt(chart_, red.x + 128, red.y + 5), Shown(LookupColor(0xFF7F7F)));
}

TEST_F(Charts, DrawTheAmountOfEachInkAboveItsColor) {
    const ChartPlace curves = RampCurves(6);
    const auto blackInk = ElementsAre(0, 0, 0);
    EXPECT_THAT(PixelAt(chart_, curves.x, curves.y + curves.height - 1), blackInk) << "white: none";
    EXPECT_THAT(PixelAt(chart_, curves.x + curves.width - 1, curves.y), blackInk) << "black: full";
    const uint32_t amount = InkAmount(LookupColor(RampColor(6, 300)), kBlackInk);
    const uint32_t y = curves.y + (255 - amount) * (curves.height - 1) / 255;
    EXPECT_THAT(PixelAt(chart_, curves.x + 300, y), blackInk);
    EXPECT_THAT(PixelAt(chart_, curves.x + 300, y - 2), Not(blackInk));
}

TEST_F(Charts, SliceTheCubeAcrossRed) {
    EXPECT_EQ(SliceColor(0, 0, 0), 0u);
    EXPECT_EQ(SliceColor(4, 0, 0), 0x800000u);
    const ChartPlace last = SlicePrint(kChartSlices - 1), total = SliceTotal(kChartSlices - 1);
    EXPECT_EQ(SliceColor(kChartSlices - 1, last.width - 1, last.height - 1), 0xFFFFFFu);
    EXPECT_EQ(PixelAt(chart_, last.x, last.y), Shown(kRedInks)) << "red";
    EXPECT_EQ(PixelAt(chart_, last.x + last.width - 1, last.y), Shown(PackInks(0, 0, 255, 0))) << "magenta";
    EXPECT_EQ(PixelAt(chart_, last.x, last.y + last.height - 1), Shown(PackInks(0, 0, 0, 255))) << "yellow";
    // Red takes two full inks out of four.
    EXPECT_THAT(PixelAt(chart_, total.x, total.y), ElementsAre(128, 128, 128));
    EXPECT_THAT(PixelAt(chart_, total.x + total.width - 1, total.y + total.height - 1),
                ElementsAre(255, 255, 255));
}

TEST_F(Charts, HaveNoPartsThatOverlap) {
    std::vector<ChartPlace> places;
    for (int ramp = 0; ramp < static_cast<int>(kChartRamps.size()); ++ramp) {
        places.push_back(RampPrint(ramp));
        places.push_back(RampCurves(ramp));
    }
    for (int slice = 0; slice < kChartSlices; ++slice) {
        places.push_back(SlicePrint(slice));
        places.push_back(SliceTotal(slice));
    }
    for (size_t i = 0; i < places.size(); ++i) {
        const ChartPlace& a = places[i];
        EXPECT_LE(a.x + a.width, chart_.width);
        EXPECT_LE(a.y + a.height, chart_.height);
        for (size_t j = 0; j < i; ++j) {
            const ChartPlace& b = places[j];
            EXPECT_TRUE(a.x >= b.x + b.width || b.x >= a.x + a.width || a.y >= b.y + b.height ||
                        b.y >= a.y + a.height)
                << i << " and " << j;
        }
    }
}

TEST_F(Charts, WriteOnlyTheAsciiCharactersOfTheTitle) {
    const Picture untitled = DrawChart("", PrintVariant::kOther);
    EXPECT_NE(chart_.samples, untitled.samples);
    EXPECT_EQ(DrawChart("\xC3\xA9Title\n", PrintVariant::kOther).samples, chart_.samples);
}

}  // namespace

}  // namespace orvex::tools::profile
