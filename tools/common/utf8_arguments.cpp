#include "tools/common/utf8_arguments.h"

#ifdef _WIN32
#include "platform/shell.h"
#include "tools/common/wide_text.h"
#endif

namespace orvex::tools {

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

}  // namespace orvex::tools
