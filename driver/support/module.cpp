#include "driver/support/module.h"

namespace orvex {

HMODULE g_hModule = nullptr;

}  // namespace orvex
