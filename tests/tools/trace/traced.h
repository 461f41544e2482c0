// Logs written line by line, and the texts that are made of them.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tools/trace/read_trace.h"

namespace orvex::tools::trace {

// A log in the making. Its clock shows 12:00:00.000 until it is moved.
class Log {
  public:
    Log& Line(const std::string& level, const std::string& message) {
        text_ += "[2026-11-22 " + ClockText(kNoon + clock_) + "] [TID: " + std::to_string(thread_) + "] " +
                 level + message + "\n";
        return *this;
    }
    Log& Trace(const std::string& message) { return Line("[Trace] ", message); }
    Log& Info(const std::string& message) { return Line("[Info]  ", message); }
    Log& Error(const std::string& message) { return Line("[Error] ", message); }
    Log& Raw(const std::string& text) {
        text_ += text + "\n";
        return *this;
    }
    Log& Wait(int64_t milliseconds) {
        clock_ += milliseconds;
        return *this;
    }
    Log& On(uint32_t thread) {
        thread_ = thread;
        return *this;
    }
    Log& Hook(const std::string& name) { return Trace("<" + name + ">").Trace("</" + name + ">"); }
    // A device mode's dump with these fields.
    Log& Dump(const std::vector<std::string>& fields, const std::vector<std::string>& privateFields = {}) {
        Trace("pdm:1000 priv:10dc").Trace("<Public-DevMode>");
        for (const std::string& field : fields) Trace(field);
        Trace("</Public-DevMode>").Trace("<Private-DevMode>");
        for (const std::string& field : privateFields) Trace(field);
        return Trace("</Private-DevMode>");
    }

    const std::string& Text() const { return text_; }

  private:
    static constexpr int64_t kNoon = 12LL * 60 * 60 * 1000;
    std::string text_;
    int64_t clock_ = 0;
    uint32_t thread_ = 7;
};

inline std::string TextOf(const Log& log, const TraceFilter& filter = {}) {
    std::istringstream stream(log.Text());
    std::string text;
    const auto writer = MakeTextWriter([&](std::string_view part) { text += part; });
    ReadTrace(stream, filter, *writer);
    return text;
}

}  // namespace orvex::tools::trace
