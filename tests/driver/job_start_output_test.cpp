// Output of the print engine inside HPCRLIB_JobStart. The job's instance, name and page size are set by then.
// Its profile is not loaded yet, and the output callback still has the flags that the job before left.

#include "driver/device_instance.h"
#include "driver/job_state.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr char kFraming[] = "@  _  @";  // 0x40 + 0x20 + 0x20 at each end, 256 together
constexpr char kSwitch[] = "\x1B*o-1M";

class JobStartOutput : public DriverTest {
  protected:
    JobStartOutput() {
        Session();
#ifndef _WIN32
        g_bFirstChunk = g_bHeaderPending = false;  // natively the driver is loaded once for all tests
#endif
    }

    // Hands a chunk to the callback, which must accept it, and returns the bytes that it wrote.
    std::string Written(std::string_view chunk) {
        Printer().written.clear();
        EXPECT_EQ(engine.Output(chunk), 1);
        return Printer().written;
    }

    // Starts a job in which the engine outputs these chunks inside HPCRLIB_JobStart, and returns what was
    // written for each.
    std::vector<std::string> Start(Device& device, const std::string& title,
                                   std::initializer_list<std::string_view> chunks) {
        std::vector<std::string> written;
        engine.onJobStart = [&] {
            for (const std::string_view chunk : chunks) written.push_back(Written(chunk));
        };
        EXPECT_TRUE(Session().StartDoc(device, title));
        engine.onJobStart = nullptr;
        return written;
    }

    // Verifies that a started job still drops its framing and writes its header, whatever the engine output
    // inside the start.
    void ExpectFramingAndHeaderToCome(const plain::HeaderFacts& facts) {
        EXPECT_EQ(Written(kFraming), "");
        EXPECT_EQ(Written(kComment), plain::JobHeader(Mode(), facts) + kComment);
        EXPECT_EQ(Written(kFraming), kFraming);
        EXPECT_EQ(Written(kComment), kComment);
    }

    // Enables a landscape device without a profile, so that a header shows which device it describes.
    std::unique_ptr<Device> EnableOther() {
        std::filesystem::remove_all(installation.Path() / "profiles");
        DeviceMode mode = Mode();
        mode.pub.dmOrientation = DMORIENT_LANDSCAPE;
        mode.priv.colorProfile[0] = 0;
        return Enable(mode);
    }
    static plain::HeaderFacts OtherFacts(const std::string& title) {
        return {title, "Default", '0', 472, 354};
    }
    // The facts of a header that is written before the other job's profile is loaded.
    static plain::HeaderFacts EarlyFacts(const std::string& title) {
        return {title, "Test colours", 3, 472, 354};
    }
};

}  // namespace

TEST_F(JobStartOutput, PassesAsItIsInAFreshProcess) {
    const auto device = Enable(Mode());
    EXPECT_THAT(Start(*device, "first", {kFraming, kComment, kFraming}),
                ElementsAre(kFraming, kComment, kFraming));
    ExpectFramingAndHeaderToCome(Facts("first"));
    Session().EndDoc(*device);
}

TEST_F(JobStartOutput, PassesAsItIsAfterAJobThatWroteItsHeader) {
    const auto device = Enable(Mode());
    Start(*device, "first", {});
    Written(kComment);
    Session().EndDoc(*device);
    EXPECT_THAT(Start(*device, "second", {kFraming, kComment, kFraming}),
                ElementsAre(kFraming, kComment, kFraming));
    ExpectFramingAndHeaderToCome(Facts("second"));
    Session().EndDoc(*device);
}

TEST_F(JobStartOutput, LosesItsFramingAndGetsAHeaderAfterAJobWithoutOutput) {
    const auto device = Enable(Mode());
    Start(*device, "first", {});
    Session().EndDoc(*device);
    const auto other = EnableOther();
    EXPECT_THAT(Start(*other, "second", {kFraming, std::string("early ") + kComment, kFraming, kComment}),
                ElementsAre("", "early " + plain::JobHeader(Mode(), EarlyFacts("second")) + kComment,
                            kFraming, kComment));
    ExpectFramingAndHeaderToCome(OtherFacts("second"));
    Session().EndDoc(*other);
}

