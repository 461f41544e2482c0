// The handle of the driver's own module.
#pragma once

#include "platform/windows.h"

namespace orvex {

// Set by DllMain when the process attaches; null before that.
inline HMODULE g_hModule = nullptr;

}  // namespace orvex
