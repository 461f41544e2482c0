// The functions of Win32 that the driver and its programs call, over POSIX: the native build runs the
// driver's own sources under sanitizers, fuzzers and debuggers.
//
// Every function is called through a slot that a host or a test can point elsewhere, as it can point an entry
// of the import table elsewhere on Windows.
#pragma once

#include <string>
#include <vector>

#include "platform/windows.h"

namespace orvex::posix {

// The place of a function's address. Slots live as long as the program and are found by name.
struct Slot {
    Slot(const char* slotName, void* slotTarget);

    const char* name;
    void* target;
    Slot* next;
};

// Returns where the address of the function of that name is; null for an unknown name.
void** FindSlot(const char* name);

// Returns the names of all functions that have a slot.
std::vector<std::string> SlotNames();

}  // namespace orvex::posix

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are types and lists
// Defines one function of Win32: declares it with its slot, and begins the body that the slot has at first.
// `arguments` are the names of the parameters, in parentheses like them.
#define WIN32_FUNCTION(result, function, parameters, arguments)                                         \
    static result WINAPI function##OverPosix parameters;                                                \
    static orvex::posix::Slot function##Slot(#function, reinterpret_cast<void*>(&function##OverPosix)); \
    extern "C" result WINAPI function parameters {                                                      \
        return reinterpret_cast<result(WINAPI*) parameters>(function##Slot.target) arguments;           \
    }                                                                                                   \
    static result WINAPI function##OverPosix parameters
// NOLINTEND(bugprone-macro-parentheses)
