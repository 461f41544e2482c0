// Plain definition of the names that can be those of files in the profiles folder.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/windows.h"

namespace orvex::plain {

// Returns narrow text as the system widens it.
inline std::u16string Widened(std::string_view text) {
    std::u16string wide(text.size(), u'\0');
    const int count =
        MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                            reinterpret_cast<WCHAR*>(wide.data()), static_cast<int>(wide.size()));
    wide.resize(text.empty() ? 0 : static_cast<size_t>(count));
    return wide;
}

// Returns whether the system opens a device under a name in any folder: CON, PRN, AUX, NUL, CONIN$, CONOUT$,
// and COM and LPT with a digit from 1 to 9 or a superscript from 1 to 3, in letters of any case, whatever
// follows the first dot, and with blanks before it.
inline bool IsDeviceName(std::u16string name) {
    name = name.substr(0, name.find(u'.'));
    while (name.ends_with(u' ')) name.pop_back();
    for (char16_t& c : name) {
        if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
    }
    for (const std::u16string_view device : {u"CON", u"PRN", u"AUX", u"NUL", u"CONIN$", u"CONOUT$"}) {
        if (name == device) return true;
    }
    if (name.size() != 4 || !(name.starts_with(u"COM") || name.starts_with(u"LPT"))) return false;
    return std::u16string_view(u"123456789\u00B9\u00B2\u00B3").find(name[3]) != std::u16string_view::npos;
}

// Returns whether a name of at most 511 bytes is that of a file in the profiles folder itself.
inline bool IsBareFileName(const std::string& name) {
    const std::u16string wide = Widened(name);
    return name.size() < 512 && !wide.empty() && wide != u".." && !IsDeviceName(wide) &&
           wide.find_first_of(u"\\/:") == std::u16string::npos;
}

}  // namespace orvex::plain
