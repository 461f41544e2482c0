// The one place that brings in the Windows headers. Everything below includes this instead of <windows.h>.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif

// <windows.h> goes first: the others rely on it.
// clang-format off
#include <windows.h>
#include <winspool.h>
#include <winddi.h>
#include <shlobj.h>
#include <shlwapi.h>
// clang-format on

// The records that cross the driver's boundary must have the layout that the graphics engine was built with.
static_assert(sizeof(WCHAR) == 2);
static_assert(sizeof(DEVMODEW) == 220);
static_assert(sizeof(GDIINFO) == 320);
static_assert(sizeof(DEVINFO) == 312);
static_assert(sizeof(SURFOBJ) == 80);
static_assert(sizeof(DRVENABLEDATA) == 16);
