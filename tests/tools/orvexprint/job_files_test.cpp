#include "tests/tools/orvexprint/orvexprint_fixture.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr char kPrintFile[] = "\x1B%-12345X@PJL";

}  // namespace

TEST_F(OrvexPrintTest, RefusesAnOutputThatIsAPage) {
    const std::string page = WritePage("a.png");
    const std::string before = ReadBytes(Path("a.png"));
    fs::create_hard_link(Path("a.png"), Path("b.png"));
    for (const char* name : {"a.png", "install/../a.png", "b.png"}) {
        EXPECT_EQ(Run({"--force", "-o", Text(name), WritePage("c.png"), page}), kExitUsage);
        EXPECT_EQ(error, "orvexprint: -o " + Text(name) + " is the same file as the page " + page +
                             "; name another one\n");
    }
    EXPECT_EQ(ReadBytes(Path("a.png")), before);
}

TEST_F(OrvexPrintTest, RefusesTwoOptionsThatNameOneFile) {
    const std::string page = WritePage("a.png");
    EXPECT_EQ(Run({"-o", Text("new"), "--save-devmode", Text("install/../new"), page}), kExitUsage);
    EXPECT_THAT(error, HasSubstr("-o " + Text("new") + " is the same file as --save-devmode "));
    EXPECT_EQ(Run({"-o", Text("labels"), "--printer-data", Text("labels"), page}), kExitUsage);
    RunWell({"--save-devmode", Text("mode.bin")});
    EXPECT_EQ(Run({"--load-devmode", Text("mode.bin"), "--save-devmode", Text("mode.bin")}), kExitUsage);
    EXPECT_EQ(Run({"--load-devmode", Text("mode.bin"), "-o", Text("mode.bin"), page}), kExitUsage);
    EXPECT_FALSE(fs::exists(Path("new")));
    EXPECT_FALSE(fs::exists(Path("labels")));
}

TEST_F(OrvexPrintTest, ReplacesAFileOfAnotherKindOnlyWithForce) {
    const std::string page = WritePage("a.png"), art = WritePage("out.prn");
    const std::string before = OutputBytes();
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", art, page}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: -o " + art + " exists and is no print file; --force replaces it\n");
    EXPECT_EQ(OutputBytes(), before);
    EXPECT_EQ(Run({"--save-devmode", art}), kExitUsage);
    EXPECT_EQ(error, "orvexprint: --save-devmode " + art +
                         " exists and is no device mode of this driver; --force replaces it\n");
    RunWell({"--force", "--size", "30x40mm", "-o", art, page});
    EXPECT_THAT(OutputBytes(), StartsWith(kPrintFile));
    RunWell({"--size", "30x40mm", "-o", art, page});
    WriteBytes(Path("out.prn"), "");
    RunWell({"--size", "30x40mm", "-o", art, page});
    EXPECT_THAT(OutputBytes(), StartsWith(kPrintFile));
}

TEST_F(OrvexPrintTest, TakesNamesOf255Bytes) {
    const std::string name(251, 'x');
    const std::string output = Text("install/" + name + ".prn");
    RunWell({"--size", "30x40mm", "-o", output, WritePage("install/" + name + ".png")});
    EXPECT_THAT(ReadBytes(PathFromUtf8(output)), HasSubstr("@PJL JOB NAME=\"xxx"));
}

TEST_F(OrvexPrintTest, ShowsPathsAsTheyWereGiven) {
    WritePage("a.png");
    const fs::path before = fs::current_path();
    fs::current_path(scratch.Path());
    EXPECT_EQ(Run({"--size", "30x40mm", "-o", "out.prn", "a.png"}), kExitPrinted);
    EXPECT_THAT(out, StartsWith("out.prn: 1 page, "));
    EXPECT_EQ(Run({"-o", "out.prn", "b.png"}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: b.png can't be opened: there is no such file or folder\n");
    fs::current_path(before);
}

TEST_F(OrvexPrintTest, SaysWhatTheDriverReplacesWithoutAWord) {
    ASSERT_EQ(Print(), kExitPrinted);
    EXPECT_EQ(error, "");
    fs::remove(Path("install/profiles"));
    ASSERT_EQ(Print(), kExitPrinted);
    EXPECT_EQ(error, "orvexprint: " + Text("install/profiles") +
                         " is not there; the built-in conversion prints instead\n");
    fs::remove(Path("install/settings.inf"));
    ASSERT_EQ(Print(), kExitPrinted);
    EXPECT_THAT(error, StartsWith("orvexprint: " + Text("install/settings.inf") +
                                  " can't be read; the driver's own defaults apply\norvexprint: "));
    fs::remove(Path("out.prn"));
    EXPECT_EQ(Print({"--strict"}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("install/settings.inf") +
                         " can't be read; the driver's own defaults apply\n");
    EXPECT_TRUE(NothingWasWritten());
}

TEST_F(OrvexPrintTest, FindsNothingMissingInTheInstallationThatWasBuilt) {
    EXPECT_EQ(RunPlain({"--strict", "--dry-run"}), kExitPrinted);
    EXPECT_EQ(error, "");
    EXPECT_THAT(out, HasSubstr(".zvp"));
}

TEST_F(OrvexPrintTest, SaysThatAProfileCannotBeUsed) {
    const std::string profile = Text("install/profiles/a.zvp");
    const auto complaint = [&](const char* problem) {
        return "orvexprint: " + profile + " can't be used: " + problem +
               "; the built-in conversion prints instead\n";
    };
    // A header of version 5 that states the size of the whole file, and a tag with the codes.
    const std::string head("ZVC\x05\x14\0\0\0\0\0\0\0\0\x08\0\x02\x02\0\0\0", 20);
    std::string longer = head + "some of the colors";
    longer[4] = static_cast<char>(longer.size());
    std::string wrongTag = head;
    wrongTag[16] = '\x01';
    for (const std::string& bytes :
         {head.substr(0, 4), head + "longer than stated", head, longer, wrongTag}) {
        scratch.Write("install/profiles/a.zvp", bytes);
        ASSERT_EQ(Print({"--profile", "a.zvp"}), kExitPrinted);
        EXPECT_EQ(error, complaint("it is damaged, or no profile")) << bytes.size();
        EXPECT_EQ(Print({"--profile", "a.zvp", "--strict"}), kExitFailed);
        EXPECT_EQ(error, complaint("it is damaged, or no profile"));
    }
    RunWell({"--profile", "a.zvp", "--save-devmode", Text("mode.bin")});
    fs::remove(Path("install/profiles/a.zvp"));
    ASSERT_EQ(Print({"--load-devmode", Text("mode.bin")}), kExitPrinted);
    EXPECT_EQ(error, complaint("there is no such file, or it can't be opened"));
}

}  // namespace orvex::tools::print
