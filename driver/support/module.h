// The handle of the driver's own module.
#pragma once

#include "platform/windows.h"

namespace orvex {

// Set by DllMain when the process attaches; null before that.
extern HMODULE g_hModule;

}  // namespace orvex