TEST_F(JobStartOutput, GetsAHeaderAfterAJobWithoutOne) {
    const auto device = Enable(Mode());
    Start(*device, "first", {});
    Written("page");
    Session().EndDoc(*device);
    const auto other = EnableOther();
    EXPECT_THAT(Start(*other, "second", {kFraming, kComment, kComment}),
                ElementsAre(kFraming, plain::JobHeader(Mode(), EarlyFacts("second")) + kComment, kComment));
    ExpectFramingAndHeaderToCome(OtherFacts("second"));
    Session().EndDoc(*other);
}

TEST_F(JobStartOutput, MeetsTheFlagsOfAJobThatWasNeverEnded) {
    const auto device = Enable(Mode());
    Start(*device, "first", {});
    const auto other = EnableOther();
    EXPECT_THAT(Start(*other, "second", {kFraming, kComment, kFraming}),
                ElementsAre("", plain::JobHeader(Mode(), EarlyFacts("second")) + kComment, kFraming));
    ExpectFramingAndHeaderToCome(OtherFacts("second"));
    Session().EndDoc(*other);
}

TEST_F(JobStartOutput, GoesToTheNewPrinterAfterTheEndOfAJobThatWasNeverEnded) {
    const auto device = Enable(Mode());
    Start(*device, "first", {});
    const auto other = EnableOther();
    const Spooler::Printer& otherPrinter = PrintSpooler().AddPrinter("Other", "Orvex Series");
    const HANDLE handle = PrintSpooler().Open("Other");
    InstanceOf(*other).hPrinter = handle;

    std::string late;
    engine.onJobEnd = [&] { late = Written(kComment); };
    Start(*other, "second", {kFraming, kComment});
    engine.onJobEnd = nullptr;
    EXPECT_EQ(late, Header("first") + kComment);
    EXPECT_EQ(otherPrinter.written, std::string(kFraming) + kComment);
    Session().EndDoc(*other);
    EXPECT_TRUE(PrintSpooler().Close(handle));
}

TEST_F(JobStartOutput, IsNotPatchedWithASwitchLeftByTheJobBefore) {
    for (const bool ended : {true, false}) {
        SCOPED_TRACE(ended ? "ended" : "never ended");
        const auto device = StartPage(Mode());
        Written(kComment);
        ASSERT_TRUE(Session().SendPage(*device));  // nothing patches its switch
        if (ended) {
            ASSERT_TRUE(Session().EndDoc(*device));
        }
        const auto next = Enable(Mode());
        EXPECT_THAT(Start(*next, "second", {kSwitch}), ElementsAre(kSwitch));
        EXPECT_EQ(Written(kSwitch), kSwitch);
        ASSERT_TRUE(Session().EndDoc(*next));
    }
}

TEST_F(JobStartOutput, ComesAfterTheLastPatchOfAJobThatWasNeverEnded) {
    const auto device = StartPage(Mode());
    Written(kComment);
    ASSERT_TRUE(Session().SendPage(*device));
    std::string late;
    engine.onJobEnd = [&] { late = Written(kSwitch); };
    EXPECT_THAT(Start(*device, "second", {kSwitch}), ElementsAre(kSwitch));
    engine.onJobEnd = nullptr;
    EXPECT_EQ(late, "\x1B*o3M");
    Session().EndDoc(*device);
}

TEST_F(JobStartOutput, LeavesNoMissedSwitchToReport) {
    const auto device = StartPage(Mode());
    ASSERT_TRUE(Session().SendPage(*device));
    Session().EndDoc(*device);
    Start(*device, "second", {});
    ASSERT_TRUE(Session().StartPage(*device));
    LogLines();
    ASSERT_TRUE(Session().SendPage(*device));
    EXPECT_THAT(LogLines(), Not(testing::Contains(HasSubstr("res missed"))));
    Session().EndDoc(*device);
}

}  // namespace orvex
