// The localized names of color profiles: profilenames.inf in the installation folder, UTF-16 text after a
// byte-order mark. A section for each language has lines "<profile's file name>=<name>".
#pragma once

#include <cstddef>

#include "platform/windows.h"

namespace orvex {

// Looks up the name of a profile in a section such as "[DEU]" and copies it to `name` of `capacity`
// characters, terminated. A name that does not fit is cut, and gives way to a later one of the same profile.
// Returns the name's length in characters; 0, with an empty `name`, when there is none or the file can't be
// read.
size_t QRV_GetProfileFieldW(const WCHAR* section, const WCHAR* fileName, WCHAR* name, size_t capacity);

}  // namespace orvex
