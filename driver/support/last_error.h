// Preserves the thread's last error across calls that must not change it.
#pragma once

#include "platform/windows.h"

namespace orvex {

// Restores the last error at the end of its scope.
class PreservedLastError {
  public:
    PreservedLastError() : code_(GetLastError()) {}
    ~PreservedLastError() { SetLastError(code_); }
    PreservedLastError(const PreservedLastError&) = delete;
    PreservedLastError& operator=(const PreservedLastError&) = delete;

  private:
    DWORD code_;
};

}  // namespace orvex
