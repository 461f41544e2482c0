// Sees every call that the driver makes of what is around it and that can fail: the system, the graphics
// engine, the spooler, the print engine's library and the heap. It writes the calls down, makes one of them
// fail when it is told to, and knows what the driver holds open.
//
// Only calls inside a place count: Enter() begins one, a hook, and the calls of the print engine nest in it.
// The driver's clock stands still meanwhile, so that every run of a job makes the same calls.
//
// One watch exists at a time in a process.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows.h"
#include "tests/kit/heap_watch.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
// What a call does to the handles that the driver holds.
enum class HandleEffect { kNone, kOpens, kCloses };

// Whether a call that fails does its work all the same. What gives something back does: otherwise the failure
// itself, not the driver, would leave it behind.
enum class FailingCall { kDoesNothing, kDoesItsWork };

// A function that the driver calls, and how it fails.
struct WatchedFunction {
    const char* name;
    uint64_t failure;  // its result
    DWORD lastError;   // that it leaves; 0 leaves it alone
    HandleEffect effect;
    FailingCall failing;
    void* replacement;
    bool isEntryPoint;         // of the print engine's library, not an import
    void* original = nullptr;  // set while a watch lives
};
std::vector<WatchedFunction>& WatchedFunctions();

struct WatchedCall {
    std::string function;
    std::string subject;  // the file, value, entry point or line that it is about; empty when there is none
    std::string place;    // "DrvSendPage 2/HPCRLIB_PageStart"
    size_t bytes = 0;     // of an allocation, or for the printer

    // "ReadFile settings.inf", "malloc 520"
    std::string Label() const {
        if (!subject.empty()) return function + " " + subject;
        return bytes > 0 ? function + " " + std::to_string(bytes) : function;
    }
};

// The last error that a failure of that call leaves; 0 when it leaves none.
DWORD LastErrorOf(const WatchedCall& call);

class CallWatch {
  public:
    CallWatch(HMODULE module, HeapWatch& heap);
    ~CallWatch();
    CallWatch(const CallWatch&) = delete;
    CallWatch& operator=(const CallWatch&) = delete;

    static constexpr size_t kNone = SIZE_MAX;
    // Forgets all calls. The call of that number from now on, 0 being the next, fails.
    void Begin(size_t failing = kNone);
    // The calls since then; no call fails any more.
    std::vector<WatchedCall> TakeCalls();

    void Enter(std::string_view place);
    void Leave();

    // Files, searches and mutexes that the driver has open, by their names.
    std::vector<std::string> OpenHandles() const;
    // Closes them.
    void CloseHandles();

    // What a called function, not the driver, calls in turn does not count meanwhile.
    class Aside {
      public:
        Aside();
        ~Aside();
    };

    // For the functions that stand in the place of the watched ones.
    bool Take(std::string_view function, const std::string& subject, size_t bytes = 0);
    void NoteHandle(HandleEffect effect, HANDLE handle, const std::string& subject);
    std::string NameOf(HANDLE handle) const;

  private:
    std::vector<WatchedCall> calls_;
    size_t failing_ = kNone;
    std::vector<std::string> places_;
    int aside_ = 0;
    std::map<HANDLE, std::string> open_;
    std::vector<std::unique_ptr<ImportPatch>> patches_;
    HeapWatch& heap_;
};

// The living watch; null when there is none.
CallWatch* CurrentWatch();

}  // namespace orvex
