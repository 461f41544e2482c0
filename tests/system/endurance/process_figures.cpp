#include "tests/system/endurance/process_figures.h"

#ifdef _WIN32
#include "platform/windows.h"

// Needs the Windows headers before it.
#include <psapi.h>

#include <cstdint>
#include <stdexcept>
#include <vector>
#else
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "platform/posix/handles.h"
#endif

namespace orvex {

#ifdef _WIN32

namespace {

constexpr int kExtendedHandles = 64;  // of NtQuerySystemInformation: every handle of the system
constexpr LONG kTooShort = static_cast<LONG>(0xC0000004);

struct SystemHandle {
    void* object;
    uintptr_t process;
    uintptr_t value;
    uint32_t access;
    uint16_t trace;
    uint16_t type;
    uint32_t attributes;
    uint32_t reserved;
};
struct SystemHandles {
    uintptr_t count;
    uintptr_t reserved;
    SystemHandle handles[1];
};

// GetProcessHandleCount counts none under Wine.
size_t CountHandles() {
    using Query = LONG(NTAPI*)(int, void*, ULONG, ULONG*);
    static const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    static std::vector<uint8_t> buffer(1 << 20);
    ULONG length = 0;
    LONG status = query(kExtendedHandles, buffer.data(), static_cast<ULONG>(buffer.size()), &length);
    while (status == kTooShort) {
        buffer.resize(2 * buffer.size());
        status = query(kExtendedHandles, buffer.data(), static_cast<ULONG>(buffer.size()), &length);
    }
    if (status != 0) throw std::runtime_error("the system's handles can't be counted");
    const auto& all = *reinterpret_cast<const SystemHandles*>(buffer.data());
    size_t count = 0;
    for (uintptr_t i = 0; i < all.count; ++i) count += all.handles[i].process == GetCurrentProcessId();
    return count;
}

}  // namespace

ProcessFigures MeasureProcess() {
    PROCESS_MEMORY_COUNTERS memory = {};
    memory.cb = sizeof memory;
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return {memory.WorkingSetSize, memory.PeakWorkingSetSize, memory.PagefileUsage, CountHandles()};
}

void ForgetPeak() {}

#else

namespace {

// A line of this process' status, which is in KiB, in bytes.
size_t StatusBytes(const std::string& key) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        size_t value = 0;
        if (word == key && status >> value) return value * 1024;
    }
    throw std::runtime_error("/proc/self/status has no " + key);
}

size_t CountDescriptors() {
    size_t count = 0;
    for ([[maybe_unused]] const auto& each : std::filesystem::directory_iterator("/proc/self/fd")) ++count;
    return count;
}

}  // namespace

ProcessFigures MeasureProcess() {
    return {StatusBytes("VmRSS:"), StatusBytes("VmHWM:"), StatusBytes("RssAnon:"),
            CountDescriptors() + posix::OpenHandleCount()};
}

void ForgetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

#endif

}  // namespace orvex
