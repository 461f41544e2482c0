// The diagnostic log as the model of the driver keeps it: errors and information, without the trace.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace orvex::plain {

struct Log {
    uint32_t mask = 0;
    std::vector<std::string> lines;  // a line of the driver may contain line ends

    // Both levels are written when bit 0 of the mask is set. The formats are printf's, without wide texts.
    void Error(const std::string& text) { Add("[Error] " + text); }
    void Info(const std::string& text) { Add("[Info]  " + text); }
    template <typename First, typename... Others>
    void Error(const char* format, First first, Others... others) {
        Error(Text(format, first, others...));
    }
    template <typename First, typename... Others>
    void Info(const char* format, First first, Others... others) {
        Info(Text(format, first, others...));
    }

  private:
    template <typename... Arguments>
    static std::string Text(const char* format, Arguments... arguments) {
        std::string text(4096, '\0');
        text.resize(static_cast<size_t>(snprintf(text.data(), text.size(), format, arguments...)));
        return text;
    }
    void Add(const std::string& line) {
        if (mask & 1) lines.push_back(line);
    }
};

}  // namespace orvex::plain
