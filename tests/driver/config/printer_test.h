// A printer for tests of its configuration: an installation folder, a spooler with one printer, and the log.
#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "driver/config/label_sizes.h"
#include "tests/kit/installation_fixture.h"
#include "tests/kit/log_capture.h"
#include "tools/host/spooler.h"

namespace orvex {

// Puts a label into a printer's data.
inline void AddLabel(tools::PrinterData& data, int number, const char* name, const char* width,
                     const char* length, uint32_t units, uint32_t version = 1) {
    const std::string key = "Label Sizes\\" + std::to_string(number);
    data.SetNumber(key, "version", version);
    data.SetText(key, "name", name);
    data.SetText(key, "width", width);
    data.SetText(key, "length", length);
    data.SetNumber(key, "units", units);
}

class PrinterTest : public testing::Test {
  protected:
    PrinterTest() { spooler_.Attach(); }

    // The driver must have closed every handle that it opened, and no other.
    void TearDown() override {
        EXPECT_EQ(spooler_.OpenHandles(), 1u);
        EXPECT_THAT(spooler_.Misuses(), testing::IsEmpty());
    }

    void AddLabel(int number, const char* name, const char* width, const char* length, uint32_t units,
                  uint32_t version = 1) {
        orvex::AddLabel(printer_.data, number, name, width, length, units, version);
    }

    // Returns the log's lines of the levels Error and Info since the last call.
    std::vector<std::string> ErrorLines() {
        std::vector<std::string> lines = log_.TakeLines();
        std::erase_if(lines, [](const std::string& line) { return line.starts_with("[Trace]"); });
        return lines;
    }

    // Returns the log's lines since the last call, without those of the operation `name`.
    std::vector<std::string> LinesOutside(const std::string& name) {
        std::vector<std::string> kept;
        bool inside = false;
        for (const std::string& line : log_.TakeLines()) {
            inside |= line == "[Trace] <" + name + ">";
            if (!inside) kept.push_back(line);
            inside &= line != "[Trace] </" + name + ">";
        }
        return kept;
    }

    // Returns the log's lines since the last call, with each dump of a record folded into "(dump)".
    std::vector<std::string> LinesWithDumpsFolded() {
        std::vector<std::string> kept;
        bool inside = false;
        for (const std::string& line : log_.TakeLines()) {
            const bool begins = line.starts_with("[Trace] pdm:") && line.find(" priv:") != std::string::npos;
            if (begins) kept.push_back("(dump)");
            inside |= begins;
            if (!inside) kept.push_back(line);
            inside &= line != "[Trace] </Private-DevMode>";
        }
        return kept;
    }

    // Returns a field of each record dumped since the last call, after the dump's caption: "pdmIn: 7".
    std::vector<std::string> DumpedField(const std::string& name) {
        return DumpedField(log_.TakeLines(), name);
    }
    static std::vector<std::string> DumpedField(const std::vector<std::string>& lines,
                                                const std::string& name) {
        std::vector<std::string> dumped;
        std::string caption;
        for (const std::string& line : lines) {
            if (line.ends_with(":")) caption = line.substr(line.find(' ') + 1);
            if (line.starts_with("[Trace] " + name + " "))
                dumped.push_back(caption + line.substr(line.rfind(' ')));
        }
        return dumped;
    }

    InstallationFixture installation_;
    tools::Spooler spooler_;
    tools::Spooler::Printer& printer_ = spooler_.AddPrinter("Etikett 1", "Orvex Series");
    HANDLE handle_ = spooler_.Open("Etikett 1");
    LogCapture log_;
};

}  // namespace orvex
