#include "tests/system/endurance/other_process.h"

#include <stdexcept>

#include "tools/host/driver_library.h"

#ifdef _WIN32
#include "platform/windows.h"
#else
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace orvex {

using namespace tools;

#ifdef _WIN32

OtherProcess::OtherProcess(const std::vector<std::string>& arguments) {
    std::string line = '"' + (ProgramFolder() / "endurance_helper.exe").string() + '"';
    for (const std::string& each : arguments) line += " \"" + each + '"';
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION information;
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &information)) {
        throw std::runtime_error("no process: " + line);
    }
    CloseHandle(information.hThread);
    process_ = information.hProcess;
}

OtherProcess::~OtherProcess() {
    Wait();
    CloseHandle(process_);
}

int OtherProcess::Wait() {
    if (!ended_) {
        WaitForSingleObject(process_, INFINITE);
        DWORD code = 0;
        GetExitCodeProcess(process_, &code);
        exitCode_ = static_cast<int>(code);
        ended_ = true;
    }
    return exitCode_;
}

#else

OtherProcess::OtherProcess(const std::vector<std::string>& arguments) {
    std::string program = (ProgramFolder() / "endurance_helper").string();
    std::vector<std::string> texts = arguments;
    std::vector<char*> words = {program.data()};
    for (std::string& each : texts) words.push_back(each.data());
    words.push_back(nullptr);
    if (posix_spawn(&process_, program.c_str(), nullptr, nullptr, words.data(), environ) != 0) {
        throw std::runtime_error("no process: " + program);
    }
}

OtherProcess::~OtherProcess() {
    Wait();
}

int OtherProcess::Wait() {
    if (!ended_) {
        int status = 0;
        waitpid(process_, &status, 0);
        exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        ended_ = true;
    }
    return exitCode_;
}

#endif

}  // namespace orvex
