// A page printed while another thread holds the log's mutex. The driver can't tell it from one of another
// process.

#include <future>
#include <thread>

#include "driver/support/handle.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

namespace {

// Holds a mutex in a thread of its own.
class MutexHolder {
  public:
    // Returns once the mutex is held.
    explicit MutexHolder(const std::string& mutex)
        : thread_([this, mutex] {
              const OwnedHandle handle(CreateMutexA(nullptr, FALSE, mutex.c_str()));
              held_.set_value(WaitForSingleObject(handle.Get(), INFINITE) == WAIT_OBJECT_0);
              if (!abandoned_.get_future().get()) ReleaseMutex(handle.Get());
          }) {
        EXPECT_TRUE(held_.get_future().get());
    }
    // Releases the mutex unless it was abandoned.
    ~MutexHolder() { End(false); }
    MutexHolder(const MutexHolder&) = delete;
    MutexHolder& operator=(const MutexHolder&) = delete;

    // Ends the thread without releasing the mutex.
    void Abandon() { End(true); }

  private:
    void End(bool withMutex) {
        if (!thread_.joinable()) return;
        abandoned_.set_value(withMutex);
        thread_.join();
    }

    std::promise<bool> held_, abandoned_;
    std::thread thread_;
};

class LogMutexHeld : public DriverTest {
  protected:
    LogMutexHeld() { Restart(ProgramFolder() / "hpcrlib.dll"); }

    static void Draw(SURFOBJ& surface) {
        for (int32_t i = 0; i < kWidthPx; ++i) SetPixel(surface, i, i, 0x102030);
    }

    // Prints a job of two pages, the first of which `first` sends, and returns its bytes.
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

TEST_F(LogMutexHeld, LosesThePagesLinesButNothingOfThePage) {
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

TEST_F(LogMutexHeld, LosesOneLineWhenItsHolderEndsWithoutReleasingIt) {
    const std::string undisturbed = PrintUndisturbed();
    std::vector<std::string> lines;
    const std::string printed = Print([&](Device& device) {
        MutexHolder holder(MutexName());
        // This handle keeps the mutex in existence after its holder is gone.
        const OwnedHandle mutex(CreateMutexA(nullptr, FALSE, MutexName().c_str()));
        holder.Abandon();
        EXPECT_TRUE(Session().SendPage(device));
        lines = LogLines();
    });
    EXPECT_TRUE(printed == undisturbed);
    EXPECT_THAT(lines, Not(Contains(HasSubstr("surfobj dpi"))));  // a page's first line
    EXPECT_THAT(lines, Contains(HasSubstr("dmOrient:1")));        // the second
    EXPECT_THAT(lines, Contains("[Info]  Finished sending page"));
}

}  // namespace orvex
