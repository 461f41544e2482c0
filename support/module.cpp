#include "support/module.h"

HMODULE g_hModule = nullptr;
