// The heap memory that the driver holds: what it allocated and has not freed.
#pragma once

#include <cstddef>

#include "host/driver_session.h"
#include "host/patch_set.h"

// In the Windows build the calls of the driver's library alone are counted. Natively the
// allocator is asked for all of the process, and what the session notes down is left out.
class DriverMemory {
  public:
    explicit DriverMemory(DriverSession& session);
    ~DriverMemory();
    DriverMemory(const DriverMemory&) = delete;
    DriverMemory& operator=(const DriverMemory&) = delete;

    // Bytes since this record was made.
    size_t LiveBytes() const;

  private:
    DriverSession& session_;
    PatchSet patches_;
#ifndef _WIN32
    void* engine_;
#endif
};
