// Owning a mutex in a process of its own, under the eyes of the process that started it. Windows only.
#pragma once

#include <string>

namespace orvex {

// The events by which the two processes speak. The one that starts the other makes them.
inline std::string HeldEvent(const std::string& mutex) {
    return mutex + "-held";
}
inline std::string ReleaseEvent(const std::string& mutex) {
    return mutex + "-release";
}

// Takes the mutex, tells so, and lets it go when it is asked to. False when there is no such mutex or event.
bool OwnMutexUntilReleased(const std::string& mutex);

}  // namespace orvex
