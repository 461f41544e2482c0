#include "host/utf8_arguments.h"

#ifdef _WIN32
#include "host/wide_text.h"
#include "support/shell.h"
#endif

std::vector<std::string> Utf8Arguments([[maybe_unused]] int count, [[maybe_unused]] char** arguments) {
#ifdef _WIN32
    SetConsoleOutputCP(CP_UTF8);
    std::vector<std::string> texts;
    int wideCount = 0;
    WCHAR** wide = CommandLineToArgvW(GetCommandLineW(), &wideCount);
    for (int i = 1; i < wideCount; ++i) texts.push_back(Utf8(wide[i]));
    LocalFree(wide);
    return texts;
#else
    return {arguments + 1, arguments + count};
#endif
}
