// Text and paths between the host, which keeps UTF-8, and the driver's wide calls.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/windows.h"

namespace orvex::tools {

// UTF-16 text of the host's own; bytes that are no UTF-8 become U+FFFD.
std::u16string Wide(std::string_view utf8);
std::string Utf8(std::u16string_view wide);
std::string Utf8(const WCHAR* wide);

// The narrow code page of device modes and printer data, from and to UTF-8.
std::string Utf8FromNarrow(std::string_view narrow);
std::string NarrowFromUtf8(std::string_view utf8);

// The same characters for a Windows call.
inline const WCHAR* AsWchar(const std::u16string& text) {
    return reinterpret_cast<const WCHAR*>(text.c_str());
}
inline WCHAR* AsWchar(std::u16string& text) {
    return reinterpret_cast<WCHAR*>(text.data());
}
std::u16string_view AsView(const WCHAR* text);

// A path of this machine from UTF-8 and back.
std::filesystem::path PathFromUtf8(std::string_view utf8);
std::string Utf8FromPath(const std::filesystem::path& path);

// A path of this machine as the driver sees it, and back. They differ in the native build only, where drive C
// is a folder.
std::u16string WindowsPath(const std::filesystem::path& path);
std::filesystem::path MachinePath(std::string_view windowsPath);

}  // namespace orvex::tools
