// Everything around the driver that a job meets: the installation, the printer's data, the print engine's
// answers and output, and the calls that fail. The model of the driver reads it, and the driver's real
// surroundings are made after it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/plain/sparse_file.h"

namespace orvex::plain {

struct Installation {
    std::string folder;                   // as the driver sees it, "C:\..."
    bool found = true;                    // the system knows the folder
    std::optional<std::string> settings;  // settings.inf
    std::optional<std::string> media;     // media.inf
    std::optional<std::string> names;     // profilenames.inf, in ASCII; the file is UTF-16
    std::map<std::string, SparseFile> profiles;
    std::string language = "ENU";  // the system's
    std::string mask;              // the log's control file
};

// A value of the printer's data.
struct LabelValue {
    uint32_t type;  // 1 = text, 4 = number
    std::string bytes;
};
using LabelValues = std::map<std::string, LabelValue>;

struct LabelData {
    bool hasKey = false;                        // of the list
    std::map<std::string, LabelValues> labels;  // by the names of their keys
};

// The engine's part in one of its calls: the chunks that it outputs, and its answer.
struct EngineReply {
    std::vector<std::string> chunks;
    uint32_t status = 1;  // 0 from JobStart means that no job is started
};

// The replies to the calls of a job, by name and number of the call of that name, from 1. A chunk that the
// driver does not take makes the call fail, too.
struct EngineScript {
    uint64_t job = 1;  // handle
    std::map<std::pair<std::string, int>, EngineReply> replies;
};

// Hands out the replies of a script in the order of the calls.
class EnginePart {
  public:
    void Begin(const EngineScript& script) {
        script_ = script;
        calls_.clear();
    }
    uint64_t Job() const { return script_.job; }
    EngineReply Next(const std::string& call) {
        const auto found = script_.replies.find({call, ++calls_[call]});
        return found == script_.replies.end() ? EngineReply() : found->second;
    }

  private:
    EngineScript script_;
    std::map<std::string, int> calls_;
};

// A page bitmap. Pixels of 24 bits have their bytes in the order blue, green, red.
struct PageBits {
    int32_t width = 0, height = 0;
    int32_t pixelBytes = 4;
    int32_t stride = 0;   // bytes from one scan line to the next
    bool upward = false;  // the last scan line comes first in memory
    std::vector<uint8_t> bytes;

    size_t Offset(int32_t x, int32_t y) const {
        const int32_t line = upward ? height - 1 - y : y;
        return static_cast<size_t>(line) * static_cast<size_t>(stride) + static_cast<size_t>(x * pixelBytes);
    }
    uint32_t Pixel(int32_t x, int32_t y) const {
        const size_t at = Offset(x, y);
        return bytes[at] | uint32_t{bytes[at + 1]} << 8 | uint32_t{bytes[at + 2]} << 16;
    }
};

}  // namespace orvex::plain
