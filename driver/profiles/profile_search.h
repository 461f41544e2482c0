// The search for installed profiles.
#pragma once

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// The end of a search.
enum ScanResult : DWORD {
    kScanned = 0,
    kNoSearchPath = 1,  // the search's path is too long
    kSearchFailed = 2,  // the files are there, but their names could not be collected
};

// Lists the files "profiles\*.zvp" of the installation folder into `fileNames`, a list of names as in
// profile_catalogue.h; it stays as it is when there are no files. `pattern` is not used.
ScanResult QRV_ScanDirectoryWithPattern(const WCHAR* folder, const WCHAR* pattern,
                                        HeapArray<WCHAR>* fileNames);

}  // namespace orvex
