// Device modes that the command shows, compares, and hands over as they are.
#include <cstring>

#include "driver/config/device_mode.h"
#include "tests/tools/common/made_metafile.h"
#include "tests/tools/orvexprint/made_export.h"
#include "tests/tools/orvexprint/made_shadow.h"
#include "tests/tools/orvexprint/orvexprint_fixture.h"
#include "tools/orvexprint/device_mode_story.h"

namespace orvex::tools::print {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class DeviceModeCommandTest : public OrvexPrintTest {
  protected:
    // Returns a device mode of this driver, with changes, in the bytes that it says to have.
    std::string ModeBytes(void (*change)(DeviceMode&) = [](DeviceMode&) {}) {
        RunWell({"--size", "30x40mm", "--save-devmode", Text("made")});
        DeviceMode mode;
        const std::string bytes = ReadBytes(Path("made"));
        EXPECT_EQ(bytes.size(), sizeof mode);
        memcpy(&mode, bytes.data(), sizeof mode);
        change(mode);
        std::string changed(reinterpret_cast<const char*>(&mode), sizeof mode);
        return changed.substr(0, size_t{mode.pub.dmSize} + mode.pub.dmDriverExtra);
    }

    std::string WriteFile(const char* name, const std::string& bytes) {
        WriteBytes(Path(name), bytes);
        return Text(name);
    }

    // Shows a device mode of the printer of this installation.
    void Show(const std::string& bytes) {
        RunWell({"--show-devmode", WriteFile("mode", bytes)});
        EXPECT_EQ(error, "");
    }

    // Returns what is shown of a field, the first one of that name, with single blanks.
    std::string Shown(const std::string& field) const {
        const size_t begin = out.find("\n  " + field + " ");
        if (begin == std::string::npos) return "no such field";
        const size_t end = out.find('\n', begin + 1);
        std::string line;
        for (const char each : out.substr(begin + 3, end - begin - 3)) {
            if (each != ' ' || line.back() != ' ') line += each;
        }
        return line.substr(field.size() + 1);
    }
};

}  // namespace

TEST_F(DeviceModeCommandTest, ShowsEveryFieldAsStoredAndAsTheDriverHasIt) {
    Show(ModeBytes([](DeviceMode& mode) { mode.pub.dmCopies = 5; }));
    EXPECT_THAT(out, StartsWith(Text("mode") + ": 916 bytes, dmSize 220 and dmDriverExtra 696\n"));
    EXPECT_EQ(Shown("dmCopies"), "5 5 as stored");
    EXPECT_EQ(Shown("dmFormName"), "\"Custom\" \"Custom\" as stored");
    EXPECT_EQ(Shown("signature"), "0x18284000 0x18284000 as stored");
    for (const DeviceModeField& field : tools::print::PublicFields())
        EXPECT_NE(Shown(field.name), "no such field");
    for (const DeviceModeField& field : kPrivateFields) EXPECT_NE(Shown(field.name), "no such field");
    EXPECT_EQ(
        Shown("dmScale"),
        "100 100 not marked in dmFields: kept from the printer; 0 is out of range (100): replaced by 100");
}

TEST_F(DeviceModeCommandTest, SaysWhichValuesAreOutOfRangeAndWhatReplacesThem) {
    Show(ModeBytes([](DeviceMode& mode) {
        mode.pub.dmCopies = 10001;
        mode.pub.dmPrintQuality = 720;
        mode.pub.dmPaperSize = DMPAPER_A4;
        mode.priv.purgeBar = 3;
        mode.priv.adj_cyan = -101;
    }));
    EXPECT_EQ(Shown("dmCopies"), "10001 1 10001 is out of range (1 to 10000): replaced by 1");
    EXPECT_EQ(Shown("dmPrintQuality"), "720 300 720 is out of range (300, 600): replaced by 300");
    EXPECT_EQ(Shown("dmPaperSize"), "9 256 9 is set anew by the validation");
    EXPECT_EQ(Shown("purgeBar"), "3 1 3 is out of range (0 to 2): replaced by 1");
    EXPECT_EQ(Shown("adj_cyan"), "-101 0 -101 is out of range (-100 to 100): replaced by 0");
}

TEST_F(DeviceModeCommandTest, SaysWhatIsKeptFromThePrinter) {
    Show(ModeBytes([](DeviceMode& mode) {
        mode.pub.dmFields = DM_COLLATE;
        mode.pub.dmCopies = 5;
        mode.pub.dmDeviceName[0] = 'X';
        mode.priv.signature = 1;
        mode.priv.kws = 1;
    }));
    EXPECT_EQ(Shown("dmCopies"), "5 1 not marked in dmFields: kept from the printer");
    EXPECT_THAT(Shown("dmDeviceName"), HasSubstr("never taken: kept from the printer"));
    EXPECT_EQ(Shown("dmFields"),
              "0x00008000 0x0001cf0f merged with the printer's; 0x0001cf03 is set anew by the validation");
    EXPECT_EQ(Shown("kws"), "1 0 another driver's signature: kept from the printer");
    EXPECT_EQ(Shown("signature"), "0x00000001 0x18284000 another driver's signature: kept from the printer");
}

