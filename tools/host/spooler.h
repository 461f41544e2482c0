// A print spooler in memory: printers with their drivers and data, handles that are counted, and the bytes
// that are written to each printer. A host and the tests put it in the place of the machine's spooler, and
// can make any of its calls fail.
//
// It answers WritePrinter, OpenPrinterW, GetPrinterW (level 2), GetPrinterDriverW (level 3), EnumPrinterKeyW,
// GetPrinterDataExA, SetPrinterDataExA and, for its own handles, CloseHandle.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows.h"
#include "tools/host/patch_set.h"
#include "tools/host/printer_data.h"

namespace orvex::tools {

class Spooler {
  public:
    // Takes the bytes of one WritePrinter; false makes that call fail.
    using Sink = std::function<bool(std::string_view bytes)>;

    struct Printer {
        std::string name;        // UTF-8
        std::string driverName;  // UTF-8
        PrinterData data;
        Sink sink;            // when there is none, the bytes gather in `written`
        std::string written;  // all bytes so far
    };

    static constexpr int kEveryCall = 0;

    // One spooler lives at a time; a second one throws std::logic_error.
    Spooler();
    ~Spooler();
    Spooler(const Spooler&) = delete;
    Spooler& operator=(const Spooler&) = delete;

    // Points the spooler calls of `module` here, null for this program's, until the spooler goes away.
    // Several modules can be attached.
    void Attach(HMODULE module = nullptr);

    // Adds a printer. It stays where it is in memory.
    Printer& AddPrinter(std::string name, std::string driverName);

    // Opens and closes a printer without a Win32 call, as a graphics engine's print job does. Open returns
    // null when there is no such printer; Close false for a handle that is not open.
    HANDLE Open(std::string_view name, DWORD access = PRINTER_ALL_ACCESS);
    bool Close(HANDLE handle);

    size_t OpenHandles() const { return open_.size(); }

    // What callers did wrong with handles, one sentence each: closed them twice, or handed in foreign ones.
    const std::vector<std::string>& Misuses() const { return misuses_; }

    // Makes the `nth` call of a function from now on fail with `code`, 1 being the next one; kEveryCall makes
    // all that follow fail. A failing function does nothing else.
    void FailCall(const std::string& function, int nth, DWORD code);

    // Calls of a function so far. CloseHandle counts for the spooler's own handles only.
    int Calls(const std::string& function) const;

  private:
    friend struct SpoolerReplacements;

    struct OpenPrinter {
        Printer* printer;
        DWORD access;
    };
    struct Function {
        int calls = 0;
        bool failsAlways = false;
        DWORD alwaysCode = 0;
        std::map<int, DWORD> failures;  // by number of the call
    };

    // Counts a call. True when it is to fail, with `code`.
    bool Fails(const char* name, DWORD* code);
    // The open printer of a handle; null, and noted, when it is not open.
    const OpenPrinter* Find(HANDLE handle, const char* function);
    // Whether this spooler has ever given out the handle.
    bool IsOurs(HANDLE handle) const;

    std::deque<Printer> printers_;
    std::map<HANDLE, OpenPrinter> open_;
    size_t handlesGiven_ = 0;
    std::vector<std::string> misuses_;
    std::map<std::string, Function> functions_;
    PatchSet patches_;
};

}  // namespace orvex::tools
