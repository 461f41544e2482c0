#include "driver/support/log.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstring>
#include <sstream>
#include <thread>

#include "driver/support/log_files.h"
#include "tests/driver/support/log_files.h"
#include "tests/driver/support/open_watch.h"
#include "tests/kit/scratch_folder.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

// Returns the path of the log as the driver writes it.
std::string LogPathText() {
    return GetLogPath().get();
}

// A link to a file in the log's place.
class PlantedLink {
#ifdef _WIN32
    // Windows makes links for administrators only, and Wine makes none. So this one is imitated: an opening
    // that does not ask for the link itself leads to the target.
  public:
    explicit PlantedLink(const fs::path& target)
        : patch_(nullptr, "CreateFileA", reinterpret_cast<void*>(&Open)) {
        target_ = target.string();
        original_ = reinterpret_cast<decltype(&CreateFileA)>(patch_.Original());
    }

  private:
    static HANDLE WINAPI Open(LPCSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                              DWORD disposition, DWORD flags, HANDLE templateFile) {
        const bool isFollowed = path == LogPathText() && (flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0;
        return original_(isFollowed ? target_.c_str() : path, access, share, security, disposition, flags,
                         templateFile);
    }

    static inline std::string target_;
    static inline decltype(&CreateFileA) original_ = nullptr;
    ImportPatch patch_;
#else
  public:
    explicit PlantedLink(const fs::path& target) {
        fs::create_symlink(target, LogFile());
    }
    ~PlantedLink() {
        fs::remove(LogFile());
    }
    PlantedLink(const PlantedLink&) = delete;
    PlantedLink& operator=(const PlantedLink&) = delete;
#endif
};

}  // namespace

TEST(LogPath, IsTheModuleNameWithTxtInTheFixedFolder) {
    EXPECT_THAT(LogPathText(), AllOf(StartsWith("c:\\temp\\"), EndsWith(".txt")));
}

namespace {

std::string moduleName;
DWORD moduleError = ERROR_SUCCESS;

// Cuts the name at the buffer's end as the system does, without a terminator and without an error.
DWORD WINAPI AnswerModuleName(HMODULE, LPSTR buffer, DWORD capacity) {
    const auto length = static_cast<DWORD>(std::min<size_t>(moduleName.size(), capacity));
    memcpy(buffer, moduleName.data(), length);
    if (length < capacity) buffer[length] = '\0';
    if (moduleError != ERROR_SUCCESS) SetLastError(moduleError);
    return length;
}

}  // namespace

TEST(LogPath, IsDriverTxtForDriverDll) {
    const ImportPatch patch(nullptr, "GetModuleFileNameA", reinterpret_cast<void*>(&AnswerModuleName));
    moduleName = "c:\\windows\\system32\\driver.dll";
    SetLastError(ERROR_GEN_FAILURE);  // an earlier error must not matter
    EXPECT_EQ(LogPathText(), "c:\\temp\\driver.txt");
}

TEST(LogPath, IsMissingWithoutTheModuleNameOrItsFolder) {
    const ImportPatch patch(nullptr, "GetModuleFileNameA", reinterpret_cast<void*>(&AnswerModuleName));
    moduleName = "driver.dll";
    EXPECT_EQ(GetLogPath(), nullptr);
    moduleName = "c:\\windows\\driver.dll";
    moduleError = ERROR_INSUFFICIENT_BUFFER;
    EXPECT_EQ(GetLogPath(), nullptr);
    moduleError = ERROR_SUCCESS;
}

