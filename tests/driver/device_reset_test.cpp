// A device that is created anew with other settings, during a job or outside one.

#include "driver/device_instance.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using DeviceReset = DriverTest;

TEST_F(DeviceReset, CarriesPageAndStateIntoTheNewInstance) {
    mask = 3;
    const auto old = Enable(Mode());
    DeviceMode changed = Mode();
    changed.pub.dmOrientation = DMORIENT_LANDSCAPE;
    changed.pub.dmPaperWidth = 500;
    changed.pub.dmCopies = 3;
    const auto fresh = Enable(changed);
    PDEV& from = InstanceOf(*old);
    PDEV& to = InstanceOf(*fresh);
    from.yCoord = 11;
    from.pageCount = 4;
    from.carryWord1 = 0x1122334455667788;
    from.carryWord2 = 9;
    from.flags = PDEV_IN_JOB;
    LogLines();
    EXPECT_TRUE(Session().ResetPdev(*old, *fresh));
    EXPECT_EQ(to.dwPageWidth, 300u);
    EXPECT_EQ(to.dwPageLength, 400u);
    EXPECT_EQ(to.orientation, DMORIENT_PORTRAIT);
    EXPECT_EQ(to.yCoord, 11u);
    EXPECT_EQ(to.pageCount, 4u);
    EXPECT_EQ(to.carryWord1, 0x1122334455667788u);
    EXPECT_EQ(to.carryWord2, 9u);
    EXPECT_EQ(to.flags, PDEV_IN_JOB | PDEV_RESET);
    EXPECT_EQ(to.devmode.pub.dmCopies, 3);  // no count was carried, so the new one stays
    EXPECT_THAT(
        LogLines(),
        ElementsAre("[Trace] <DrvResetPDEV>", "[Info]  dwPageWidth 300<-400", "[Info]  dwPageLength 400<-500",
                    "[Info]  orientation 1<-2", "[Info]  yCoord 11<-0", "[Info]  pageCount 4<-0",
                    "[Info]  dmCopies 1 -> 3", "[Trace] Return: TRUE", "[Trace] </DrvResetPDEV>"));
}

TEST_F(DeviceReset, UsesTheLow16BitsOfACarriedCopyCount) {
    const auto old = Enable(Mode());
    const auto fresh = Enable(Mode());
    InstanceOf(*old).cCopies = 0x10007;
    LogLines();
    EXPECT_TRUE(Session().ResetPdev(*old, *fresh));
    EXPECT_EQ(InstanceOf(*fresh).cCopies, 0x10007);
    EXPECT_EQ(InstanceOf(*fresh).devmode.pub.dmCopies, 7);
    EXPECT_EQ(InstanceOf(*fresh).flags, PDEV_RESET);
    EXPECT_THAT(LogLines(),
                AllOf(Contains("[Info]  cCopies 65543<--1"), Contains("[Info]  cdmCopies 1<-65543")));
    const auto third = Enable(Mode());
    InstanceOf(*third).devmode.pub.dmCopies = 7;
    LogLines();
    EXPECT_TRUE(Session().ResetPdev(*fresh, *third));
    EXPECT_THAT(LogLines(), Not(Contains(HasSubstr("cdmCopies"))));
}

TEST_F(DeviceReset, LetsTheJobGoOnInTheNewInstance) {
    const auto old = StartPage(Mode());
    EXPECT_EQ(engine.Output("@PJL COMMENT x\n"), 1);
    ASSERT_TRUE(Session().SendPage(*old));
    const auto fresh = Enable(Mode());
    ASSERT_TRUE(Session().ResetPdev(*old, *fresh));
    LogLines();
    ASSERT_TRUE(Session().StartDoc(*fresh, "title", 42));
    const auto lines = LogLines();
    EXPECT_THAT(lines, Contains("[Info]  JobId:42 docname:title 1048576 4"));
    EXPECT_THAT(lines, Contains(StartsWith("[Info]  pdev: ")));
    EXPECT_THAT(lines, Not(Contains("[Info]  Load profile [test.zvp]")));
    Session().DisableSurface(*old);
    Session().DisablePdev(*old);

    Printer().written.clear();
    // The old instance is gone, and the header is not written again.
    EXPECT_EQ(engine.Output("@PJL COMMENT again\n"), 1);
    EXPECT_EQ(Printer().written, "@PJL COMMENT again\n");
    ASSERT_TRUE(Session().StartPage(*fresh));
    ASSERT_TRUE(Session().SendPage(*fresh));
    EXPECT_EQ(InstanceOf(*fresh).pageCount, 2u);
    ASSERT_TRUE(Session().EndDoc(*fresh));
    EXPECT_EQ(Session().Engine().Books().jobsStarted, 1u);
    EXPECT_EQ(InstanceOf(*fresh).flags, 0u);
}

TEST_F(DeviceReset, LetsTheJobWriteTheNewSettings) {
    const auto old = StartPage(Mode());
    DeviceMode mode = Mode();
    mode.priv.overspray = 2;
    const auto fresh = Enable(mode);
    ASSERT_TRUE(Session().ResetPdev(*old, *fresh));
    ASSERT_TRUE(Session().StartDoc(*fresh, "title", 42));
    EXPECT_EQ(engine.Output("@PJL COMMENT x\n"), 1);
    EXPECT_THAT(Printer().written, HasSubstr("@PJL SET OVERSPRAY=2\n"));
    LogLines();
    ASSERT_TRUE(Session().StartDoc(*fresh, "title", 42));  // the job is its own already
    EXPECT_THAT(LogLines(), Not(Contains(StartsWith("[Info]  pdev: "))));
    Session().EndDoc(*fresh);
}

TEST_F(DeviceReset, OutsideAJobLetsTheNextDocumentStartOne) {
    const auto old = Enable(Mode());
    const auto fresh = Enable(Mode());
    ASSERT_TRUE(Session().ResetPdev(*old, *fresh));
    ASSERT_TRUE(Session().StartDoc(*fresh, "title", 42));
    EXPECT_EQ(Session().Engine().Books().jobsStarted, 1u);
    Session().EndDoc(*fresh);
}

}  // namespace orvex
