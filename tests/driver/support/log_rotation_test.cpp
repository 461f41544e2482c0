#include <gmock/gmock.h>

#include <algorithm>

#include "driver/support/log_files.h"
#include "tests/driver/support/log_files.h"
#include "tests/kit/scratch_folder.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
namespace fs = std::filesystem;
using testing::ElementsAre;

TEST(LogRotation, AppendsToALogOfExactlyTheSizeLimit) {
    const BackupsRemoved backups;
    const LogCapture log;
    MakeLogOfSize(kMaxLogBytes);
    WriteOneLine();
    EXPECT_GT(fs::file_size(LogFile()), kMaxLogBytes);
    EXPECT_FALSE(fs::exists(Backup(1)));
}

TEST(LogRotation, StartsAFreshLogOneByteBeyondTheLimit) {
    const BackupsRemoved backups;
    LogCapture log;
    MakeLogOfSize(kMaxLogBytes + 1);
    WriteBytes(Backup(1), "first");
    WriteBytes(Backup(2), "second");
    WriteOneLine();
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] line"));
    EXPECT_EQ(fs::file_size(Backup(1)), kMaxLogBytes + 1);
    EXPECT_EQ(ReadBytes(Backup(2)), "first");
    EXPECT_EQ(ReadBytes(Backup(3)), "second");
}

TEST(LogRotation, KeepsNineBackupsAndDeletesTheOldest) {
    const BackupsRemoved backups;
    LogCapture log;
    MakeLogOfSize(kMaxLogBytes + 1);
    for (int i = 1; i <= 9; ++i) WriteBytes(Backup(i), std::to_string(i));
    WriteOneLine();
    EXPECT_EQ(fs::file_size(Backup(1)), kMaxLogBytes + 1);
    for (int i = 2; i <= 9; ++i) EXPECT_EQ(ReadBytes(Backup(i)), std::to_string(i - 1));
    const std::string stem = LogFile().stem().string() + ".";
    const auto isOfThisLog = [&stem](const fs::directory_entry& entry) {
        return entry.path().filename().string().starts_with(stem) && entry.path().extension() == ".txt";
    };
    EXPECT_EQ(std::count_if(fs::directory_iterator(LogFile().parent_path()), {}, isOfThisLog), 1 + 9);
}

TEST(LogRotation, ShiftsOnlyUpToTheFirstGap) {
    const BackupsRemoved backups;
    LogCapture log;
    MakeLogOfSize(kMaxLogBytes + 1);
    for (const int i : {1, 2, 5}) WriteBytes(Backup(i), std::to_string(i));
    WriteOneLine();
    EXPECT_EQ(ReadBytes(Backup(2)), "1");
    EXPECT_EQ(ReadBytes(Backup(3)), "2");
    EXPECT_FALSE(fs::exists(Backup(4)));
    EXPECT_EQ(ReadBytes(Backup(5)), "5");
}

TEST(LogRotation, LeavesAnOldestBackupThatCannotBeDeleted) {
    const ScratchFolder scratch;
    const fs::path before = fs::current_path();
    fs::current_path(scratch.Path());
    WriteBytes("log.9.txt", "kept");
    {
        const ImportPatch failure(nullptr, "DeleteFileA",
                                  reinterpret_cast<void*>(+[](LPCSTR) WINAPI -> BOOL { return FALSE; }));
        RotateLogFile("log.9.txt");
    }
    EXPECT_EQ(ReadBytes("log.9.txt"), "kept");
    fs::current_path(before);
}

TEST(LogRotation, LeavesNamesWithoutANumberAlone) {
    const ScratchFolder scratch;
    for (const char* name : {"log", ".txt"}) {
        const fs::path before = fs::current_path();
        fs::current_path(scratch.Path());
        WriteBytes(name, "kept");
        RotateLogFile(name);
        EXPECT_EQ(ReadBytes(name), "kept") << name;
        fs::current_path(before);
    }
}

TEST(LogRotation, KeepsGrowingTheLogWhenItCannotBeRenamed) {
    const BackupsRemoved backups;
    const LogCapture log;
    MakeLogOfSize(kMaxLogBytes + 1);
    fs::create_directories(Backup(1));
    fs::create_directories(Backup(2));
    fs::create_directories(Backup(3));
    const ImportPatch patch(nullptr, "MoveFileA",
                            reinterpret_cast<void*>(+[](LPCSTR, LPCSTR) WINAPI -> BOOL { return FALSE; }));
    WriteOneLine();
    EXPECT_GT(fs::file_size(LogFile()), kMaxLogBytes + 1);
}

}  // namespace orvex
