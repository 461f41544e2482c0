// The printer's list of named label sizes, kept in its printer data in the spooler.
#pragma once

#include <cstdint>

#include "support/heap.h"
#include "support/platform.h"

constexpr uint32_t kMaxLabels = 128;  // room that every reader of the list offers

struct LabelSize {
    char name[64];    // zero-terminated
    char width[8];    // decimal text in `units`
    char length[8];   // decimal text in `units`
    uint32_t units;   // 0 mm, 1 inches, other tenths of a millimetre
    uint16_t number;  // paper number, 257 or more
};

// Reads the list into `entries`; labels that can't be read are left out, and reading stops at `capacity`. Returns 0 or
// a system error code; a printer without labels is 0 with a count of 0.
DWORD ReadPrinterLabelList(HANDLE printer, LabelSize* entries, uint32_t capacity, uint32_t* count);
