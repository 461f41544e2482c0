#include "tests/system/endurance/mutex_holder.h"

#include <stdexcept>

#include "driver/support/handle.h"

#ifdef _WIN32
#include "tests/system/endurance/helper/mutex_owner.h"
#include "tests/system/endurance/other_process.h"
#else
#include <future>
#include <thread>
#endif

namespace orvex {

namespace {
constexpr DWORD kLongestWaitMs = 30000;
}

#ifdef _WIN32

struct MutexHolder::Owner {
    explicit Owner(const std::string& mutex)
        : held(CreateEventA(nullptr, FALSE, FALSE, HeldEvent(mutex).c_str())),
          release(CreateEventA(nullptr, FALSE, FALSE, ReleaseEvent(mutex).c_str())),
          process({"hold-mutex", mutex}) {
        const bool begun = WaitForSingleObject(held.Get(), kLongestWaitMs) == WAIT_OBJECT_0;
        if (begun) return;
        process.Kill();
        throw std::runtime_error("the mutex " + mutex + " can't be held");
    }
    ~Owner() { SetEvent(release.Get()); }
    void Kill() { process.Kill(); }

    OwnedHandle held;
    OwnedHandle release;
    OtherProcess process;
};

#else

struct MutexHolder::Owner {
    explicit Owner(const std::string& mutex)
        : thread([this, mutex] {
              const OwnedHandle handle(CreateMutexA(nullptr, FALSE, mutex.c_str()));
              held.set_value(WaitForSingleObject(handle.Get(), kLongestWaitMs) == WAIT_OBJECT_0);
              if (!abandoned.get_future().get()) ReleaseMutex(handle.Get());
          }) {
        if (held.get_future().get()) return;
        Kill();
        throw std::runtime_error("the mutex " + mutex + " can't be held");
    }
    ~Owner() { End(false); }
    void Kill() { End(true); }
    void End(bool withMutex) {
        if (!thread.joinable()) return;
        abandoned.set_value(withMutex);
        thread.join();
    }

    std::promise<bool> held;
    std::promise<bool> abandoned;
    std::thread thread;
};

#endif

MutexHolder::MutexHolder(const std::string& mutex) : owner_(std::make_unique<Owner>(mutex)) {}
MutexHolder::~MutexHolder() = default;

void MutexHolder::Kill() {
    owner_->Kill();
}

}  // namespace orvex
