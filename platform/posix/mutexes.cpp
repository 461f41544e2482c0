#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/posix/handles.h"
#include "platform/posix/slots.h"

namespace orvex::posix {

namespace {

// A named mutex of this process. As on Windows, it lives until its last handle is closed, is still owned by a
// thread that closes its handle without a release while others have theirs, and is abandoned by a thread that
// ends as its owner.
class NamedMutex : public std::enable_shared_from_this<NamedMutex> {
  public:
    DWORD Acquire(std::chrono::milliseconds wait);
    bool Release();
    void Abandon();

  private:
    std::mutex guard_;
    std::condition_variable freed_;
    std::thread::id owner_;
    int depth_ = 0;  // acquisitions of the owner that are not released
    bool abandoned_ = false;
};

// The mutexes that a thread owns, which its end abandons.
class OwnedMutexes {
  public:
    OwnedMutexes() = default;
    OwnedMutexes(const OwnedMutexes&) = delete;
    OwnedMutexes& operator=(const OwnedMutexes&) = delete;
    ~OwnedMutexes() {
        for (const auto& each : mutexes_) {
            if (const auto mutex = each.lock()) mutex->Abandon();
        }
    }
    void Add(const std::shared_ptr<NamedMutex>& mutex) {
        Remove(nullptr);
        mutexes_.push_back(mutex);
    }
    // Removes the mutex, and those whose last handle was closed.
    void Remove(const NamedMutex* mutex) {
        std::erase_if(mutexes_, [mutex](const auto& each) {
            const auto live = each.lock();
            return live == nullptr || live.get() == mutex;
        });
    }

  private:
    std::vector<std::weak_ptr<NamedMutex>> mutexes_;
};

thread_local OwnedMutexes ownedMutexes;

DWORD NamedMutex::Acquire(std::chrono::milliseconds wait) {
    std::unique_lock lock(guard_);
    const std::thread::id self = std::this_thread::get_id();
    if (!freed_.wait_for(lock, wait, [&] { return depth_ == 0 || owner_ == self; })) return WAIT_TIMEOUT;
    if (depth_++ == 0) ownedMutexes.Add(shared_from_this());
    owner_ = self;
    return std::exchange(abandoned_, false) ? WAIT_ABANDONED : WAIT_OBJECT_0;
}

bool NamedMutex::Release() {
    const std::lock_guard lock(guard_);
    if (depth_ == 0 || owner_ != std::this_thread::get_id()) return false;
    if (--depth_ > 0) return true;
    ownedMutexes.Remove(this);
    freed_.notify_one();
    return true;
}

void NamedMutex::Abandon() {
    const std::lock_guard lock(guard_);
    depth_ = 0;
    abandoned_ = true;
    freed_.notify_one();
}

class MutexHandle final : public KernelObject {
  public:
    explicit MutexHandle(std::shared_ptr<NamedMutex> mutex) : named(std::move(mutex)) {}
    std::shared_ptr<NamedMutex> named;
};

std::shared_ptr<NamedMutex> OpenNamedMutex(const char* name) {
    static std::mutex guard;
    static std::map<std::string, std::weak_ptr<NamedMutex>> mutexes;
    const std::lock_guard lock(guard);
    std::shared_ptr<NamedMutex> found = mutexes[name].lock();
    SetLastError(found ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    if (!found) mutexes[name] = found = std::make_shared<NamedMutex>();
    return found;
}

// Returns the mutex of a handle, which the caller keeps alive while it waits; null, with the last error set,
// for a handle of anything else.
std::shared_ptr<NamedMutex> MutexOf(HANDLE handle) {
    const auto* mutex = dynamic_cast<MutexHandle*>(FindObject(handle));
    if (mutex != nullptr) return mutex->named;
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

}  // namespace

WIN32_FUNCTION(HANDLE, CreateMutexA, (LPSECURITY_ATTRIBUTES attributes, BOOL owned, LPCSTR name),
               (attributes, owned, name)) {
    (void)attributes, (void)owned;
    return OpenHandle(new MutexHandle(OpenNamedMutex(name)));
}

WIN32_FUNCTION(DWORD, WaitForSingleObject, (HANDLE handle, DWORD milliseconds), (handle, milliseconds)) {
    const std::shared_ptr<NamedMutex> mutex = MutexOf(handle);
    return mutex == nullptr ? WAIT_FAILED : mutex->Acquire(std::chrono::milliseconds(milliseconds));
}

WIN32_FUNCTION(BOOL, ReleaseMutex, (HANDLE handle), (handle)) {
    const std::shared_ptr<NamedMutex> mutex = MutexOf(handle);
    if (mutex == nullptr) return FALSE;
    if (mutex->Release()) return TRUE;
    SetLastError(ERROR_NOT_OWNER);
    return FALSE;
}

}  // namespace orvex::posix
