// Base64 with the standard alphabet and padding, without line breaks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "driver/support/heap.h"

namespace orvex {

// Encodes `size` bytes as zero-terminated text and stores its length, terminator not counted. Returns null,
// and stores no length, when out of memory or when the text's size can't be expressed.
HeapArray<char> EncodeBase64(const uint8_t* bytes, size_t size, size_t* length);

}  // namespace orvex
