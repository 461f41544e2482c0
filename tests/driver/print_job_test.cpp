#include <filesystem>

#include "driver/device_instance.h"
#include "tests/driver/driver_fixture.h"
#include "tests/driver/profiles/profile_bytes.h"
#include "tests/driver/test_mode.h"

namespace orvex {

using namespace tools;
namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

namespace {

class PrintJob : public DriverTest {
  protected:
    PrintJob() : directoryBefore_(fs::current_path()) {}
    ~PrintJob() override { EXPECT_EQ(fs::current_path(), directoryBefore_); }

    bool Start(const std::unique_ptr<Device>& device, const std::string& title = "title") {
        return Session().StartDoc(*device, title, 42);
    }
    // Ends the job and lets the engine write its header; returns the spooled bytes.
    std::string HeaderOf(const DeviceMode& mode, const std::string& title = "title") {
        const auto device = StartPage(mode, title);
        EXPECT_EQ(engine.Output("@PJL COMMENT x\n"), 1);
        EXPECT_TRUE(Session().EndDoc(*device));
        return Printer().written;
    }

  private:
    fs::path directoryBefore_;
};

}  // namespace

TEST_F(PrintJob, TakesNoOutputOnceItHasEnded) {
    const auto device = StartPage(Mode());
    ASSERT_TRUE(Session().EndDoc(*device));
    EXPECT_EQ(engine.Output("late"), 0);
    EXPECT_THAT(Printer().written, IsEmpty());
}

TEST_F(PrintJob, TellsTheEngineItsResolutionMode) {
    DeviceMode mode = Mode();
    mode.pub.dmPrintQuality = 600;
    const auto device = Enable(mode);
    ASSERT_TRUE(Start(device));
    Session().EndDoc(*device);
    EXPECT_THAT(engine.calls, ElementsAre("JobStart 1 0", "JobEnd"));
}

TEST_F(PrintJob, ErasesTheBitmapToWhiteAtItsStartAndForEachPage) {
    const auto device = StartPage(Mode());
    const auto& erasures = Session().Graphics().Erasures();
    ASSERT_EQ(erasures.size(), 2u);
    for (const Erasure& erasure : erasures) {
        EXPECT_EQ(erasure.surface, device->Surface());
        EXPECT_EQ(erasure.color, 0xFFFFFFu);
        EXPECT_EQ(erasure.area.left, 0);
        EXPECT_EQ(erasure.area.top, 0);
        EXPECT_EQ(erasure.area.right, kWidthPx);
        EXPECT_EQ(erasure.area.bottom, kHeightPx);
    }
    Session().EndDoc(*device);
}

TEST_F(PrintJob, LogsItsNumberAndWholeDocumentName) {
    const auto device = Enable(Mode());
    const std::string longTitle(700, 'n');
    LogLines();
    ASSERT_TRUE(Start(device, longTitle));
    EXPECT_THAT(LogLines(), Contains("[Info]  JobId:42 docname:" + longTitle + " 0 0"));
    Session().EndDoc(*device);
}

TEST_F(PrintJob, MayHaveNoDocumentName) {
    const auto device = Enable(Mode());
    LogLines();
    ASSERT_TRUE(Session().Hooks().startDoc(device->Surface(), nullptr, 42));
    EXPECT_THAT(LogLines(), Contains("[Info]  JobId:42 docname:(null) 0 0"));
    ASSERT_TRUE(Session().StartPage(*device));
    EXPECT_EQ(engine.Output("@PJL COMMENT x\n"), 1);
    EXPECT_TRUE(Session().EndDoc(*device));
    EXPECT_THAT(Printer().written, HasSubstr("@PJL JOB NAME=\"\"\n"));
}

TEST_F(PrintJob, LogsTheProfileThatItLoads) {
    const auto device = Enable(Mode());
    LogLines();
    ASSERT_TRUE(Start(device));
    const auto lines = LogLines();
    EXPECT_THAT(lines, Contains("[Info]  Load profile [test.zvp]"));
    EXPECT_THAT(lines, Contains("[Info]  Profile version:5"));
    Session().EndDoc(*device);
}

TEST_F(PrintJob, WithoutAProfilePrintsTheDefaultOne) {
    fs::remove_all(installation.Path() / "profiles");
    DeviceMode mode = Mode();
    mode.priv.colorProfile[0] = 0;
    EXPECT_THAT(HeaderOf(mode), HasSubstr("@PJL SET PROFILE=\"Default\"\n"));
    EXPECT_THAT(LogLines(),
                AllOf(Contains("[Info]  Load deafult profile"), Contains("[Info]  generic profile")));
}

TEST_F(PrintJob, WithAProfilePrintsItsNameAndResolutionCode) {
    EXPECT_THAT(HeaderOf(Mode()),
                AllOf(HasSubstr("@PJL SET PROFILE=\"Test colours\"\n"), HasSubstr("@PJL SET HPRES=3\n")));
}

TEST_F(PrintJob, WithAMissingProfileKeepsItsFileNameAndPrintsGenericColors) {
    DeviceMode mode = Mode();
    mode.priv.colorProfile[0] = 'r';
    EXPECT_THAT(HeaderOf(mode),
                AllOf(HasSubstr("@PJL SET PROFILE=\"rest.zvp\"\n"), HasSubstr("@PJL SET HPRES=48\n")));
    EXPECT_THAT(LogLines(), Contains("[Error] Error: could not open file [profiles\\rest.zvp]"));
}

TEST_F(PrintJob, StartsEachJobWithoutAResolutionCode) {
    HeaderOf(Mode());
    Printer().written.clear();
    fs::remove_all(installation.Path() / "profiles");
    DeviceMode mode = Mode();
    mode.priv.colorProfile[0] = 0;
    EXPECT_THAT(HeaderOf(mode), HasSubstr("@PJL SET HPRES=48\n"));
}

TEST_F(PrintJob, CutsItsNameTo511Bytes) {
    EXPECT_THAT(HeaderOf(Mode(), std::string(600, 'n')),
                HasSubstr("@PJL JOB NAME=\"" + std::string(511, 'n') + "\"\n"));
}

TEST_F(PrintJob, AppliesNoAdjustmentWhenAllValuesAreZero) {
    const auto device = Enable(Mode());
    LogLines();
    ASSERT_TRUE(Start(device));
    EXPECT_THAT(LogLines(), Not(Contains(HasSubstr("ca "))));
    Session().EndDoc(*device);
}

TEST_F(PrintJob, AppliesTheAdjustmentWhenAnyValueIsSet) {
    DeviceMode mode = Mode();
    mode.priv.adj_brightness = 1;
    mode.priv.adj_saturation = 2;
    mode.priv.adj_colortone = 3;
    mode.priv.adj_cyan = 4;
    mode.priv.adj_magenta = 5;
    mode.priv.adj_yellow = 6;
    mode.priv.adj_black = -7;
    const auto device = Enable(mode);
    LogLines();
    ASSERT_TRUE(Start(device));
    // T, B, S, C, K, Y, M: tone 3 / 100 * 3500, brightness 1 / 200, saturation 2 / 100, cyan 4 * 50,
    // black -7 * 9341 / 400, yellow 6 * 50, magenta 5 * 50
    EXPECT_THAT(
        LogLines(),
        AllOf(Contains("[Error] ca t:3,b:1,s:2,C:4,M:5,Y:6,K:-7"),
              Contains(
                  "[Error] ca 105.000000,0.005000,0.020000,200.000000,-163.467500,300.000000,250.000000")));
    Session().EndDoc(*device);
}

TEST_F(PrintJob, FailsWhenTheEngineStartsNone) {
    const auto device = Enable(Mode());
    engine.Fail("JobStart", 1);
    LogLines();
    EXPECT_FALSE(Start(device));
    EXPECT_THAT(LogLines(), Contains("[Error] Error: could not start a job"));
    EXPECT_FALSE(Session().Engine().Bound());
    EXPECT_EQ(engine.Output("x"), 0);  // there is no job whose output it could be
    ASSERT_TRUE(Start(device));        // the next attempt finds everything as it should be
    Session().EndDoc(*device);
}

TEST_F(PrintJob, ThatFailedToStartEndsWithoutAnEngineCall) {
    const auto device = Enable(Mode());
    Session().Engine().FailLoading(true);
    EXPECT_FALSE(Start(device));
    EXPECT_TRUE(Session().EndDoc(*device));
    EXPECT_THAT(engine.calls, IsEmpty());
    EXPECT_EQ(InstanceOf(*device).flags, 0u);
}

TEST_F(PrintJob, ReportsAnEngineThatDoesNotEndItAndEndsAllTheSame) {
    mask = 3;
    const auto device = Enable(Mode());
    ASSERT_TRUE(Start(device));
    engine.Fail("JobEnd", 1, 0x20);
    LogLines();
    EXPECT_TRUE(Session().EndDoc(*device));
    EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvEndDoc>", "[Error] Error: could not end the job 20 beef",
                                        "[Trace] Return: TRUE", "[Trace] </DrvEndDoc>"));
    EXPECT_FALSE(Session().Engine().Bound());
}

