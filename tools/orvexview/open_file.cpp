#include "tools/orvexview/open_file.h"

#include <stdexcept>
#include <string>

#include "tools/common/wide_text.h"

#ifdef _WIN32
#include <shellapi.h>
#else
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;
#endif

namespace orvex::tools::view {

namespace {

#ifdef _WIN32

bool Shows(const std::filesystem::path& path) {
    constexpr INT_PTR kLeastSuccess = 33;  // smaller numbers are errors
    const HINSTANCE result = ShellExecuteW(nullptr, L"open", path.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) >= kLeastSuccess;
}

#else

// A path that begins with a minus would be taken for an option, so it is made absolute.
bool Shows(const std::filesystem::path& path) {
    char program[] = "xdg-open";
    std::string file = std::filesystem::absolute(path).string();
    char* const arguments[] = {program, file.data(), nullptr};
    pid_t child = 0;
    if (posix_spawnp(&child, program, nullptr, nullptr, arguments, environ) != 0) return false;
    int status = 0;
    return waitpid(child, &status, 0) == child && status == 0;
}

#endif

}  // namespace

void OpenForUser(const std::filesystem::path& path) {
    if (!Shows(path)) throw std::runtime_error(Utf8FromPath(path) + ": there is no program that shows it");
}

}  // namespace orvex::tools::view
