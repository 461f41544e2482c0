// Print files for tests: jobs printed with the stand-in engine, with lines of the driver.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/engine/engine_output.h"
#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

inline std::vector<uint8_t> AsBytes(std::string_view text) {
    return {text.begin(), text.end()};
}

// Inserts lines where the driver inserts its own.
inline std::string WithLines(std::string file, std::string_view lines) {
    return file.insert(file.find("@PJL COMMENT"), lines);
}

// A job setting, "@PJL SET NAME=number".
struct Setting {
    const char* name;
    int value;
};
inline std::string SettingLines(const std::vector<Setting>& settings) {
    std::string lines;
    for (const Setting& setting : settings) {
        lines += "@PJL SET " + std::string(setting.name) + "=" + std::to_string(setting.value) + "\n";
    }
    return lines;
}

inline std::string MakeFile(const std::vector<Rows>& pages, std::string_view lines = "",
                            uint32_t mode = kMode600Dpi) {
    return WithLines(PrintJob(pages, mode).File(), lines);
}

}  // namespace orvex::tools::view
