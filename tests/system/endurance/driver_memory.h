// The heap memory that the driver holds: what it allocated and has not freed.
#pragma once

#include <cstddef>

#include "tools/host/driver_library.h"
#ifdef _WIN32
#include "tools/host/import_patch.h"
#else
#include "tools/host/debug_heap.h"
#endif

namespace orvex {

using namespace tools;
// While it lives, the calls of the driver's library alone are counted. On Windows the blocks are the ordinary
// heap's, since guard pages would show in the memory of the process.
class DriverMemory {
  public:
    explicit DriverMemory(const DriverLibrary& driver);
    ~DriverMemory();
    DriverMemory(const DriverMemory&) = delete;
    DriverMemory& operator=(const DriverMemory&) = delete;

    // Bytes since this record was made.
    size_t LiveBytes() const;

  private:
#ifdef _WIN32
    PatchSet calls_;
#else
    DebugHeap heap_;
#endif
};

}  // namespace orvex
