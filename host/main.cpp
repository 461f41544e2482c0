// The program orvexprint.
#include <cstdlib>
#include <iostream>

#include "host/orvexprint.h"
#include "host/wide_text.h"

#ifndef _WIN32
#include <unistd.h>
#endif

namespace {

#ifdef _WIN32

std::vector<std::string> Arguments(int, char**) {
    std::vector<std::string> arguments;
    int count = 0;
    LPWSTR* const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i) arguments.push_back(Utf8(wide[i]));
    LocalFree(wide);
    SetConsoleOutputCP(CP_UTF8);
    return arguments;
}

bool ErrorsGoToATerminal() {
    DWORD mode;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

#else

std::vector<std::string> Arguments(int count, char** values) {
    // Drive C of the native build outlives the run, so that a log can be read.
    const std::filesystem::path driveC = std::filesystem::temp_directory_path() / "orvex-drive-c";
    setenv("ORVEX_DRIVE_C", driveC.c_str(), 0);
    return {values + 1, values + count};
}

bool ErrorsGoToATerminal() {
    return isatty(STDERR_FILENO) != 0;
}

#endif

}  // namespace

int main(int count, char** values) {
    return RunOrvexPrint(Arguments(count, values),
                         {.out = std::cout, .error = std::cerr, .terminal = ErrorsGoToATerminal()});
}
