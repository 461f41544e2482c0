// The memory that LodePNG works in. LodePNG does not come through every allocation that fails, so inside
// WithPngMemory() none returns when it fails: the work is given up on the spot and all that it took is freed.
// Outside, LodePNG has the C library's heap.
#pragma once

// Calls `work`, which does nothing but call LodePNG: it is left without any clean-up of its own. What it
// keeps is freed with free(). False when memory was short. One such work runs at a time in a process.
bool WithPngMemory(void (*work)(void* context), void* context);