TEST_F(PrintJob, EndsEvenForAnInvalidInstance) {
    const auto device = Enable(Mode());
    ASSERT_TRUE(Start(device));
    SetLastError(0);
    EXPECT_FALSE(Session().Hooks().endDoc(nullptr, 0));
    EXPECT_EQ(GetLastError(), 87u);
    EXPECT_FALSE(Session().Engine().Bound());
}

TEST_F(PrintJob, ThatWasNeverEndedIsEndedByTheNext) {
    const auto device = Enable(Mode());
    ASSERT_TRUE(Start(device));
    ASSERT_TRUE(Start(device));
    EXPECT_EQ(Session().Engine().Books().loads, 2u);
    EXPECT_EQ(Session().Engine().Books().frees, 1u);
    EXPECT_THAT(engine.calls, ElementsAre("JobStart 0 0", "JobEnd", "JobStart 0 0"));
    Session().EndDoc(*device);
}

TEST_F(PrintJob, NumbersItsPagesBeforeAnyCheck) {
    mask = 3;
    const auto device = StartPage(Mode());
    EXPECT_THAT(LogLines(), Contains("[Info]  Page: 1"));
    EXPECT_FALSE(Session().Hooks().startPage(nullptr));
    EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvStartPage>", "[Info]  Page: 2", "[Trace] Return: FALSE",
                                        "[Trace] </DrvStartPage>"));
    Session().EndDoc(*device);
}

