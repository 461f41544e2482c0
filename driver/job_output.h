// The print engine's output on its way to the spooler.
#pragma once

#include <cstdint>

#include "engine/hpcrlib.h"

namespace orvex {

// Takes a chunk of the print engine's output: drops leading framing, writes the job header before "@PJL
// COMMENT", patches a pending resolution switch, and writes everything else to the printer of the current
// instance. `context` is the address of g_pCurrentPdev. Returns 1, or 0 if an argument is missing or a write
// failed.
int32_t HPCRLIB_CALL JobOutputCallback(const uint8_t* data, uint32_t length, void* context);

}  // namespace orvex
