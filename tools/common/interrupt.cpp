#include "tools/common/interrupt.h"

#include <atomic>
#include <csignal>
#include <cstring>

#ifdef _WIN32
#include <io.h>

#include "platform/windows.h"
#else
#include <unistd.h>
#endif

namespace orvex::tools {

namespace {

struct GuardedFile {
    std::atomic<bool> taken = false;
    std::atomic<const std::filesystem::path::value_type*> name = nullptr;
    int descriptor = -1;
};
// Plain data: a signal handler may neither allocate nor lock.
GuardedFile guarded[8];

void RemoveGuardedFiles() {
    for (GuardedFile& each : guarded) {
        const auto* const name = each.name.exchange(nullptr);
        if (name == nullptr) continue;
#ifdef _WIN32
        _close(each.descriptor);  // an open file can't be removed
        _wunlink(name);
#else
        unlink(name);
#endif
    }
}

std::atomic<const char*> faultMessage = nullptr;
constexpr int kFaulted = 1;

#ifdef _WIN32

LPTOP_LEVEL_EXCEPTION_FILTER filterBefore = nullptr;

LONG WINAPI EndWithMessage(EXCEPTION_POINTERS*) {
    const char* const message = faultMessage;
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), message, static_cast<DWORD>(strlen(message)), &written,
              nullptr);
    RemoveGuardedFiles();
    TerminateProcess(GetCurrentProcess(), kFaulted);
    return EXCEPTION_EXECUTE_HANDLER;
}

// Runs in a thread of its own.
BOOL WINAPI EndProgram(DWORD) {
    constexpr UINT kInterrupted = 130;
    RemoveGuardedFiles();
    TerminateProcess(GetCurrentProcess(), kInterrupted);
    return TRUE;
}

#else

struct sigaction actionBefore = {};

void EndWithMessage(int) {
    const char* const message = faultMessage;
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message, strlen(message));
    RemoveGuardedFiles();
    _exit(kFaulted);
}

void EndProgram(int number) {
    RemoveGuardedFiles();
    signal(number, SIG_DFL);
    raise(number);
}

#endif

}  // namespace

void EndCleanlyOnInterrupt() {
#ifdef _WIN32
    SetConsoleCtrlHandler(&EndProgram, TRUE);
#else
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (signal(number, &EndProgram) == SIG_IGN) signal(number, SIG_IGN);
    }
#endif
}

RemovedOnInterrupt::RemovedOnInterrupt(const std::filesystem::path& path, int descriptor) {
    for (int i = 0; i < static_cast<int>(std::size(guarded)); ++i) {
        if (guarded[i].taken.exchange(true)) continue;
        guarded[i].descriptor = descriptor;
        guarded[i].name = path.c_str();
        place_ = i;
        return;
    }
}

RemovedOnInterrupt::~RemovedOnInterrupt() {
    if (place_ < 0) return;
    guarded[place_].name = nullptr;
    guarded[place_].taken = false;
}

FaultMessage::FaultMessage(const char* message) {
    faultMessage = message;
#ifdef _WIN32
    filterBefore = SetUnhandledExceptionFilter(&EndWithMessage);
#else
    struct sigaction action = {};
    action.sa_handler = &EndWithMessage;
    sigaction(SIGSEGV, &action, &actionBefore);
#endif
}

FaultMessage::~FaultMessage() {
#ifdef _WIN32
    SetUnhandledExceptionFilter(filterBefore);
#else
    sigaction(SIGSEGV, &actionBefore, nullptr);
#endif
}

}  // namespace orvex::tools
