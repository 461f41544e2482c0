// The thread's last error, kept over what must not show in it.
#pragma once

#include "platform/windows.h"

namespace orvex {

// Puts the last error back at the end of its scope.
class LastErrorKept {
  public:
    LastErrorKept() : code_(GetLastError()) {}
    ~LastErrorKept() { SetLastError(code_); }
    LastErrorKept(const LastErrorKept&) = delete;
    LastErrorKept& operator=(const LastErrorKept&) = delete;

  private:
    DWORD code_;
};

}  // namespace orvex
