// The program orvexprint.
#include <iostream>

#include "tools/common/interrupt.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/orvexprint.h"

#ifdef _WIN32
#include "platform/windows.h"
#else
#include <unistd.h>

#include "platform/posix/paths.h"
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

}  // namespace

int main(int count, char** values) {
    EndCleanlyOnInterrupt();
#ifndef _WIN32
    orvex::posix::KeepDriveC();
#endif
    return RunOrvexPrint(Utf8Arguments(count, values),
                         {.out = std::cout, .error = std::cerr, .terminal = ErrorsGoToATerminal()});
}
