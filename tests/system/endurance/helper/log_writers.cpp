#include "tests/system/endurance/helper/log_writers.h"

#include <chrono>
#include <thread>
#include <vector>

#include "driver/device_instance.h"
#include "driver/support/log.h"
#include "driver/support/module.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
namespace {

constexpr DWORD kMutexWaitMs = 100;  // of the log; other waits are the thread library's own
constexpr uint32_t kLinesABurst = 12;
constexpr size_t kLongText = 2500;

TurnBook* openBook = nullptr;
thread_local const Turn* present = nullptr;  // the line that this thread writes

// Keeps the book of the waits for the log's mutex.
class TurnWatch {
  public:
    TurnWatch(const DriverLibrary& driver, TurnBook& book) {
        openBook = &book;
        patches_.Attach(driver.Module(), {{"WaitForSingleObject", &Wait}});
        patches_.Attach(nullptr, {{"WaitForSingleObject", &Wait}});
        original_ = patches_.Original("WaitForSingleObject", &Wait);
    }

  private:
    static DWORD WINAPI Wait(HANDLE handle, DWORD milliseconds) {
        const DWORD result = original_(handle, milliseconds);
        if (milliseconds != kMutexWaitMs || present == nullptr) return result;
        if (result != WAIT_OBJECT_0) {
            ++openBook->refused;
        } else if (const uint32_t turn = openBook->taken++; turn < TurnBook::kMaxTurns) {
            openBook->turns[turn] = *present;
        }
        return result;
    }
    static inline DWORD(WINAPI* original_)(HANDLE, DWORD) = nullptr;
    PatchSet patches_;
};

bool IsLong(Turn turn) {
    return turn.number % 2 == 1;
}

// The driver's own line about a field that a reset changes.
void WriteThroughTheDriver(const DriverHooks& hooks, Turn turn) {
    PDEV old = {};
    old.signature = old.signatureTail = kPdevSignature;
    old.cCopies = kNoCarriedCopies;
    PDEV fresh = old;
    old.yCoord = turn.writer;
    fresh.yCoord = turn.number;
    hooks.resetPdev(reinterpret_cast<DHPDEV>(&old), reinterpret_cast<DHPDEV>(&fresh));
}

void WriteLine(const DriverHooks& hooks, TurnBook& book, Turn turn) {
    present = &turn;
    ++book.attempted;
    if (IsLong(turn)) {
        LogInfo("%s", WriterText(turn));
    } else {
        WriteThroughTheDriver(hooks, turn);
    }
    present = nullptr;
}

void Write(const DriverHooks& hooks, TurnBook& book, uint32_t writer) {
    for (uint32_t number = 0; book.stop == 0; number += kLinesABurst) {
        std::thread([&] {
            for (uint32_t i = 1; i <= kLinesABurst; ++i) WriteLine(hooks, book, {writer, number + i});
        }).join();
    }
}

void RereadSwitch(const DriverHooks& hooks, const TurnBook& book) {
    SURFOBJ noDevice = {};
    WCHAR noTitle[] = {0};
    while (book.stop == 0) {
        hooks.startDoc(&noDevice, noTitle, 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace

std::string WriterText(Turn turn) {
    const std::string writer = std::to_string(turn.writer), number = std::to_string(turn.number);
    if (!IsLong(turn)) return "yCoord " + writer + "<-" + number;
    return "writer " + writer + " line " + number + " " +
           std::string(kLongText, static_cast<char>('a' + turn.writer % 26));
}

void WriteUntilStopped(const DriverLibrary& driver, TurnBook& book, uint32_t firstWriter, uint32_t writers) {
    const TurnWatch watch(driver, book);
    // This program's own lines go to the driver's log too.
    g_hModule = driver.Module();
    LoadLogMask();
    SURFOBJ noDevice = {};
    WCHAR noTitle[] = {0};
    driver.Hooks().startDoc(&noDevice, noTitle, 0);

    std::vector<std::thread> threads;
    for (uint32_t i = 0; i < writers; ++i) {
        threads.emplace_back([&, i] { Write(driver.Hooks(), book, firstWriter + i); });
    }
    threads.emplace_back([&] { RereadSwitch(driver.Hooks(), book); });
    for (std::thread& each : threads) each.join();
}

}  // namespace orvex
