// Wide text of Windows and UTF-8. Invalid text becomes replacement characters.
#pragma once

#include <string>

#include "platform/windows.h"

namespace orvex::posix {

std::string Utf8(const WCHAR* text);
std::string Utf8(const WCHAR* text, size_t length);
std::u16string Utf16(const std::string& text);

}  // namespace orvex::posix
