#include "tools/orvexprint/log_switch.h"

#include <gmock/gmock.h>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/common/wide_text.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;

namespace {

class LogSwitchTest : public testing::Test {
  protected:
    LogSwitchTest() { fs::create_directories(control_.parent_path()); }
    ~LogSwitchTest() override { fs::remove(control_); }

    // Returns the number of files in the log's folder.
    size_t Files() const {
        const fs::directory_iterator first(control_.parent_path());
        return static_cast<size_t>(std::distance(first, fs::directory_iterator()));
    }
    // Makes the driver read its control file. Returns whether it then writes a log.
    bool DriverLogs() const {
        fs::remove(driver_.LogPath());
        SURFOBJ noDevice = {};
        WCHAR noTitle[] = {0};
        driver_.Hooks().startDoc(&noDevice, noTitle, 0);
        return fs::remove(driver_.LogPath());
    }

    const DriverLibrary driver_{DefaultDriverFile()};
    const fs::path control_ = driver_.LogControlPath();
};

}  // namespace

TEST_F(LogSwitchTest, TurnsTheLogOnForThisProgramAndLeavesNoFile) {
    EXPECT_FALSE(DriverLogs());
    const size_t before = Files();
    {
        const LogSwitch log(driver_, 3);
        EXPECT_TRUE(DriverLogs());
        EXPECT_FALSE(fs::exists(control_)) << "no other program logs";
        EXPECT_EQ(Files(), before) << "a run that is killed now leaves nothing";
    }
    EXPECT_FALSE(DriverLogs());
    EXPECT_EQ(Files(), before);
}

TEST_F(LogSwitchTest, IgnoresAndKeepsTheControlFileOfAnother) {
    WriteBytes(control_, "0 by hand");
    {
        const LogSwitch log(driver_, 3);
        EXPECT_TRUE(DriverLogs());
        fs::remove(control_);
        EXPECT_TRUE(DriverLogs()) << "another run has ended";
        WriteBytes(control_, "0 again");
    }
    EXPECT_EQ(ReadBytes(control_), "0 again");
    EXPECT_FALSE(DriverLogs());
}

TEST_F(LogSwitchTest, SaysThatTheLogWasLeftOn) {
    EXPECT_EQ(LogLeftOn(driver_), "");
    WriteBytes(control_, "0");
    EXPECT_EQ(LogLeftOn(driver_), "");
    WriteBytes(control_, "3\n");
    EXPECT_THAT(LogLeftOn(driver_), AllOf(HasSubstr("is on for every program, with mask 3"),
                                          HasSubstr("remove " + Utf8FromPath(control_) + " to turn it off")));
}

// Under Wine and on Windows the folder is drive C's own.
#ifndef _WIN32
TEST_F(LogSwitchTest, SaysThatTheLogCannotBeTurnedOn) {
    const fs::path folder = control_.parent_path(), aside = folder.parent_path() / "aside";
    fs::rename(folder, aside);
    WriteBytes(folder, "no folder");
    EXPECT_EQ(ThrownText([&] { LogSwitch(driver_, 3); }),
              "the log can't be turned on: no file can be made in " + Utf8FromPath(folder));
    fs::remove(folder);
    fs::rename(aside, folder);
}
#endif

}  // namespace orvex::tools::print
