// The PJL lines in front of a print file's records: the driver's job settings and the engine's comment.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/orvexview/byte_reader.h"

namespace orvex::tools::view {

// "@PJL SET NAME=VALUE", or "@PJL JOB NAME=VALUE" under the name "JOB NAME"; quotes around the value are
// taken off.
struct HeaderVariable {
    std::string name;
    std::string value;

    bool operator==(const HeaderVariable&) const = default;
};

struct PjlHeader {
    std::vector<HeaderVariable> variables;  // in the order of the file, without the thumbnail
    std::optional<std::string> thumbnail;   // a PNG file in base64
    std::string comment;                    // of the engine

    // The value of the first variable of that name; null when there is none.
    const std::string* Find(std::string_view name) const;
    // The same as a decimal number from -1,000,000 to 1,000,000; nothing when it is none.
    std::optional<int32_t> FindNumber(std::string_view name) const;

    bool operator==(const PjlHeader&) const = default;
};

// Reads from the universal exit to the end of the line that enters the engine's language. Throws
// PrintFileError.
PjlHeader ReadPjlHeader(ByteReader& reader);

}  // namespace orvex::tools::view
