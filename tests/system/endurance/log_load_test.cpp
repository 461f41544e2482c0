// The log filled by many writers at once, past its limit again and again.

#include <gmock/gmock.h>

#include <chrono>
#include <iostream>
#include <map>
#include <set>
#include <thread>

#include "tests/kit/log_capture.h"
#include "tests/system/endurance/helper/log_writers.h"
#include "tests/system/endurance/log_text.h"
#include "tests/system/endurance/other_process.h"

namespace orvex {

using namespace tools;
namespace fs = std::filesystem;
using testing::IsEmpty;

namespace {

constexpr int kBackups = 9;
constexpr int kRotations = kBackups + 3;
constexpr uint32_t kLinesARotation = 200;  // the fewest lines between two rotations

// The processes, and the concurrent writers of each.
#ifdef _WIN32
constexpr uint32_t kProcesses = 4, kWritersEach = 4;
#else
constexpr uint32_t kProcesses = 1, kWritersEach = 8;  // a named mutex of platform/posix is one process's own
#endif

// Return the number of a process's first writer, and a writer's process. Each process has a hundred numbers.
constexpr uint32_t FirstWriterOf(uint32_t process) {
    return kFirstWriter + 100 * process;
}
constexpr uint32_t ProcessOf(uint32_t writer) {
    return (writer - kFirstWriter) / 100;
}

// Returns the processes that have had a turn.
std::set<uint32_t> ProcessesIn(const TurnBook& book) {
    std::set<uint32_t> processes;
    const uint32_t taken = std::min<uint32_t>(book.taken, TurnBook::kMaxTurns);
    for (uint32_t i = 0; i < taken; ++i) {
        if (book.turns[i].writer >= kFirstWriter) processes.insert(ProcessOf(book.turns[i].writer));
    }
    return processes;
}

// Runs the writers until it is destroyed, in other processes where these can share a mutex.
class Writers {
  public:
    Writers(const DriverLibrary& driver, TurnBook& book, const std::string& bookName) : book_(book) {
#ifdef _WIN32
        (void)driver;
        for (uint32_t i = 0; i < kProcesses; ++i) {
            processes_.push_back(std::make_unique<OtherProcess>(std::vector<std::string>{
                "write-log", bookName, std::to_string(FirstWriterOf(i)), std::to_string(kWritersEach)}));
        }
#else
        (void)bookName;
        thread_ = std::thread([&] { WriteUntilStopped(driver, book_, FirstWriterOf(0), kWritersEach); });
#endif
    }
    ~Writers() {
        Stop();
    }
    Writers(const Writers&) = delete;
    Writers& operator=(const Writers&) = delete;

    void Stop() {
        book_.stop = 1;
        for (const auto& each : processes_) EXPECT_EQ(each->Wait(), 0);
        processes_.clear();
        if (thread_.joinable()) thread_.join();
    }

  private:
    TurnBook& book_;
    std::vector<std::unique_ptr<OtherProcess>> processes_;
    std::thread thread_;
};

// Waits for other threads or processes; returns false if the condition never becomes true.
template <typename Condition>
bool Becomes(Condition condition) {
    for (int i = 0; i < 20000; ++i) {
        if (condition()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

// A driver's log with its backups, removed at the end.
class RotatingLog {
  public:
    explicit RotatingLog(const fs::path& log) : log_(log) { RemoveBackups(); }
    ~RotatingLog() { RemoveBackups(); }
    RotatingLog(const RotatingLog&) = delete;
    RotatingLog& operator=(const RotatingLog&) = delete;

    fs::path Backup(int number) const {
        return fs::path(log_).replace_extension(std::to_string(number) + ".txt");
    }

    // Has the writers rotate the log; returns false if none of them does.
    bool Rotate() const {
        GrowPastLimit(log_);
        return Becomes([this] {
            std::error_code missing;
            return fs::file_size(log_, missing) <= kMaxLogBytes && !missing;
        });
    }

  private:
    void RemoveBackups() const {
        for (int i = 0; i <= kBackups + 1; ++i) fs::remove(Backup(i));
    }

    fs::path log_;
};

// Returns the place of the first difference, so that a failure does not print every line.
size_t FirstDifference(const std::vector<Turn>& a, const std::vector<Turn>& b) {
    return static_cast<size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
}

}  // namespace

TEST(LogUnderLoad, LosesAndMixesNoLineThatGotTheMutexWhileTheLogRotates) {
    const DriverLibrary driver(DefaultDriverFile());
    const LogCapture capture(driver.LogPath(), 1);
    const RotatingLog log(driver.LogPath());
    const std::string bookName = "orvex-endurance-book";
    const SharedTurnBook book(bookName);

    std::vector<std::string> generations;
    {
        Writers writers(driver, *book, bookName);
        for (int i = 0; i < kRotations; ++i) {
            const uint32_t enough = book->taken + kLinesARotation;
            ASSERT_TRUE(Becomes([&] { return book->taken >= enough; }));
            ASSERT_TRUE(log.Rotate()) << "rotation " << i + 1;
            generations.push_back(ReadGrownLog(log.Backup(1)));
        }
        // A process may have started late.
        EXPECT_TRUE(Becomes([&] { return ProcessesIn(*book).size() == kProcesses; }));
    }
    generations.push_back(ReadGrownLog(driver.LogPath()));

    // Each attempted line waited for the mutex, and each one that got it is in the log, in order.
    ASSERT_LE(book->taken, TurnBook::kMaxTurns);
    EXPECT_EQ(book->attempted, book->taken + book->refused);
    std::vector<Turn> written;
    std::vector<std::string> strangers;
    for (const std::string& text : generations) {
        const std::vector<Turn> turns = ReadTurns(text, strangers);
        written.insert(written.end(), turns.begin(), turns.end());
    }
    EXPECT_THAT(strangers, IsEmpty());
    const std::vector<Turn> taken(book->turns, book->turns + book->taken);
    EXPECT_EQ(written.size(), taken.size());
    EXPECT_EQ(FirstDifference(written, taken), taken.size());

    // Each writer's own lines ascend.
    std::map<uint32_t, uint32_t> last;
    for (const Turn& turn : written) {
        EXPECT_GT(turn.number, last[turn.writer]) << "writer " << turn.writer;
        last[turn.writer] = turn.number;
    }
    // There are lines of every process.
    std::set<uint32_t> processes;
    for (const auto& [writer, number] : last) processes.insert(ProcessOf(writer));
    EXPECT_EQ(processes.size(), kProcesses);

    // The nine newest backups are there, the newest first; the older ones are gone.
    for (int i = 1; i <= kBackups; ++i) {
        EXPECT_EQ(ReadGrownLog(log.Backup(i)), generations[static_cast<size_t>(kRotations - i)]) << i;
    }
    EXPECT_FALSE(fs::exists(log.Backup(kBackups + 1)));
    std::cout << "log under load: " << written.size() << " lines of " << last.size() << " writers in "
              << kProcesses << " processes, " << book->refused << " refused, " << kRotations
              << " rotations\n";
}

}  // namespace orvex
