// The installed colour profiles and the names under which users see them.
#pragma once

#include "support/heap.h"
#include "support/platform.h"

// Lists the profiles of the installation: file names, and one display name for each, in the same order. A list is
// zero-terminated names back to back with an empty one at the end; an empty list is null. Returns 1, or 0 when the
// installation's folder is unknown or can't be searched. `context` is not used.
int ListProfiles(void* context, HeapArray<WCHAR>* fileNames, HeapArray<WCHAR>* displayNames);