TEST_F(PrintJob, TakesNoMorePagesWhileTheInstanceSaysSo) {
    const auto device = StartPage(Mode());
    uint32_t& flags = InstanceOf(*device).flags;
    const uint32_t before = flags;
    flags |= 0x8;
    SetLastError(0);
    EXPECT_FALSE(Session().StartPage(*device));
    EXPECT_EQ(GetLastError(), 0u);
    flags = ~0x8u;
    EXPECT_TRUE(Session().StartPage(*device));
    flags = before;
    Session().EndDoc(*device);
}

TEST_F(PrintJob, CountsItsPagesAnew) {
    const auto device = StartPage(Mode());
    ASSERT_TRUE(Session().SendPage(*device));
    ASSERT_TRUE(Session().EndDoc(*device));
    EXPECT_EQ(InstanceOf(*device).pageCount, 1u);
    ASSERT_TRUE(Start(device));
    EXPECT_EQ(InstanceOf(*device).pageCount, 0u);
    Session().EndDoc(*device);
}

TEST_F(PrintJob, ReadsTheLogsSwitchAgain) {
    const auto device = Enable(Mode());
    LogLines();
    WriteBytes(fs::path(Session().Driver().LogPath()).replace_extension("dat"), "0");
    ASSERT_TRUE(Start(device));
    Session().EndDoc(*device);
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(PrintJob, IsTracedAndDumpsTheDeviceModeTwice) {
    mask = 3;
    const auto device = Enable(Mode());
    LogLines();
    ASSERT_TRUE(Start(device));
    const auto lines = LogLines();
    EXPECT_EQ(lines.front(), "[Trace] <DrvStartDoc>");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "[Trace] <Public-DevMode>"), 2);
    EXPECT_EQ(lines[lines.size() - 2], "[Trace] Return: TRUE");
    EXPECT_EQ(lines.back(), "[Trace] </DrvStartDoc>");
    Session().EndDoc(*device);
}

