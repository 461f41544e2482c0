// Lists of names and files of wide text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/common/wide_text.h"

namespace orvex {

// Returns the texts of a list that ends with an empty one; a null list has none.
inline std::vector<std::u16string> ListedTexts(const WCHAR* list) {
    std::vector<std::u16string> texts;
    if (list == nullptr) return texts;
    for (; *list != 0; list += texts.back().size() + 1) texts.emplace_back(tools::AsView(list));
    return texts;
}

// Returns UTF-16 text as little-endian bytes after a byte-order mark.
inline std::string WideFile(std::u16string_view text) {
    std::string bytes = "\xFF\xFE";
    for (const char16_t c : text) {
        bytes += static_cast<char>(c);
        bytes += static_cast<char>(c >> 8);
    }
    return bytes;
}

}  // namespace orvex
