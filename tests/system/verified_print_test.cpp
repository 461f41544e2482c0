// Jobs through the driver, verified by the viewer against the art and the profile.

#include <sstream>

#include "tests/kit/driver_fixture.h"
#include "tests/plain/device_mode.h"
#include "tools/common/png_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/report.h"
#include "tools/orvexview/viewing.h"

namespace orvex {

using namespace tools;
using testing::HasSubstr;

namespace {

class VerifiedPrint : public DriverTest {
  protected:
    VerifiedPrint() { Restart(ProgramFolder() / "hpcrlib.dll"); }

    // The art: colors of a pattern without symmetry, and blank paper.
    static uint32_t ColorAt(int32_t x, int32_t y) {
        if (y % 40 > 25 || x < 2) return 0xFFFFFF;
        return static_cast<uint32_t>(x * 8) % 256 << 16 | static_cast<uint32_t>(y * 3) % 256 << 8 |
               static_cast<uint32_t>(x + y) % 256;
    }

    // Prints the art and writes it as a PNG beside the print file.
    void Print(const DeviceMode& mode) {
        Printer().written.clear();
        JobPlan plan;
        const std::vector<uint8_t> bytes = Bytes(mode);
        plan.deviceMode = bytes;
        plan.title = "art";
        tools::Picture art;
        plan.draw = [&](size_t, SURFOBJ& surface) {
            art = tools::Picture(static_cast<uint32_t>(surface.sizlBitmap.cx),
                                 static_cast<uint32_t>(surface.sizlBitmap.cy), 3);
            for (int32_t y = 0; y < surface.sizlBitmap.cy; ++y) {
                for (int32_t x = 0; x < surface.sizlBitmap.cx; ++x) {
                    const uint32_t color = ColorAt(x, y);
                    SetPixel(surface, x, y, color);
                    StoreColor(art.At(static_cast<uint32_t>(x), static_cast<uint32_t>(y)),
                               {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                                static_cast<uint8_t>(color)});
                }
            }
        };
        EXPECT_EQ(Session().RunJob(plan).failure, "");
        WriteBytes(folder_.Path() / "job.prn", Printer().written);
        SavePng(art, 300, folder_.Path() / "art.png");
    }

    int Verify(size_t bandBytes = size_t{64} << 20) {
        view::Options options;
        options.file = Utf8FromPath(folder_.Path() / "job.prn");
        options.pictures = false;
        options.verify = Utf8FromPath(folder_.Path() / "art.png");
        options.profile = Utf8FromPath(installation.Path() / "profiles" / kProfile);
        options.bandBytes = bandBytes;
        out_.str("");
        return view::ShowPrintFile(options, out_);
    }

    ScratchFolder folder_;
    std::ostringstream out_;
};

}  // namespace

TEST_F(VerifiedPrint, EveryKindOfPrintIsRight) {
    for (const int16_t orientation : {DMORIENT_PORTRAIT, DMORIENT_LANDSCAPE}) {
        for (const int16_t dpi : {300, 600}) {
            for (const int32_t colorMode : {kColorModeColor, kColorModeCompositeGray, kColorModeBlackGray}) {
                for (const bool kept : {false, true}) {
                    DeviceMode mode = Mode();
                    mode.pub.dmOrientation = orientation;
                    mode.pub.dmPrintQuality = dpi;
                    mode.priv.colorMode = colorMode;
                    mode.priv.kws = kept;
                    mode.priv.kws_fullwidth = kept;
                    mode.priv.purgeBar = kept ? 1 : 0;
                    Print(mode);
                    EXPECT_EQ(Verify(), 0) << orientation << " " << dpi << " " << colorMode << " " << kept;
                    EXPECT_THAT(out_.str(), HasSubstr("The print is right: all "));
                }
            }
        }
    }
}

TEST_F(VerifiedPrint, BandsGiveTheSameVerdict) {
    DeviceMode mode = Mode();
    mode.priv.kws = 1;
    Print(mode);
    EXPECT_EQ(Verify(20'000), 0) << out_.str();
}

TEST_F(VerifiedPrint, AWrongPrintIsNamedByPlaceAndInks) {
    Print(Mode());
    tools::Picture art(kWidthPx, kHeightPx, 3);
    for (uint32_t y = 0; y < kHeightPx; ++y) {
        for (uint32_t x = 0; x < kWidthPx; ++x) {
            uint32_t color = ColorAt(static_cast<int32_t>(x), static_cast<int32_t>(y));
            if (x == 100 && y == 30) color = 0x102030;
            StoreColor(art.At(x, y), {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                                      static_cast<uint8_t>(color)});
        }
    }
    SavePng(art, 300, folder_.Path() / "art.png");
    EXPECT_EQ(Verify(), 1);
    EXPECT_THAT(out_.str(),
                HasSubstr("The print is wrong: 1 of 167,088 pixels have other inks than the art"));
    EXPECT_THAT(out_.str(),
                HasSubstr("The first is at (100, 30) of the label: K 0  C 0  M 0  Y 0 printed, "));
}

TEST_F(VerifiedPrint, AProfileThatTheDriverRefusesIsNamed) {
    Print(Mode());
    installation.Write("profiles/test.zvp", "no profile");
    EXPECT_THROW(Verify(), std::runtime_error);
}

TEST_F(VerifiedPrint, SettingsAsTheDriverMakesThemAreTheUsualOnes) {
    DeviceMode mode = Mode();
    mode.priv.alignment = plain::ValidDeviceMode().priv.alignment;
    mode.priv.phHOffset = plain::ValidDeviceMode().priv.phHOffset;
    Print(mode);
    const view::PrintFile file = view::ReadPrintFile(folder_.Path() / "job.prn");
    std::vector<std::string> unusual;
    for (const view::HeaderVariable& variable : file.header.variables) {
        if (view::IsUnusual(variable.name, variable.value)) unusual.push_back(variable.name);
    }
    EXPECT_THAT(unusual, testing::IsEmpty());
}

}  // namespace orvex
