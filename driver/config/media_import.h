// Fills a printer's empty label list from media.inf in the installation folder.
//
// media.inf is a text whose first 4095 bytes count. Behind the line with "[Media]" each line, ended by CR LF
// or LF, is one label: name, width and length in double quotes and the units as a number, with blanks, tabs
// or commas before each; the rest of the line is skipped.
//
//     [Media]
//     "Shipping 4 x 6", "4", "6", 1
//
// The first line of another form, an empty one or a comment too, ends the import.
#pragma once

#include "platform/windows.h"

namespace orvex {

// Adds the labels of media.inf in `folder` to the printer, which may be null: its labels are then only
// logged. Returns 0 when the printer has labels already and nothing is done, else 1, whatever fails.
int ImportMediaFile(HANDLE printer, const WCHAR* folder);

}  // namespace orvex
