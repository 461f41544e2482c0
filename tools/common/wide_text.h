// Texts, paths and a program's arguments, converted between the tools' UTF-8 and the wide and narrow texts of
// Windows.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows.h"

namespace orvex::tools {

// Convert between UTF-8 and UTF-16. Bytes that are not UTF-8 become U+FFFD.
std::u16string Wide(std::string_view utf8);
std::string Utf8(std::u16string_view wide);
std::string Utf8(const WCHAR* wide);

// Convert between UTF-8 and the narrow code page of device modes and printer data.
std::string Utf8FromNarrow(std::string_view narrow);
std::string NarrowFromUtf8(std::string_view utf8);

// Views the same characters as a Windows call takes them, and the reverse.
inline const WCHAR* AsWchar(const std::u16string& text) {
    return reinterpret_cast<const WCHAR*>(text.c_str());
}
inline WCHAR* AsWchar(std::u16string& text) {
    return reinterpret_cast<WCHAR*>(text.data());
}
std::u16string_view AsView(const WCHAR* text);

// Converts UTF-8 to a path of this machine.
std::filesystem::path PathFromUtf8(std::string_view utf8);

// Returns the path as its user knows it, in UTF-8: as it was given to AbsolutePath(), and under Wine as Linux
// names it.
std::string Utf8FromPath(const std::filesystem::path& path);

// Makes a path independent of the current folder, and remembers how it was given.
std::filesystem::path AbsolutePath(const std::filesystem::path& given);

// Convert between a path of this machine and the path that the driver sees. They differ only in the native
// build, where drive C is a folder.
std::u16string WindowsPath(const std::filesystem::path& path);
std::filesystem::path MachinePath(std::string_view windowsPath);

// Returns a program's arguments without its name. On Windows those of main() lack the characters that the
// code page lacks, so they are taken from the command line; the console is also told that output is UTF-8.
// Standard output is buffered from then on, since Wine's console takes long over each write.
std::vector<std::string> Utf8Arguments(int count, char** arguments);

}  // namespace orvex::tools
