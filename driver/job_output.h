// The way of the engine's output to the spooler.
#pragma once

#include <cstdint>
#include <string_view>

#include "engine/hpcrlib.h"
#include "platform/windows.h"

namespace orvex {

// Takes a chunk of the engine's output: drops leading framing, puts the job header in front of "@PJL
// COMMENT", patches a pending resolution switch, and writes everything else to the printer of the current
// instance. `context` is the address of g_pCurrentPdev. 1 on success; 0 when an argument is missing or a
// write failed.
int32_t HPCRLIB_CALL JobOutputCallback(const uint8_t* data, uint32_t length, void* context);

// Writes bytes to the printer; nothing is written for no bytes. The count that the spooler reports is not
// checked.
bool WriteToPrinter(HANDLE printer, std::string_view bytes);

}  // namespace orvex
