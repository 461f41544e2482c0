// The installed color profiles and the names under which users see them.
//
// A list of names is zero-terminated texts one after the other with an empty one at the end; an empty list is
// null.
#pragma once

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// Lists the profiles of the installation: file names, and one display name for each, in the same order.
// Returns 1, or 0 when the installation's folder is unknown or can't be searched. `context` is not used.
int ListProfiles(void* context, HeapArray<WCHAR>* fileNames, HeapArray<WCHAR>* displayNames);

// The end of a search.
enum ScanResult : DWORD {
    kScanned = 0,
    kNoSearchPath = 1,  // the search's path is too long
    kSearchFailed = 2,  // the files are there, but their names could not be collected
};

// Lists the files "profiles\*.zvp" of the installation folder into `fileNames`, which stays as it is
// when there are none. `pattern` is not used.
ScanResult QRV_ScanDirectoryWithPattern(const WCHAR* folder, const WCHAR* pattern,
                                        HeapArray<WCHAR>* fileNames);

}  // namespace orvex
