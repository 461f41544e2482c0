#include "driver/device_instance.h"

#include "tests/driver/print_job_fixture.h"
#include "tests/driver/profiles/profile_bytes.h"
#include "tests/kit/driver_fixture.h"
#include "tests/plain/device_mode.h"

namespace orvex {

using namespace tools;
namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;

using PrintJob = PrintJobTest;

TEST_F(PrintJob, TakesNoOutputAfterItHasEnded) {
    const auto device = StartPage(Mode());
    ASSERT_TRUE(Session().EndDoc(*device));
    EXPECT_EQ(engine.Output("late"), 0);
    EXPECT_THAT(Printer().written, IsEmpty());
}

TEST_F(PrintJob, TellsTheEngineItsResolutionMode) {
    DeviceMode mode = Mode();
    mode.pub.dmPrintQuality = 600;
    const auto device = Enable(mode);
    ASSERT_TRUE(Start(*device));
    Session().EndDoc(*device);
    EXPECT_THAT(engine.calls, ElementsAre("JobStart 1 0", "JobEnd"));
}

TEST_F(PrintJob, LogsItsNumberAndWholeDocumentName) {
    const auto device = Enable(Mode());
    const std::string longTitle(700, 'n');
    LogLines();
    ASSERT_TRUE(Start(*device, longTitle));
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

TEST_F(PrintJob, CutsItsNameTo511Bytes) {
    EXPECT_THAT(HeaderOf(Mode(), std::string(600, 'n')),
                HasSubstr("@PJL JOB NAME=\"" + std::string(511, 'n') + "\"\n"));
}

TEST_F(PrintJob, PrintsAndLogsNamesThatLookLikeFormatsAsTheyAre) {
    const std::string name = "%s%n%x";
    installation.Write(
        fs::path("profiles") / (name + ".zvp"),
        ProfileBytes(5, TagArea(NameTag(name) + ResolutionTag(3, 6)), GridColors(&ProfileColor)));
    installation.Write("media.inf", "[Media]\r\n\"" + name + "\" \"25.4\" \"28\" 0\r\n");
    mask = 3;
    Printer().name = name;
    const std::string header = HeaderOf(plain::SmallLabelMode(name + ".zvp"), name);
    EXPECT_THAT(header, HasSubstr("@PJL JOB NAME=\"%s%n%x\"\n@PJL SET PROFILE=\"%s%n%x\"\n"));
    EXPECT_TRUE(Printer().data.HasKey("Label Sizes\\258"));
    EXPECT_THAT(LogLines(),
                IsSupersetOf({"[Error] Add %s%n%x 25.4 28 0", "[Trace] dmDeviceName       = %s%n%x",
                              "[Info]  JobId:1 docname:%s%n%x 0 0", "[Info]  Load profile [%s%n%x.zvp]",
                              "[Info]  load_profile [profiles\\%s%n%x.zvp]", "[Info]  Profile name:%s%n%x",
                              "[Info]  read_profile 5 3 %s%n%x"}));
}

TEST_F(PrintJob, FailsWhenTheEngineStartsNoJob) {
    const auto device = Enable(Mode());
    engine.Fail("JobStart", 1);
    LogLines();
    EXPECT_FALSE(Start(*device));
    EXPECT_THAT(LogLines(), Contains("[Error] Error: could not start a job"));
    EXPECT_FALSE(Session().Engine().Bound());
    EXPECT_EQ(engine.Output("x"), 0);  // no job has any output
    ASSERT_TRUE(Start(*device));
    Session().EndDoc(*device);
}

TEST_F(PrintJob, EndsWithoutAnEngineCallIfItFailedToStart) {
    const auto device = Enable(Mode());
    Session().Engine().FailLoading(true);
    EXPECT_FALSE(Start(*device));
    EXPECT_TRUE(Session().EndDoc(*device));
    EXPECT_THAT(engine.calls, IsEmpty());
    EXPECT_EQ(InstanceOf(*device).flags, 0u);
}

TEST_F(PrintJob, EndsEvenIfTheEngineFailsToEndItAndReportsThat) {
    mask = 3;
    const auto device = Enable(Mode());
    ASSERT_TRUE(Start(*device));
    engine.Fail("JobEnd", 1, 0x20);
    LogLines();
    EXPECT_TRUE(Session().EndDoc(*device));
    EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvEndDoc>", "[Error] Error: could not end the job 20 beef",
                                        "[Trace] Return: TRUE", "[Trace] </DrvEndDoc>"));
    EXPECT_FALSE(Session().Engine().Bound());
}

