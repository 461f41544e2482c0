// The one place that brings in the Windows headers, but for the shell's. Everything includes this instead of
// <windows.h>.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN  // without what nobody here calls, which takes longest to compile
#endif

// <windows.h> goes first: the others rely on it.
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
