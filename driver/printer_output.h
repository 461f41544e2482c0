// Writes to the spooler.
#pragma once

#include <string_view>

#include "platform/windows.h"

namespace orvex {

// Writes bytes to the printer, in one call, and returns whether the spooler took them; no bytes need no call.
// Deliberate: the count that the spooler reports is not checked.
bool WriteToPrinter(HANDLE printer, std::string_view bytes);

}  // namespace orvex
