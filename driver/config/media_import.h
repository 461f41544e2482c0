// The import of media.inf, which fills a printer's empty label list.
//
// media.inf is a text in the installation folder whose first 4095 bytes count. After the line with "[Media]"
// each line, ended by CR LF or LF, is one label: name, width and length in double quotes and the units as a
// number, with blanks, tabs or commas before each; the rest of the line is skipped.
//
//     [Media]
//     "Shipping 4 x 6", "4", "6", 1
//
// Any other line, even an empty one or a comment, ends the import.
#pragma once

#include <string_view>

#include "driver/config/label_sizes.h"
#include "platform/windows.h"

namespace orvex {

constexpr DWORD kMaxMediaBytes = 4095;
constexpr std::string_view kMediaSection = "[Media]";

// Parses a line without its line feed. Returns false for one that ends the import; `label` is then useless.
bool ParseMediaLabel(std::string_view line, LabelSize* label);

// Adds the labels of media.inf in `folder` to the printer. Without a printer (null) they are only logged.
// Returns 0, without doing anything, when the printer has labels already; otherwise 1, whatever fails.
int ImportMediaFile(HANDLE printer, const WCHAR* folder);

}  // namespace orvex
