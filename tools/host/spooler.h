// A print spooler in memory: printers with their drivers and data, counted handles, and the bytes that are
// written to each printer. The host and the tests put it in place of the machine's spooler, and can make any
// of its calls fail.
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
#include "tools/host/import_patch.h"
#include "tools/host/printer_data.h"

namespace orvex::tools {

class Spooler : public ImportService<Spooler> {
  public:
    // Receiver of the bytes of one WritePrinter call; returns false to make the call fail.
    using Sink = std::function<bool(std::string_view bytes)>;

    struct Printer {
        std::string name;        // UTF-8
        std::string driverName;  // UTF-8
        PrinterData data;
        Sink sink;  // if empty, the bytes are collected in `written`
        std::string written;
    };

    // Serves the spooler calls of `module`, null for this program, as long as the spooler lives. Several
    // modules can be attached.
    void Attach(HMODULE module = nullptr);

    // Adds a printer, whose address stays valid.
    Printer& AddPrinter(std::string name, std::string driverName);

    // Open and close a printer without a Win32 call, as the graphics engine does. Open() returns null if
    // there is no such printer, Close() false if the handle is not open.
    HANDLE Open(std::string_view name, DWORD access = PRINTER_ALL_ACCESS);
    bool Close(HANDLE handle);

    size_t OpenHandles() const { return open_.size(); }

    // Returns the wrong uses of handles, one sentence each: of handles closed before, or never given out.
    const std::vector<std::string>& Misuses() const { return misuses_; }

    // Makes the `nth` further call of a function fail with `code`; 1 is the next one. A failing call has no
    // other effect.
    void FailCall(const std::string& function, int nth, DWORD code);

    // Returns the number of calls of a function so far; of CloseHandle only those with the spooler's handles.
    int Calls(const std::string& function) const;

  private:
    struct Replacements;

    struct OpenPrinter {
        Printer* printer;
        DWORD access;
    };
    struct Function {
        int calls = 0;
        std::map<int, DWORD> failures;  // error code by number of the call
    };

    // Counts a call. Returns whether it must fail, with `code`.
    bool Fails(const char* name, DWORD* code);
    // Counts a call with a printer's handle. Returns the open printer, or null if the call must fail. Sets
    // `code` only if FailCall() asked for the failure.
    const OpenPrinter* Enter(const char* function, HANDLE handle, DWORD* code);
    // Returns the open printer of a handle. If it is not open, returns null and records a misuse.
    const OpenPrinter* Find(HANDLE handle, const char* function);
    // Returns whether this spooler has ever given out the handle.
    bool IsOurs(HANDLE handle) const;

    std::deque<Printer> printers_;
    std::map<HANDLE, OpenPrinter> open_;
    size_t handlesGiven_ = 0;
    std::vector<std::string> misuses_;
    std::map<std::string, Function> functions_;
};

}  // namespace orvex::tools
