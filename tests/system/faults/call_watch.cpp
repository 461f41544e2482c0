#include "tests/system/faults/call_watch.h"

#include <utility>

namespace orvex {

using namespace tools;

namespace {

CallWatch* currentWatch = nullptr;

DWORD WINAPI StoppedClock() {
    return 1000;
}

}  // namespace

DWORD LastErrorOf(const WatchedCall& call) {
    for (const WatchedFunction& function : WatchedFunctions()) {
        if (call.function == function.name) return function.lastError;
    }
    return call.function == "LocalAlloc" ? DWORD{ERROR_NOT_ENOUGH_MEMORY} : DWORD{0};
}

CallWatch* CurrentWatch() {
    return currentWatch;
}

CallWatch::CallWatch(HMODULE module, HeapWatch& heap) : heap_(heap) {
    currentWatch = this;
    patches_.push_back(
        std::make_unique<ImportPatch>(module, "GetTickCount", reinterpret_cast<void*>(&StoppedClock)));
    for (WatchedFunction& function : WatchedFunctions()) {
        if (function.isEntryPoint) continue;  // comes with GetProcAddress
        patches_.push_back(std::make_unique<ImportPatch>(module, function.name, function.replacement));
        function.original = patches_.back()->Original();
    }
    heap_.OnAllocate([this](const char* function, size_t bytes) { return Take(function, "", bytes); });
}

CallWatch::~CallWatch() {
    heap_.OnAllocate({});
    while (!patches_.empty()) patches_.pop_back();
    currentWatch = nullptr;
}

void CallWatch::Begin(size_t failing) {
    calls_.clear();
    failing_ = failing;
}

std::vector<WatchedCall> CallWatch::TakeCalls() {
    failing_ = kNone;
    return std::exchange(calls_, {});
}

void CallWatch::Enter(std::string_view place) {
    places_.push_back(places_.empty() ? std::string(place) : places_.back() + "/" + std::string(place));
}

void CallWatch::Leave() {
    places_.pop_back();
}

std::vector<std::string> CallWatch::OpenHandles() const {
    std::vector<std::string> names;
    for (const auto& [handle, name] : open_) names.push_back(name);
    return names;
}

void CallWatch::CloseHandles() {
    while (!open_.empty()) {
        const HANDLE handle = open_.begin()->first;
        open_.erase(open_.begin());
        CloseHandle(handle);
    }
}

bool CallWatch::Take(std::string_view function, const std::string& subject, size_t bytes) {
    if (places_.empty() || aside_ > 0) return false;
    calls_.push_back({std::string(function), subject, places_.back(), bytes});
    return calls_.size() - 1 == failing_;
}

void CallWatch::NoteHandle(CallEffect effect, HANDLE handle, const std::string& subject) {
    if (effect == CallEffect::kCloses) {
        open_.erase(handle);
    } else if (handle != nullptr && handle != INVALID_HANDLE_VALUE) {
        open_[handle] = subject;
    }
}

std::string CallWatch::NameOf(HANDLE handle) const {
    const auto found = open_.find(handle);
    return found == open_.end() ? "" : found->second;
}

}  // namespace orvex
