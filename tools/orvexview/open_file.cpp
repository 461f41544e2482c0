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
    const std::filesystem::path file = std::filesystem::absolute(path).make_preferred();
    SHELLEXECUTEINFOW call = {};
    call.cbSize = sizeof call;
    // The program ends at once, so the call must be done by then; what fails is told here, not in a window.
    call.fMask = SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
    call.lpVerb = L"open";
    call.lpFile = file.c_str();
    call.nShow = SW_SHOWNORMAL;
    return ShellExecuteExW(&call) != FALSE;
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
