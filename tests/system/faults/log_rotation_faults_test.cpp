// Rotation of a log that is too long, with one failing call after another.

#include <algorithm>
#include <fstream>

#include "tests/system/faults/documented_answers.h"

namespace orvex {

using namespace tools;

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

constexpr uintmax_t kTooLong = 0x6400001;
constexpr int kBackups = 9;

class LogRotationFaults : public FaultTest {
  protected:
    LogRotationFaults() : log_(Session().Driver().LogPath()) {
        WriteBytes(Session().Driver().LogControlPath(), "3");
        Session().RereadLogSwitch();
        LogLines();
    }
    ~LogRotationFaults() override { RemoveLogs(); }

    fs::path Backup(int number) const {
        return fs::path(log_).replace_extension(std::to_string(number) + ".txt");
    }

    void RemoveLogs() const {
        std::error_code ignored;
        fs::remove(log_, ignored);
        for (int i = 1; i <= kBackups; ++i) fs::remove(Backup(i), ignored);
    }

    // Makes a log past its limit and all backups, each with its number in it.
    void FillUp() const {
        RemoveLogs();
        std::ofstream(log_).close();
        fs::resize_file(log_, kTooLong);
        for (int i = 1; i <= kBackups; ++i) WriteBytes(Backup(i), std::to_string(i));
    }

    std::vector<std::string> BackupContents() const {
        std::vector<std::string> contents;
        for (int i = 1; i <= kBackups; ++i) {
            if (fs::exists(Backup(i)) && fs::file_size(Backup(i)) < kTooLong)
                contents.push_back(ReadBytes(Backup(i)));
        }
        return contents;
    }

    // Calls a hook that only logs two lines. The call of that number fails.
    std::vector<WatchedCall> LogLinesOfAHook(size_t failing = CallWatch::kNone) {
        FillUp();
        Watch().Begin(failing);
        Watch().Enter("DrvCompletePDEV");
        SetLastError(ERROR_SUCCESS);
        Session().Hooks().completePdev(nullptr, nullptr);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
        Watch().Leave();
        return Watch().TakeCalls();
    }

  private:
    fs::path log_;
};

}  // namespace

TEST_F(LogRotationFaults, LoseLinesButNoBackupAndLeaveNothingBehind) {
    const std::vector<WatchedCall> calls = LogLinesOfAHook();
    EXPECT_THAT(BackupContents(), ElementsAre("1", "2", "3", "4", "5", "6", "7", "8"));
    ASSERT_THAT(LeftBehind(), IsEmpty());
    for (size_t failing = 0; failing < calls.size(); ++failing) {
        SCOPED_TRACE(calls[failing].Label() + ", call " + std::to_string(failing));
        const std::vector<WatchedCall> made = LogLinesOfAHook(failing);
        ASSERT_GT(made.size(), failing);
        EXPECT_EQ(made[failing].Label(), calls[failing].Label());
        for (int i = 1; i < kBackups; ++i) EXPECT_THAT(BackupContents(), Contains(std::to_string(i)));
        EXPECT_EQ(LeftBehind(), DocumentedLeftovers(calls[failing]));
        RemoveLogs();
        Session().Hooks().completePdev(nullptr, nullptr);
        EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvCompletePDEV>", "[Trace] </DrvCompletePDEV>"));
    }
    std::cout << calls.size() << " faults\n";
}

}  // namespace orvex
