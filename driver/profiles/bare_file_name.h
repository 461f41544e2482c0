// The check for names that are safe to look up in a folder.
#pragma once

namespace orvex {

// Returns whether `name`, in the narrow code page, can only be a file of the folder that it is looked up in:
// it has no separator and no colon, is neither empty nor "..", is short enough for a path, and is not the
// name of a device, such as NUL or COM1, in any case and with any extension. Opening a device could block the
// spooler, or drive the port.
bool IsBareFileName(const char* name);

}  // namespace orvex