TEST_F(DeviceModeCommandTest, SaysWhichProfileAndLabelTheRecordLacks) {
    scratch.Write("install/settings.inf", "[UI]\r\nDefault_Media=Small\r\n");
    std::filesystem::copy_file(ProgramFolder() / "install/profiles/neutral.zvp",
                               Path("install/profiles/neutral.zvp"));
    Show(ModeBytes([](DeviceMode& mode) {
        mode.pub.dmPaperSize = mode.priv.dmPaperSize = kPaperDefault;
        memset(mode.priv.colorProfile, 0, sizeof mode.priv.colorProfile);
    }));
    EXPECT_EQ(Shown("colorProfile"), "\"\" \"neutral.zvp\" the record names none: kept from the printer");
    EXPECT_EQ(Shown("dmPaperSize"), "257 259 the record names none: kept from the printer");
}

TEST_F(DeviceModeCommandTest, SaysWhatIsPastTheEndOfTheRecord) {
    std::string mode = ModeBytes([](DeviceMode& each) { each.pub.dmDriverExtra = 130; });
    Show(mode);
    EXPECT_EQ(Shown("kws"), "0 0 as stored");
    EXPECT_EQ(Shown("purgeDots"),
              "- 1 past the end of the record: kept from the printer; 0 is out of range (1, 5, 10): replaced "
              "by 1");
    mode = ModeBytes([](DeviceMode& each) { each.pub.dmDriverExtra = 40; });
    Show(mode);
    EXPECT_THAT(Shown("labelName"), HasSubstr("cut by the end of the record: the rest is the printer's"));
    Show(mode.substr(0, 230) + std::string(40, 'x'));
    EXPECT_THAT(out,
                HasSubstr("270 bytes, dmSize 220 and dmDriverExtra 40; the driver reads none of the last "
                          "10\n"));
}

TEST_F(DeviceModeCommandTest, ShowsRecordsThatTheDriverRefusesOrOverruns) {
    Show(ByteMaker().Zeros(68).U16(100).U16(0).Zeros(28).Bytes());
    EXPECT_THAT(out, HasSubstr("The driver refuses it: it has the dmSize of no known layout, and its "));
    EXPECT_EQ(Shown("purgeDots"), "- 0 the printer's") << "not validated";
    Show(ModeBytes().substr(0, 500));
    EXPECT_THAT(out,
                HasSubstr("500 bytes, dmSize 220 and dmDriverExtra 696: it says that it has 916, and the "
                          "driver reads past its end\n"));
    EXPECT_EQ(Shown("phHOffset"), "- 0 missing, though the record says that it has it: zero is assumed");
    Show("few");
    EXPECT_THAT(out, HasSubstr("3 bytes, which end before dmDriverExtra: the driver reads past them\n"));
}