TEST(LogPath, IsMissingForAModuleNameThatIsTooShortOrCut) {
    const ImportPatch patch(nullptr, "GetModuleFileNameA", reinterpret_cast<void*>(&AnswerModuleName));
    for (const char* name : {"", "\\", "\\a", "\\ab"}) {
        moduleName = name;
        EXPECT_EQ(GetLogPath(), nullptr) << name;
    }
    moduleName = "\\abc";
    EXPECT_EQ(LogPathText(), "c:\\temp\\txt");
    moduleName = "\\" + std::string(254, 'a') + ".dll";
    EXPECT_EQ(LogPathText(), "c:\\temp\\" + std::string(254, 'a') + ".txt") << "of 259 characters";
    moduleName = "\\" + std::string(255, 'a') + ".dll";
    EXPECT_EQ(GetLogPath(), nullptr) << "of 260";
}

TEST(LogWriter, WritesWhateverTheMaskSaysAndNoTagForAnUnknownLevel) {
    LogCapture log(0);
    LogWrite(LogLevel::kError, "one");
    LogWrite(static_cast<LogLevel>(3), "two");
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] one", "two"));
}

TEST(LogWriter, StampsEachLineWithUtcTimeAndThread) {
    LogCapture log;
    LogInfo("stamped");
    std::string line = ReadBytes(LogFile());
    for (char& c : line) {
        if (c >= '0' && c <= '9') c = '9';
    }
    const size_t thread = line.find("9] [Info]");  // the thread's number has as many digits as it needs
    ASSERT_NE(thread, std::string::npos);
    EXPECT_EQ(line.substr(0, 33), "[9999-99-99 99:99:99.999] [TID: 9");
    EXPECT_EQ(line.substr(thread), "9] [Info]  stamped\n");
}

TEST(LogWriter, PreservesTheLastErrorOfTheCaller) {
    const LogCapture log;
    for (int i = 0; i < 2; ++i) {
        SetLastError(ERROR_INVALID_PARAMETER);
        LogInfo("line");
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    }
}

TEST(LogWriter, KeepsLongLinesWhole) {
    LogCapture log;
    const std::string text(5000, 'x');
    LogInfo("%s", text);
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Info]  " + text));
}

namespace {

// Remembers the last mutex that was opened.
class MutexWatch {
  public:
    MutexWatch() : patch_(nullptr, "CreateMutexA", reinterpret_cast<void*>(&Watch)) {
        original = patch_.Original();
    }
    static inline HANDLE last = nullptr;

  private:
    static HANDLE WINAPI Watch(LPSECURITY_ATTRIBUTES attributes, BOOL owned, LPCSTR name) {
        EXPECT_EQ(attributes->lpSecurityDescriptor, nullptr);
        EXPECT_TRUE(attributes->bInheritHandle);
        EXPECT_FALSE(owned);
        EXPECT_EQ(std::string(name).find('\\'), std::string::npos);
        return last = reinterpret_cast<decltype(&CreateMutexA)>(original)(attributes, owned, name);
    }
    static inline void* original = nullptr;
    ImportPatch patch_;
};

}  // namespace

TEST(LogWriter, LosesTheLineWhenTheLogCannotBeOpenedAndLeavesTheMutexOwned) {
    LogCapture log;
    const MutexWatch watch;
    fs::create_directory(LogFile());
    WriteOneLine();
    fs::remove(LogFile());
    EXPECT_TRUE(ReleaseMutex(MutexWatch::last));  // this thread owned it
    EXPECT_TRUE(CloseHandle(MutexWatch::last));   // and its handle was open
    WriteOneLine();
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] line"));
    EXPECT_FALSE(CloseHandle(MutexWatch::last));  // a line that was written closes it
}

TEST(LogWriter, LosesTheLineWhenTheLogCannotBeOpenedAfterItsRotation) {
    const BackupsRemoved backups;
    LogCapture log;
    MakeLogOfSize(kMaxLogBytes + 1);
    const MutexWatch watch;
    {
        // A folder takes the place of the log that is moved away.
        const ImportPatch move(nullptr, "MoveFileA",
                               reinterpret_cast<void*>(+[](LPCSTR, LPCSTR) WINAPI -> BOOL {
                                   fs::rename(LogFile(), Backup(1));
                                   return fs::create_directory(LogFile()) ? TRUE : FALSE;
                               }));
        WriteOneLine();
    }
    fs::remove(LogFile());
    EXPECT_TRUE(ReleaseMutex(MutexWatch::last));
    EXPECT_TRUE(CloseHandle(MutexWatch::last));
}

