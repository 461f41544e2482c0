// The shell's functions: folders and paths. Apart from the rest of the system, since few need them and their
// headers are the largest.
#pragma once

#include "platform/windows.h"

// clang-format off
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>
// clang-format on
