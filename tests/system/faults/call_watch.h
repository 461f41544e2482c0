// Records every call of the driver that can fail, to the system, the graphics engine, the spooler, the print
// engine's library and the heap; makes one of them fail on request, and knows what the driver has open.
//
// Only calls inside a place count: Enter() begins one, a hook, and the print engine's calls nest in it. The
// driver's clock is stopped, so that every run of a job makes the same calls. Only one watch may exist at a
// time in a process.
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

// The effect of a call on what the driver holds. A call that closes or gives back does its work even when it
// fails: otherwise the failure itself, not the driver, would leave something behind.
enum class CallEffect { kNone, kOpens, kCloses, kGivesBack };

// A function that the driver calls, and how it fails.
struct WatchedFunction {
    const char* name;
    uint64_t failure;  // the result of a failing call
    DWORD lastError;   // set by a failing call; 0 leaves it alone
    CallEffect effect;
    void* replacement;
    bool isEntryPoint;         // of the print engine's library; the others are imports
    void* original = nullptr;  // set while a watch exists
};
std::vector<WatchedFunction>& WatchedFunctions();

struct WatchedCall {
    std::string function;
    std::string subject;  // the file, value, entry point or header line that it is about; may be empty
    std::string place;    // "DrvSendPage 2/HPCRLIB_PageStart"
    size_t bytes = 0;     // allocated, or written to the printer

    // Returns "ReadFile settings.inf", "malloc 520".
    std::string Label() const {
        if (!subject.empty()) return function + " " + subject;
        return bytes > 0 ? function + " " + std::to_string(bytes) : function;
    }
};

// Returns the last error that a failure of the call leaves; 0 if it leaves none.
DWORD LastErrorOf(const WatchedCall& call);

// Returns the existing watch; null if there is none.
class CallWatch* CurrentWatch();

class CallWatch {
  public:
    CallWatch(HMODULE module, HeapWatch& heap);
    ~CallWatch();
    CallWatch(const CallWatch&) = delete;
    CallWatch& operator=(const CallWatch&) = delete;

    static constexpr size_t kNone = SIZE_MAX;
    // Forgets all calls. The n-th call from now on, where 0 is the next, fails.
    void Begin(size_t failing = kNone);
    // Returns the calls since then; no further call fails.
    std::vector<WatchedCall> TakeCalls();

    void Enter(std::string_view place);
    void Leave();

    // Returns the names of the files, searches and mutexes that the driver has open.
    std::vector<std::string> OpenHandles() const;
    void CloseHandles();

    // While it exists, calls do not count: those that a called function makes in turn.
    class Aside {
      public:
        Aside() { ++CurrentWatch()->aside_; }
        ~Aside() { --CurrentWatch()->aside_; }
    };

    // The following serve the replacements of the watched functions. Take() returns whether the call fails.
    bool Take(std::string_view function, const std::string& subject, size_t bytes = 0);
    void NoteHandle(CallEffect effect, HANDLE handle, const std::string& subject);
    std::string NameOf(HANDLE handle) const;

  private:
    std::vector<WatchedCall> calls_;
    size_t failing_ = kNone;
    std::vector<std::string> places_;
    int aside_ = 0;
    std::map<HANDLE, std::string> open_;
    std::vector<std::unique_ptr<tools::ImportPatch>> patches_;
    HeapWatch& heap_;
};

}  // namespace orvex
