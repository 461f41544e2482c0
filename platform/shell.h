// The headers of the shell, for folders and paths. They are apart because few sources need them and they are
// the largest.
#pragma once

#include "platform/windows.h"

// clang-format off
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>
// clang-format on
