// The program orvexprint.
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "tools/common/wide_text.h"
#include "tools/orvexprint/orvexprint.h"

#ifdef _WIN32
#include "platform/windows.h"
#else
#include <unistd.h>
#endif

using namespace orvex::tools;
using namespace orvex::tools::print;

namespace {

bool ErrorsGoToATerminal() {
#ifdef _WIN32
    DWORD mode;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

// Keeps drive C of the native build after the run, so that its log can be read.
void KeepDriveC() {
#ifndef _WIN32
    const std::filesystem::path driveC = std::filesystem::temp_directory_path() / "orvex-drive-c";
    setenv("ORVEX_DRIVE_C", driveC.c_str(), 0);
#endif
}

}  // namespace

int main(int count, char** values) {
    KeepDriveC();
    return RunOrvexPrint(Utf8Arguments(count, values),
                         {.out = std::cout, .error = std::cerr, .terminal = ErrorsGoToATerminal()});
}