TEST_F(PrintJob, EndsEvenForAnInvalidInstance) {
    const auto device = Enable(Mode());
    ASSERT_TRUE(Start(*device));
    SetLastError(0);
    EXPECT_FALSE(Session().Hooks().endDoc(nullptr, 0));
    EXPECT_EQ(GetLastError(), 87u);
    EXPECT_FALSE(Session().Engine().Bound());
}

TEST_F(PrintJob, IsEndedByTheNextIfItWasNeverEnded) {
    const auto device = Enable(Mode());
    ASSERT_TRUE(Start(*device));
    ASSERT_TRUE(Start(*device));
    EXPECT_EQ(Session().Engine().Books().loads, 2u);
    EXPECT_EQ(Session().Engine().Books().frees, 1u);
    EXPECT_THAT(engine.calls, ElementsAre("JobStart 0 0", "JobEnd", "JobStart 0 0"));
    Session().EndDoc(*device);
}

TEST_F(PrintJob, ReadsTheLogMaskAgain) {
    const auto device = Enable(Mode());
    LogLines();
    WriteBytes(fs::path(Session().Driver().LogPath()).replace_extension("dat"), "0");
    ASSERT_TRUE(Start(*device));
    Session().EndDoc(*device);
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(PrintJob, IsTracedAndDumpsTheDeviceModeTwice) {
    mask = 3;
    const auto device = Enable(Mode());
    LogLines();
    ASSERT_TRUE(Start(*device));
    const auto lines = LogLines();
    EXPECT_EQ(lines.front(), "[Trace] <DrvStartDoc>");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "[Trace] <Public-DevMode>"), 2);
    EXPECT_EQ(lines[lines.size() - 2], "[Trace] Return: TRUE");
    EXPECT_EQ(lines.back(), "[Trace] </DrvStartDoc>");
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
    EXPECT_TRUE(Start(*device) && asked());
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
    EXPECT_EQ(PrintSpooler().OpenHandles(), before);
    EXPECT_THAT(PrintSpooler().Misuses(), IsEmpty());
}

using JobPage = DriverTest;

TEST_F(JobPage, StartsWithAWhiteBitmapLikeTheJob) {
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

TEST_F(JobPage, IsNumberedBeforeAnyCheck) {
    mask = 3;
    const auto device = StartPage(Mode());
    EXPECT_THAT(LogLines(), Contains("[Info]  Page: 1"));
    EXPECT_FALSE(Session().Hooks().startPage(nullptr));
    EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvStartPage>", "[Info]  Page: 2", "[Trace] Return: FALSE",
                                        "[Trace] </DrvStartPage>"));
    Session().EndDoc(*device);
}

TEST_F(JobPage, IsRefusedWhileTheInstanceSaysSo) {
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

TEST_F(JobPage, IsCountedAnewByEachJob) {
    const auto device = StartPage(Mode());
    ASSERT_TRUE(Session().SendPage(*device));
    ASSERT_TRUE(Session().EndDoc(*device));
    EXPECT_EQ(InstanceOf(*device).pageCount, 1u);
    ASSERT_TRUE(Session().StartDoc(*device, "title"));
    EXPECT_EQ(InstanceOf(*device).pageCount, 0u);
    Session().EndDoc(*device);
}

TEST_F(JobPage, IsTracedAndDumpsTheDeviceModeOnce) {
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

}  // namespace orvex