TEST_F(PrintJob, TracesAPageAndDumpsTheDeviceModeOnce) {
    mask = 3;
    const auto device = StartPage(Mode());
    LogLines();
    ASSERT_TRUE(Session().StartPage(*device));
    const auto lines = LogLines();
    EXPECT_EQ(lines[0], "[Trace] <DrvStartPage>");
    EXPECT_EQ(lines[1], "[Info]  Page: 2");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "[Trace] <Public-DevMode>"), 1);
    EXPECT_EQ(lines[lines.size() - 2], "[Trace] Return: TRUE");
    EXPECT_EQ(lines.back(), "[Trace] </DrvStartPage>");
    Session().EndDoc(*device);
}

TEST_F(PrintJob, AsksForTheDriversNameInEveryHook) {
    const auto device = Enable(Mode());
    int before = PrintSpooler().Calls("GetPrinterDriverW");
    const auto asked = [&] {
        const int calls = PrintSpooler().Calls("GetPrinterDriverW") - before;
        before += calls;
        return calls == 2;  // for the size and for the name
    };
    EXPECT_TRUE(Start(device) && asked());
    EXPECT_TRUE(Session().StartPage(*device) && asked());
    EXPECT_TRUE(Session().SendPage(*device) && asked());
    EXPECT_TRUE(Session().EndDoc(*device) && asked());
}

TEST_F(PrintJob, LeavesNoPrinterHandleOpen) {
    const size_t before = PrintSpooler().OpenHandles();
    {
        const auto device = StartPage(Mode());
        Session().SendPage(*device);
        Session().EndDoc(*device);
    }
    EXPECT_LE(PrintSpooler().OpenHandles(), before + 1);  // the job's own
    EXPECT_THAT(PrintSpooler().Misuses(), IsEmpty());
}

TEST_F(PrintJob, PrintsAndLogsNamesThatLookLikeFormatsAsTheyAre) {
    const std::string name = "%s%n%x";
    installation.Write(
        fs::path("profiles") / (name + ".zvp"),
        ProfileBytes(5, TagArea(NameTag(name) + ResolutionTag(3, 6)), GridColors(&ProfileColor)));
    installation.Write("media.inf", "[Media]\r\n\"" + name + "\" \"25.4\" \"28\" 0\r\n");
    mask = 3;
    Printer().name = name;
    const std::string header = HeaderOf(ValidTestMode(name + ".zvp"), name);
    EXPECT_THAT(header, HasSubstr("@PJL JOB NAME=\"%s%n%x\"\n@PJL SET PROFILE=\"%s%n%x\"\n"));
    EXPECT_TRUE(Printer().data.HasKey("Label Sizes\\258"));
    EXPECT_THAT(LogLines(),
                IsSupersetOf({"[Error] Add %s%n%x 25.4 28 0", "[Trace] dmDeviceName       = %s%n%x",
                              "[Info]  JobId:1 docname:%s%n%x 0 0", "[Info]  Load profile [%s%n%x.zvp]",
                              "[Info]  load_profile [profiles\\%s%n%x.zvp]", "[Info]  Profile name:%s%n%x",
                              "[Info]  read_profile 5 3 %s%n%x"}));
}

}  // namespace orvex