HANDLE OpenMutexOfLog() {
    std::string name = LogPathText();
    std::replace(name.begin(), name.end(), '\\', '/');
    return CreateMutexA(nullptr, FALSE, name.c_str());
}

TEST(LogWriter, DropsTheLineWhenAnotherThreadOwnsTheMutex) {
    LogCapture log;
    const HANDLE mutex = OpenMutexOfLog();
    ASSERT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    std::thread(WriteOneLine).join();
    EXPECT_THAT(log.TakeLines(), IsEmpty());
    CloseHandle(mutex);
    std::thread(WriteOneLine).join();
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] line"));
}

TEST(LogWriter, DropsOneLineAfterAThreadThatEndedWithTheMutexAndGoesOn) {
    LogCapture log;
    const HANDLE mutex = OpenMutexOfLog();
    std::thread([mutex] { EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0); }).join();
    LogInfo("dropped");
    std::thread([] { LogInfo("written"); }).join();
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Info]  written"));
    EXPECT_TRUE(CloseHandle(mutex));
}

namespace {

// Records the order in which threads take the log's mutex, which guards the record itself.
class TurnWatch {
  public:
    TurnWatch() : patch_(nullptr, "WaitForSingleObject", reinterpret_cast<void*>(&Watch)) {
        original = patch_.Original();
        turns.clear();
    }
    static inline std::vector<std::string> turns;

  private:
    static DWORD WINAPI Watch(HANDLE handle, DWORD milliseconds) {
        const DWORD result = reinterpret_cast<decltype(&WaitForSingleObject)>(original)(handle, milliseconds);
        // Other waits are those of the thread library.
        if (milliseconds == 100 && result == WAIT_OBJECT_0)
            turns.push_back(std::to_string(GetCurrentThreadId()));
        return result;
    }
    static inline void* original = nullptr;
    ImportPatch patch_;
};

}  // namespace

TEST(LogWriter, WritesTheLinesOfTwoWritersWholeAndInTheOrderOfTheirTurns) {
    const LogCapture log;
    const TurnWatch watch;
    const std::string text(3000, 'x');  // more than one write to the file
    const auto write = [&] {
        for (int i = 0; i < 50; ++i) LogInfo("%s", text);
    };
    std::thread first(write), second(write);
    first.join();
    second.join();

    std::vector<std::string> writers;
    std::istringstream lines(ReadBytes(LogFile()));
    for (std::string line; std::getline(lines, line);) {
        const std::string_view stamp = "[TID: ";
        const size_t thread = line.find(stamp) + stamp.size();
        const size_t end = line.find(']', thread);
        ASSERT_EQ(line.substr(end), "] [Info]  " + text);
        writers.push_back(line.substr(thread, end - thread));
    }
    EXPECT_GE(writers.size(), 50u);  // a writer that waits too long drops its line
    EXPECT_EQ(writers, TurnWatch::turns);
}

TEST(LogWriter, OpensALinkInTheLogsPlaceInsteadOfWhatItLeadsTo) {
    const LogCapture log;
    const OpenWatch watch;
    WriteOneLine();
    EXPECT_THAT(OpenWatch::openings,
                ElementsAre(OpenWatch::Opening{LogPathText(), FILE_APPEND_DATA | SYNCHRONIZE,
                                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                               FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT}));
}

TEST(LogWriter, LeavesAloneWhatALinkPlantedInTheLogsPlaceLeadsTo) {
    LogCapture log;
    const ScratchFolder scratch;
    const fs::path victim = scratch.Write("victim.txt", "precious");
    const PlantedLink link(victim);
    WriteOneLine();
    EXPECT_EQ(ReadBytes(victim), "precious");
}

}  // namespace orvex
