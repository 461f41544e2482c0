// A device that is made anew with other settings, while a job prints on it or before.

#include "driver/device_instance.h"
#include "tests/driver/driver_fixture.h"

namespace orvex {

using namespace tools;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

class DeviceReset : public DriverTest {};

}  // namespace

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
    EXPECT_EQ(engine.Output("@PJL COMMENT again\n"),
              1);  // written through the new instance, without a second header
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
    ASSERT_TRUE(Session().StartDoc(*fresh, "title", 42));  // which it goes on in already
    EXPECT_THAT(LogLines(), Not(Contains(StartsWith("[Info]  pdev: "))));
    Session().EndDoc(*fresh);
}

TEST_F(DeviceReset, OutsideAJobLeavesTheJobToBegin) {
    const auto old = Enable(Mode());
    const auto fresh = Enable(Mode());
    ASSERT_TRUE(Session().ResetPdev(*old, *fresh));
    ASSERT_TRUE(Session().StartDoc(*fresh, "title", 42));
    EXPECT_EQ(Session().Engine().Books().jobsStarted, 1u);
    Session().EndDoc(*fresh);
}

}  // namespace orvex
