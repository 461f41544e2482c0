// Which names stay inside the folder that they are looked up in.
#pragma once

// Whether `name`, in the narrow code page, names a file of the folder itself: it holds no separator and no
// colon, is neither empty nor "..", and is short enough for a path at all.
bool IsBareFileName(const char* name);
