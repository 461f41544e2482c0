// Kernel objects behind handles, and the errors of the system calls that work on them.
#pragma once

#include <cstddef>

#include "platform/windows.h"

namespace orvex::posix {

// Object that a handle refers to; closing the handle deletes it.
class KernelObject {
  public:
    virtual ~KernelObject() = default;
};

// Opens a handle to an object that it owns from then on.
HANDLE OpenHandle(KernelObject* object);

// Returns the object of a handle; null for a closed or foreign one.
KernelObject* FindObject(HANDLE handle);

// Takes the object away from its handle, which is closed by that; the caller owns it. Returns null for a
// closed or foreign handle.
KernelObject* ForgetHandle(HANDLE handle);

// Counts the open handles, so that a test can see a leak.
size_t OpenHandleCount();

// Sets the last error to the code that stands for errno. Returns FALSE.
BOOL FailWithErrno();

}  // namespace orvex::posix
