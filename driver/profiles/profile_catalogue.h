// The installed colour profiles and the names under which users see them.
//
// A list of names is zero-terminated texts back to back with an empty one at the end; an empty list is null.
#pragma once

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// Lists the profiles of the installation: file names, and one display name for each, in the same order.
// Returns 1, or 0 when the installation's folder is unknown or can't be searched. `context` is not used.
int ListProfiles(void* context, HeapArray<WCHAR>* fileNames, HeapArray<WCHAR>* displayNames);

// How a search for profiles ended.
enum ScanResult : DWORD {
    kScanned = 0,
    kNoSearchPath = 1,  // the search's path is too long
    kSearchFailed = 2,  // the names, found once, could not be collected
};

// Lists the files "profiles\*.zvp" below the installation folder into `fileNames`, which stays as it is when
// there are none. `pattern` is not used.
ScanResult QRV_ScanDirectoryWithPattern(const WCHAR* folder, const WCHAR* pattern,
                                        HeapArray<WCHAR>* fileNames);

// Appends the display name of a profile to `names`, of `*bytes` bytes without the empty text at its end: the
// name in the section of profilenames.inf, else the one in the profile itself, else its file name. Returns 1,
// or 0 when memory is short; the list then stays as it was.
int GetQRVProfileName(const WCHAR* fileName, HeapArray<WCHAR>* names, size_t* bytes, const WCHAR* folder,
                      const WCHAR* section);

}  // namespace orvex
