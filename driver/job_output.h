// The print engine's output on its way to the spooler, and the job header of PJL lines that is put in.
#pragma once

#include <cstdint>

#include "driver/device_instance.h"
#include "engine/hpcrlib.h"

namespace orvex {

// Takes a chunk of the print engine's output: drops leading framing, writes the job header before "@PJL
// COMMENT", patches a pending resolution switch, and writes the rest to the printer of the current instance.
// `context` is the address of g_pCurrentPdev. Returns 1, or 0 if an argument is missing or a write failed.
int32_t HPCRLIB_CALL JobOutputCallback(const uint8_t* data, uint32_t length, void* context);

// Writes the header's lines and the waiting thumbnail, which is then freed. Returns false at once if a
// numeric line is lost, and otherwise whether the last write succeeded.
bool WriteJobHeader(const PDEV& pdev);

}  // namespace orvex
