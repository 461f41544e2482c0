// The settings, labels and device modes of orvexprint, which it also shows without printing.
#include <cstring>

#include "driver/config/device_mode.h"
#include "tests/tools/orvexprint/orvexprint_fixture.h"

namespace orvex::tools::print {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

class InstalledProfileTest : public OrvexPrintTest {
  protected:
    InstalledProfileTest() {
        scratch.Write("install/profiles/coated.zvp", "");
        std::string names = "\xFF\xFE";
        for (const char c : std::string("[ENU]\r\ncoated.zvp=Coated\r\n[DEU]\r\ncoated.zvp=Gestrichen\r\n")) {
            names += c;
            names += '\0';
        }
        scratch.Write("install/profilenames.inf", names);
    }
};

}  // namespace

TEST_F(OrvexPrintTest, ShowsTheLayoutAndPrintsNothing) {
    RunWell({"--dry-run", "--size", "100x150mm", "--dpi", "600", "--align", "centre", "--purge-bar",
             "leading", "--full-width", "--print-head-offset", "0", WritePage("a.png")});
    EXPECT_THAT(out, HasSubstr("Label: 600 dpi, 100.0 x 150.0 mm, portrait\nBitmap: 2362 x 3543 pixels\n"));
    // These settings were not given; the driver's validation sets them.
    EXPECT_THAT(out, HasSubstr("  purge-dots            1 pixel\n  purge-gap             5 mm\n"));
    // A row has the page's 3543 pixels, a dot and 5 mm of 23 pixels.
    EXPECT_THAT(out, HasSubstr("  row                   3659 pixels (154.9 mm), of which the page 3543\n"));
    EXPECT_THAT(
        out,
        HasSubstr(
            "  purge bar             116 pixels, 1 of them inked, ahead of the page, on the first page\n"));
    EXPECT_THAT(out, HasSubstr("  rows of the page      2362 pixels (100.0 mm)\n"));
    EXPECT_THAT(out, HasSubstr("  fill rows before      2329\n  fill rows behind      2329\n"));
    EXPECT_THAT(out, HasSubstr("  rows of the block     7020 pixels (297.2 mm), the full width\n"));
    EXPECT_THAT(out, HasSubstr("  a pixel               12 units of 1/7200 inch\n"));
    EXPECT_THAT(out, HasSubstr("  image                 43908 units (154.9 mm) x 28344 units (100.0 mm)\n"));
    EXPECT_THAT(out, HasSubstr("  page                  46308 units (163.4 mm) x 30744 units (108.5 mm)\n"));
    EXPECT_THAT(out, HasSubstr("  page as announced     46308 units (163.4 mm) x 86616 units (305.6 mm)\n"));
    EXPECT_THAT(
        out,
        HasSubstr("  a.png: 472 x 236 pixels, 945 from the left, 1653 from the top, enlarged 2.00 times: "));
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(OrvexPrintTest, ShowsTheOffsetOfALabelOnTheRight) {
    RunWell({"--dry-run", "--size", "100x150mm", "--align", "right", "--print-head-offset", "1.0mm"});
    EXPECT_THAT(
        out,
        HasSubstr("  print-head offset     -12 pixels (-1.0 mm), of the opposite sign to the setting\n"));
    EXPECT_THAT(out, HasSubstr("  block begins at       2317 pixels (196.2 mm)\n"));
    EXPECT_THAT(out, HasSubstr("  purge bar             none\n"));
}

TEST_F(OrvexPrintTest, TakesALabelOfTheList) {
    RunWell({"--dry-run", "--label", "Shipping"});
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, 101.6 x 152.4 mm, portrait\nBitmap: 1200 x 1800 pixels\n"));
    RunWell({"--dry-run", "--label", "Small", "--landscape"});
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, 50.0 x 30.0 mm, landscape\nBitmap: 354 x 591 pixels\n"));
}

TEST_F(OrvexPrintTest, PrefersASizeToTheInstallationsDefaultLabel) {
    scratch.Write("install/settings.inf", "[UI]\r\nDefault_Media=Shipping\r\n");
    RunWell({"--dry-run"});
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, 101.6 x 152.4 mm, portrait\nBitmap: 1200 x 1800 pixels\n"));
    RunWell({"--dry-run", "--size", "50x60mm"});
    EXPECT_THAT(out, HasSubstr("Label: 300 dpi, 50.0 x 60.0 mm, portrait\nBitmap: 591 x 709 pixels\n"));
}

TEST_F(OrvexPrintTest, ListsLabelsAndProfiles) {
    RunWell({"--list"});
    EXPECT_EQ(out,
              "Labels\n"
              "  258   Shipping                          4 x 6 in\n"
              "  259   Small                             50 x 30 mm\n"
              "Colour profiles\n"
              "  none\n");
}

TEST_F(InstalledProfileTest, IsListedInALanguage) {
    RunWell({"--list", "--language", "DEU"});
    EXPECT_THAT(out, HasSubstr("  coated.zvp                  Gestrichen\n"));
    RunWell({"--list", "--language", "ENU"});
    EXPECT_THAT(out, HasSubstr("  coated.zvp                  Coated\n"));
}

TEST_F(InstalledProfileTest, IsChosenByEitherOfItsNamesInAnyCase) {
    for (const char* name : {"coated.zvp", "Gestrichen", "COATED.ZVP", "gestrichen"}) {
        RunWell({"--dry-run", "--language", "DEU", "--profile", name});
        EXPECT_THAT(out, HasSubstr("coated.zvp\n")) << name;
    }
    EXPECT_EQ(Run({"--dry-run", "--language", "DEU", "--profile", "Gestrich"}), kExitUsage);
    EXPECT_EQ(
        error,
        "orvexprint: --profile: \"Gestrich\" is not allowed; it takes the path of a profile, or the name "
        "of an installed one: \"Gestrichen\", \"coated.zvp\"\n");
}

TEST_F(OrvexPrintTest, InstallsAProfileForOneRun) {
    const std::string bytes = ReadBytes(ProgramFolder() / "install/profiles/neutral.zvp");
    const std::string elsewhere = Utf8FromPath(scratch.Write(PathFromUtf8("art/\xC3\xA4 mine.zvp"), bytes));
    ASSERT_EQ(Print(), kExitPrinted);
    const std::string without = OutputBytes();
    ASSERT_EQ(Print({"--profile", elsewhere, "--strict"}), kExitPrinted) << error;
    EXPECT_EQ(error, "");
    const std::string lent = OutputBytes();
    EXPECT_TRUE(std::filesystem::is_empty(Path("install/profiles")));
    scratch.Write(PathFromUtf8("install/profiles/\xC3\xA4 mine.zvp"), bytes);
    ASSERT_EQ(Print({"--profile", "\xC3\xA4 mine.zvp", "--strict"}), kExitPrinted) << error;
    EXPECT_EQ(OutputBytes(), lent);
    EXPECT_NE(without, lent);
}

TEST_F(OrvexPrintTest, SaysThatAProfileOfOneRunCannotBeUsed) {
    WriteBytes(Path("bad.zvp"), "ZVC");
    EXPECT_EQ(Run({"--dry-run", "--strict", "--profile", Text("bad.zvp")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("bad.zvp") +
                         " can't be used: it is damaged, or no profile; the built-in conversion prints "
                         "instead\n");
    WriteBytes(Path("out.prn"), "ZVC");
    EXPECT_EQ(Print({"--force", "--profile", Text("out.prn")}), kExitUsage);
    EXPECT_THAT(error, HasSubstr("-o " + Text("out.prn") + " is the same file as --profile "));
}

TEST_F(OrvexPrintTest, KeepsThePrintersLabelsInAFileWhenAsked) {
    RunWell({"--list", "--printer-data", Text("data.json")});
    scratch.Write("install/media.inf", "[Media]\r\n\"Other\", \"1\", \"1\", 1\r\n");
    RunWell({"--list", "--printer-data", Text("data.json")});
    EXPECT_THAT(out, AllOf(HasSubstr("Shipping"), Not(HasSubstr("Other"))));
    WriteBytes(Path("data.json"), "{");
    EXPECT_EQ(Run({"--list", "--printer-data", Text("data.json")}), kExitFailed);
    EXPECT_THAT(error, HasSubstr("data.json"));
}

TEST_F(OrvexPrintTest, SavesAndLoadsDeviceModes) {
    RunWell({"--save-devmode", Text("mode.bin"), "--size", "30x40mm", "--dpi", "600", "--cyan", "-5",
             "--landscape", "--purge-bar", "trailing"});
    const std::string bytes = ReadBytes(Path("mode.bin"));
    ASSERT_EQ(bytes.size(), 916u);
    DeviceMode mode;
    memcpy(&mode, bytes.data(), sizeof mode);
    EXPECT_EQ(mode.pub.dmPrintQuality, 600);
    EXPECT_EQ(mode.pub.dmPaperWidth, 300);
    EXPECT_EQ(mode.pub.dmPaperLength, 400);
    EXPECT_EQ(mode.priv.adj_cyan, -5);
    EXPECT_EQ(mode.priv.purgeDots, 1) << "as the driver makes it";
    RunWell({"--dry-run", "--load-devmode", Text("mode.bin"), "--portrait"});
    EXPECT_THAT(out, AllOf(HasSubstr("Label: 600 dpi, 30.0 x 40.0 mm, portrait\n"),
                           HasSubstr("  cyan                  -5\n"),
                           HasSubstr("  purge-bar             trailing\n")));
}

TEST_F(OrvexPrintTest, RefusesFilesThatAreNotADeviceMode) {
    RunWell({"--save-devmode", Text("mode.bin")});
    std::string bytes = ReadBytes(Path("mode.bin"));
    WriteBytes(Path("short.bin"), bytes.substr(1));
    WriteBytes(Path("long.bin"), bytes + "x");
    bytes[220] ^= 1;
    WriteBytes(Path("foreign.bin"), bytes);
    for (const char* name : {"short.bin", "long.bin"}) {
        EXPECT_EQ(Run({"--dry-run", "--load-devmode", Text(name)}), kExitFailed);
        EXPECT_EQ(error, "orvexprint: " + Text(name) + " is no device mode: it does not have 916 bytes\n");
    }
    EXPECT_EQ(Run({"--dry-run", "--load-devmode", Text("foreign.bin")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("foreign.bin") + " is no device mode of this driver\n");
    EXPECT_EQ(Run({"--dry-run", "--load-devmode", Text("missing.bin")}), kExitFailed);
    EXPECT_EQ(error,
              "orvexprint: " + Text("missing.bin") + " can't be opened: there is no such file or folder\n");
}

}  // namespace orvex::tools::print
