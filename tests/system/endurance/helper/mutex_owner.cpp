#include "tests/system/endurance/helper/mutex_owner.h"

#ifdef _WIN32
#include "driver/support/handle.h"
#endif

namespace orvex {

#ifdef _WIN32

bool OwnMutexUntilReleased(const std::string& name) {
    const OwnedHandle mutex(CreateMutexA(nullptr, FALSE, name.c_str()));
    const OwnedHandle held(OpenEventA(EVENT_MODIFY_STATE, FALSE, HeldEvent(name).c_str()));
    const OwnedHandle release(OpenEventA(SYNCHRONIZE, FALSE, ReleaseEvent(name).c_str()));
    if (!mutex || !held || !release) return false;
    if (WaitForSingleObject(mutex.Get(), INFINITE) != WAIT_OBJECT_0) return false;
    SetEvent(held.Get());
    WaitForSingleObject(release.Get(), INFINITE);
    return ReleaseMutex(mutex.Get()) != FALSE;
}

#endif

}  // namespace orvex
