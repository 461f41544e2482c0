// Somebody else who holds a mutex: another process on Windows, another thread natively, where a named mutex
// is one process' own.
#pragma once

#include <memory>
#include <string>

namespace orvex {

class MutexHolder {
  public:
    // Returns once the mutex is held.
    explicit MutexHolder(const std::string& mutex);
    // Lets the mutex go.
    ~MutexHolder();
    MutexHolder(const MutexHolder&) = delete;
    MutexHolder& operator=(const MutexHolder&) = delete;

    // Ends the holder as it stands, with the mutex in its hands.
    void Kill();

  private:
    struct Owner;
    std::unique_ptr<Owner> owner_;
};

}  // namespace orvex
