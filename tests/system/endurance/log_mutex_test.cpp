// A page printed while somebody else holds the log's mutex.

#include "driver/support/handle.h"
#include "tests/kit/driver_fixture.h"
#include "tests/system/endurance/mutex_holder.h"

namespace orvex {

using namespace tools;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

namespace {

class LogMutexHeld : public DriverTest {
  protected:
    LogMutexHeld() { Restart(ProgramFolder() / "hpcrlib.dll"); }

    static void Draw(SURFOBJ& surface) {
        for (int32_t i = 0; i < kWidthPx; ++i) SetPixel(surface, i, i, 0x102030);
    }

    // Prints a job of two pages, the first of them inside `first`, and returns its bytes.
    template <typename SendFirst>
    std::string Print(SendFirst first) {
        const std::unique_ptr<Device> device = StartPage(Mode());
        Draw(*device->Surface());
        LogLines();
        first(*device);
        EXPECT_TRUE(Session().StartPage(*device));
        Draw(*device->Surface());
        EXPECT_TRUE(Session().SendPage(*device));
        EXPECT_TRUE(Session().EndDoc(*device));
        return std::exchange(Printer().written, {});
    }
    std::string PrintUndisturbed() {
        return Print([this](Device& device) { EXPECT_TRUE(Session().SendPage(device)); });
    }

    std::string MutexName() const {
        std::string name = logName_;
        std::replace(name.begin(), name.end(), '\\', '/');
        return name;
    }
    std::string logName_ = Session().Driver().LogName();
};

}  // namespace

TEST_F(LogMutexHeld, LosesThePagesLinesAndNothingOfThePage) {
    const std::string undisturbed = PrintUndisturbed();
    EXPECT_THAT(LogLines(), Contains("[Info]  Finished sending page").Times(2));
    const std::string printed = Print([this](Device& device) {
        const MutexHolder holder(MutexName());
        EXPECT_TRUE(Session().SendPage(device));
        EXPECT_THAT(LogLines(), IsEmpty());
    });
    EXPECT_TRUE(printed == undisturbed);
    EXPECT_THAT(LogLines(), IsSupersetOf({"[Info]  Page: 2", "[Info]  Finished sending page"}));
}

TEST_F(LogMutexHeld, LosesOneLineWhenItsHolderIsKilled) {
    const std::string undisturbed = PrintUndisturbed();
    std::vector<std::string> lines;
    const std::string printed = Print([&](Device& device) {
        MutexHolder holder(MutexName());
        // Without anybody else's handle the mutex would go with its holder.
        const OwnedHandle mutex(CreateMutexA(nullptr, FALSE, MutexName().c_str()));
        holder.Kill();
        EXPECT_TRUE(Session().SendPage(device));
        lines = LogLines();
    });
    EXPECT_TRUE(printed == undisturbed);
    EXPECT_THAT(lines, Not(Contains(HasSubstr("surfobj dpi"))));  // a page's first line
    EXPECT_THAT(lines, Contains(HasSubstr("dmOrient:1")));        // the second
    EXPECT_THAT(lines, Contains("[Info]  Finished sending page"));
}

}  // namespace orvex
