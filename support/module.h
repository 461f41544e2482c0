// The driver module's own handle.
#pragma once

#include "support/platform.h"

// Set by DllMain when the process attaches; null before that.
extern HMODULE g_hModule;
