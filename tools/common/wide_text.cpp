#include "tools/common/wide_text.h"

#include <algorithm>
#include <climits>
#include <iostream>
#include <map>

#ifdef _WIN32
#include "platform/shell.h"
#else
#include "platform/posix/paths.h"
#endif

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

// Narrows a length to what the conversion functions take; no text here comes near the limit.
int Length(size_t length) {
    return static_cast<int>(std::min<size_t>(length, INT_MAX));
}

std::u16string Widen(UINT page, std::string_view narrow) {
    if (narrow.empty()) return {};
    const int needed = MultiByteToWideChar(page, 0, narrow.data(), Length(narrow.size()), nullptr, 0);
    std::u16string wide(static_cast<size_t>(std::max(needed, 0)), u'\0');
    if (!wide.empty())
        MultiByteToWideChar(page, 0, narrow.data(), Length(narrow.size()), AsWchar(wide), needed);
    return wide;
}

std::string Narrow(UINT page, std::u16string_view wide) {
    if (wide.empty()) return {};
    const auto* text = reinterpret_cast<const WCHAR*>(wide.data());
    const int needed = WideCharToMultiByte(page, 0, text, Length(wide.size()), nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(std::max(needed, 0)), '\0');
    if (!narrow.empty()) {
        WideCharToMultiByte(page, 0, text, Length(wide.size()), narrow.data(), needed, nullptr, nullptr);
    }
    return narrow;
}

// The paths that were made absolute, as they were given.
std::map<fs::path, fs::path>& GivenPaths() {
    static std::map<fs::path, fs::path> paths;
    return paths;
}

#ifdef _WIN32

// Returns Linux's name of an absolute path under Wine; empty on Windows itself, and for other paths.
std::string LinuxName(const fs::path& path) {
    using Translate = char*(CDECL*)(const WCHAR*);
    const auto translate = reinterpret_cast<Translate>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "wine_get_unix_file_name")));
    if (translate == nullptr || !path.is_absolute()) return {};
    char* const name = translate(path.c_str());
    if (name == nullptr) return {};
    std::string text = name;
    HeapFree(GetProcessHeap(), 0, name);
    constexpr std::string_view kRootDrive = "/dosdevices/z:";
    const size_t drive = text.find(kRootDrive);
    return drive == std::string::npos ? text : text.substr(drive + kRootDrive.size());
}

#endif

}  // namespace

fs::path AbsolutePath(const fs::path& given) {
    fs::path absolute = fs::absolute(given);
    GivenPaths()[absolute] = given;
    return absolute;
}

std::u16string Wide(std::string_view utf8) {
    return Widen(CP_UTF8, utf8);
}
std::string Utf8(std::u16string_view wide) {
    return Narrow(CP_UTF8, wide);
}
std::string Utf8(const WCHAR* wide) {
    return Utf8(AsView(wide));
}
std::string Utf8FromNarrow(std::string_view narrow) {
    return Utf8(Widen(CP_ACP, narrow));
}
std::string NarrowFromUtf8(std::string_view utf8) {
    return Narrow(CP_ACP, Wide(utf8));
}

std::u16string_view AsView(const WCHAR* text) {
    const auto* begin = reinterpret_cast<const char16_t*>(text);
    return begin == nullptr ? std::u16string_view() : std::u16string_view(begin);
}

#ifdef _WIN32

fs::path PathFromUtf8(std::string_view utf8) {
    return Wide(utf8);
}
std::string Utf8FromPath(const fs::path& path) {
    const auto found = GivenPaths().find(path);
    if (found != GivenPaths().end()) return Utf8(found->second.u16string());
    const std::string linuxName = LinuxName(path);
    return linuxName.empty() ? Utf8(path.u16string()) : linuxName;
}
std::u16string WindowsPath(const fs::path& path) {
    return path.u16string();
}
fs::path MachinePath(std::string_view windowsPath) {
    return PathFromUtf8(windowsPath);
}
std::vector<std::string> Utf8Arguments(int, char**) {
    SetConsoleOutputCP(CP_UTF8);
    std::ios::sync_with_stdio(false);
    std::vector<std::string> texts;
    int wideCount = 0;
    WCHAR** wide = CommandLineToArgvW(GetCommandLineW(), &wideCount);
    for (int i = 1; i < wideCount; ++i) texts.push_back(Utf8(wide[i]));
    LocalFree(wide);
    return texts;
}

#else

fs::path PathFromUtf8(std::string_view utf8) {
    return std::string(utf8);
}
std::string Utf8FromPath(const fs::path& path) {
    const auto found = GivenPaths().find(path);
    return (found == GivenPaths().end() ? path : found->second).string();
}
std::u16string WindowsPath(const fs::path& path) {
    return posix::WindowsPath(path.string());
}
fs::path MachinePath(std::string_view windowsPath) {
    return posix::PosixPath(std::string(windowsPath).c_str());
}
std::vector<std::string> Utf8Arguments(int count, char** arguments) {
    std::ios::sync_with_stdio(false);
    return {arguments + 1, arguments + count};
}

#endif

}  // namespace orvex::tools
