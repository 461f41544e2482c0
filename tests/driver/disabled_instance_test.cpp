// A device that is disabled while its job runs. The output callback must refuse what the print engine outputs
// after that, since it would need the freed instance. The heap's guard pages, or AddressSanitizer, end a test
// that touches the instance.

#include "driver/device_instance.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DisabledInstance : public DriverTest {
  protected:
    // Starts a job in which the engine outputs a last chunk when it is ended. The callback needs the
    // instance's printer and settings for it.
    std::unique_ptr<Device> StartJob() {
        auto device = StartPage(Mode());
        engine.onJobEnd = [this] { results.push_back(engine.Output(kComment)); };
        return device;
    }

    void Disable(Device& device) {
        Session().DisableSurface(device);
        Session().DisablePdev(device);
    }

    // The callback's results inside HPCRLIB_JobEnd.
    std::vector<int32_t> results;
};

}  // namespace

TEST_F(DisabledInstance, TakesNoMoreOutput) {
    const auto device = StartJob();
    EXPECT_EQ(engine.Output("page"), 1);
    Disable(*device);
    EXPECT_EQ(engine.Output(kComment), 0);
    EXPECT_EQ(Printer().written, "page");
    EXPECT_FALSE(Session().Hooks().endDoc(nullptr, 0));
}

TEST_F(DisabledInstance, IsNotUsedWhenTheNextJobEndsItsJob) {
    const auto old = StartJob();
    Disable(*old);
    const auto fresh = Enable(Mode());
    ASSERT_TRUE(Session().StartDoc(*fresh, "My job"));
    EXPECT_THAT(results, ElementsAre(0));
    EXPECT_THAT(Printer().written, IsEmpty());
    ASSERT_TRUE(Session().EndDoc(*fresh));
    EXPECT_THAT(results, ElementsAre(0, 1));
    EXPECT_EQ(Printer().written, Header() + kComment);
    EXPECT_THAT(engine.calls, ElementsAre("JobStart 0 0", "JobEnd", "JobStart 0 0", "JobEnd"));
}

TEST_F(DisabledInstance, IsNotUsedWhenItsJobIsEndedWithoutASurface) {
    const auto device = StartJob();
    Disable(*device);
    SetLastError(0);
    EXPECT_FALSE(Session().Hooks().endDoc(nullptr, 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_THAT(results, ElementsAre(0));
    EXPECT_THAT(Printer().written, IsEmpty());
    EXPECT_FALSE(Session().Engine().Bound());
}

TEST_F(DisabledInstance, IsNotUsedWhenTheJobEndsAfterAResetWithoutASurface) {
    const auto old = StartJob();
    const auto fresh = Session().EnablePdev(Bytes(Mode()));
    Session().CompletePdev(*fresh);
    ASSERT_TRUE(Session().ResetPdev(*old, *fresh));
    Disable(*old);
    Session().Graphics().FailCall(GraphicsService::kCreateBitmap);
    ASSERT_FALSE(Session().EnableSurface(*fresh));
    EXPECT_FALSE(Session().EndDoc(*fresh));  // without a surface there is no instance
    EXPECT_THAT(results, ElementsAre(0));
    EXPECT_THAT(Printer().written, IsEmpty());
}

TEST_F(DisabledInstance, LeavesTheJobToTheInstanceThatReplacesIt) {
    const auto old = StartJob();
    const auto fresh = Enable(Mode());
    ASSERT_TRUE(Session().ResetPdev(*old, *fresh));
    Disable(*old);
    EXPECT_EQ(engine.Output("between"), 0);
    ASSERT_TRUE(Session().StartDoc(*fresh, "title"));
    EXPECT_EQ(engine.Output("page"), 1);
    ASSERT_TRUE(Session().EndDoc(*fresh));
    EXPECT_EQ(Printer().written, "page" + Header("title") + kComment);
    EXPECT_THAT(engine.calls, ElementsAre("JobStart 0 0", "JobEnd"));
}

TEST_F(DisabledInstance, LeavesTheJobOfAnotherItsOutput) {
    const auto running = StartJob();
    const auto other = Enable(Mode());
    Disable(*other);
    EXPECT_EQ(engine.Output("page"), 1);
    EXPECT_EQ(Printer().written, "page");
    ASSERT_TRUE(Session().EndDoc(*running));
    EXPECT_THAT(results, ElementsAre(1));
}

}  // namespace orvex
