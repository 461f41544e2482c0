// The pages of a job: their start, their numbers and their white paper.

#include "driver/device_instance.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;
using testing::Contains;
using testing::ElementsAre;

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
