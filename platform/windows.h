// The Windows headers, except those of the shell. Everything includes this instead of <windows.h>.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN  // leaves out what nothing here calls and takes longest to compile
#endif

// The others need <windows.h> before them.
// clang-format off
#include <windows.h>
#include <winspool.h>
#include <winddi.h>
// clang-format on

// The records that cross the driver's boundary must have the layout that the graphics engine was built with.
static_assert(sizeof(WCHAR) == 2);
static_assert(sizeof(DEVMODEW) == 220);
static_assert(sizeof(GDIINFO) == 320);
static_assert(sizeof(DEVINFO) == 312);
static_assert(sizeof(SURFOBJ) == 80);
static_assert(sizeof(DRVENABLEDATA) == 16);
