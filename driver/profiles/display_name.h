// The name under which users see a profile.
#pragma once

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// Appends the display name of a profile to `names`, a list as in profile_catalogue.h of `*bytes` bytes
// without the empty text at its end. The name is the one in the section of profilenames.inf, or the one in
// the profile, or the file's. Returns 1, or 0 when out of memory; the list then stays as it was.
int GetQRVProfileName(const WCHAR* fileName, HeapArray<WCHAR>* names, size_t* bytes, const WCHAR* folder,
                      const WCHAR* section);

}  // namespace orvex
