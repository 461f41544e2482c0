// A printer with fuzzed data, in a spooler of its own.
#pragma once

#include "fuzz/target.h"
#include "tools/host/spooler.h"

namespace orvex::fuzz {

class FuzzPrinter {
  public:
    FuzzPrinter() { spooler_.Attach(); }

    // Requires that the driver closed the handles that it opened, and no others.
    ~FuzzPrinter() {
        REQUIRE(spooler_.OpenHandles() == 1);
        REQUIRE(spooler_.Misuses().empty());
    }
    FuzzPrinter(const FuzzPrinter&) = delete;
    FuzzPrinter& operator=(const FuzzPrinter&) = delete;

    HANDLE Handle() const { return handle_; }
    tools::PrinterData& Data() { return printer_.data; }
    std::string& Written() { return printer_.written; }

    // Adds a label to the printer's data.
    void AddLabel(int number, const char* name, const char* width, const char* length, uint32_t units) {
        const std::string key = "Label Sizes\\" + std::to_string(number);
        Data().SetNumber(key, "version", 1);
        Data().SetText(key, "name", name);
        Data().SetText(key, "width", width);
        Data().SetText(key, "length", length);
        Data().SetNumber(key, "units", units);
    }

  private:
    tools::Spooler spooler_;
    tools::Spooler::Printer& printer_ = spooler_.AddPrinter("Etikett 1", "Orvex Series");
    HANDLE handle_ = spooler_.Open("Etikett 1");
};

}  // namespace orvex::fuzz