TEST_F(DeviceModeCommandTest, ShowsAllDeviceModesOfAFileOrOne) {
    MadeSpoolFile made("", "");
    made.DeviceMode(ModeBytes());
    made.DeviceMode(ModeBytes([](DeviceMode& mode) { mode.pub.dmCopies = 7; }));
    const std::string job = WriteFile("job.spl", made.File());
    RunWell({"--show-devmode", job});
    EXPECT_THAT(out, AllOf(StartsWith(job + "#1: EMRI_DEVMODE at offset "), HasSubstr("\n" + job + "#2: ")));
    RunWell({"--show-devmode", job + "#2"});
    EXPECT_THAT(out, StartsWith(job + "#2: EMRI_DEVMODE at offset "));
    EXPECT_EQ(Shown("dmCopies"), "7 7 as stored");
    EXPECT_EQ(Run({"--show-devmode", job + "#3"}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + job + "#3 is not there: the file holds 2 device modes\n");
    EXPECT_EQ(Run({"--show-devmode", job + "#x"}), kExitFailed);
    EXPECT_THAT(error, HasSubstr("job.spl#x can't be opened"));
    EXPECT_EQ(Run({"--show-devmode", WriteFile("empty", "")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("empty") + " holds no device mode\n");
}

TEST_F(DeviceModeCommandTest, ComparesTwoDeviceModes) {
    const std::string a = WriteFile("a", ModeBytes());
    EXPECT_EQ(Run({"--compare-devmode", a, a}), kExitPrinted);
    EXPECT_EQ(out, "the same, 916 bytes\n");
    const std::string b = WriteFile("b", ModeBytes([](DeviceMode& mode) { mode.pub.dmCopies = 7; }));
    EXPECT_EQ(Run({"--compare-devmode", a, b}), kExitFailed);
    EXPECT_EQ(Shown("dmCopies"), "1 7");
    EXPECT_EQ(Shown("dmScale"), "no such field") << "which is the same";
    EXPECT_THAT(out, testing::EndsWith("The first different byte is at offset 86.\n"));
    const std::string reserved =
        WriteFile("r", ModeBytes([](DeviceMode& mode) { mode.priv.reserved695 = 1; }));
    EXPECT_EQ(Run({"--compare-devmode", a, reserved}), kExitFailed);
    EXPECT_THAT(out, HasSubstr("No field differs; the first different byte is at offset 915.\n"));
    EXPECT_EQ(Run({"--compare-devmode", a, WriteFile("s", ModeBytes().substr(0, 220))}), kExitFailed);
    EXPECT_EQ(Shown("bytes"), "916 220");
    EXPECT_EQ(Shown("copies"), "1 -");
}

TEST_F(DeviceModeCommandTest, SaysThatDeviceModesCantBeCompared) {
    const std::string a = WriteFile("a", ModeBytes());
    EXPECT_EQ(Run({"--compare-devmode", a, Text("none")}), kExitUsage);
    EXPECT_THAT(error, HasSubstr("none can't be opened"));
    MadeSpoolFile made("", "");
    made.DeviceMode("one");
    made.DeviceMode("two");
    const std::string job = WriteFile("job.spl", made.File());
    EXPECT_EQ(Run({"--compare-devmode", a, job}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: " + job + " holds 2 device modes; name one, \"" + job + "#1\" to \"" + job +
                         "#2\", as --show-devmode lists them\n");
    EXPECT_EQ(Run({"--compare-devmode", a}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: --compare-devmode takes two files\n");
    EXPECT_EQ(Run({"--show-devmode", a, a}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: --show-devmode takes one file\n");
    EXPECT_EQ(Run({"--show-devmode"}), kExitUsage);
    EXPECT_THAT(error, HasSubstr("--show-devmode --help shows what there is"));
    RunWell({"--show-devmode", "--help"});
    EXPECT_THAT(out, HasSubstr("Exit status of --compare-devmode: 0 when both are the same"));
}

TEST_F(DeviceModeCommandTest, LoadsDeviceModesOutOfOtherFiles) {
    const std::string mode = ModeBytes([](DeviceMode& each) { each.pub.dmCopies = 7; });
    const std::string shadow =
        WriteFile("job.shd", MakeShadowFile(kShadowKinds[0], "Name", "NT EMF 1.008", mode));
    const std::string values = BinaryValue("Default DevMode", mode);
    const std::string exported = WriteFile("printer.reg", AsUtf16File(MakeExport("P", values + values)));
    for (const std::string& file : {shadow, exported + "#2"}) {
        RunWell({"--load-devmode", file, "--save-devmode", Text("used")});
        EXPECT_EQ(ReadBytes(Path("used")), mode);
    }
    EXPECT_EQ(Run({"--load-devmode", exported + "#2", "--save-devmode", exported}), kExitUsage);
    EXPECT_THAT(error, HasSubstr("is the same file as --load-devmode"));
    EXPECT_EQ(Run({"--dry-run", "--save-devmode", shadow}), kExitUsage);
    EXPECT_THAT(error, HasSubstr("exists and is no device mode of this driver")) << "but a shadow file";
}

TEST_F(DeviceModeCommandTest, HandsOverADeviceModeAsItIs) {
    const std::string odd = ModeBytes([](DeviceMode& mode) {
        mode.pub.dmDriverExtra = 3;
        mode.pub.dmCopies = 9;
        mode.pub.dmPaperWidth = 500;
    });
    const std::string page = WritePage("a.png");
    RunWell({"--load-devmode", WriteFile("odd", odd), "--as-is", "-o", Text("out.prn"), page});
    EXPECT_THAT(OutputBytes(), HasSubstr("@PJL SET COPIES=9\n"));
    EXPECT_EQ(Run({"--load-devmode", Text("odd"), "--dry-run"}), kExitFailed) << "without --as-is";
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--as-is"}, {"--as-is", "--load-devmode", Text("odd"), "--copies", "2"}}) {
        std::vector<std::string> arguments = options;
        arguments.insert(arguments.end(), {"-o", Text("out.prn"), page});
        EXPECT_EQ(Run(arguments), kExitUsage);
        EXPECT_THAT(error, HasSubstr("--as-is hands over the device mode of --load-devmode as it is stored"));
    }
}

using DeviceModeCommandDeathTest = DeviceModeCommandTest;

TEST_F(DeviceModeCommandDeathTest, EndsWithASentenceWhenTheDriverReadsPastTheDeviceMode) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string cut = WriteFile("cut", ModeBytes().substr(0, 500));
    const std::string few = WriteFile("few", "abcd");
    const std::string page = WritePage("a.png");
    for (const std::string& file : {cut, few}) {
        EXPECT_EXIT(
            Run({"--load-devmode", file, "--as-is", "-o", Text("out.prn"), page}), testing::ExitedWithCode(1),
            "orvexprint: the driver read past the end of the device mode, which has fewer bytes than");
    }
    EXPECT_TRUE(NothingWasWritten());
}

}  // namespace orvex::tools::print
