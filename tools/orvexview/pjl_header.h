// The PJL lines before a print file's records: the driver's job settings and the print engine's comment.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/orvexview/byte_reader.h"

namespace orvex::tools::view {

// The variable of a line "@PJL SET NAME=VALUE"; that of "@PJL JOB NAME=VALUE" is called "JOB NAME". The value
// has no quotes around it.
struct HeaderVariable {
    std::string name;
    std::string value;

    bool operator==(const HeaderVariable&) const = default;
};

// A PNG file in base64, a multiple of 4 characters. It may be as large as a page, so it stays in the file.
struct Thumbnail {
    uint64_t offset = 0;
    uint64_t size = 0;
    uint32_t checksum = 1;  // Adler-32 of the characters

    bool operator==(const Thumbnail&) const = default;
};

struct PjlHeader {
    std::vector<HeaderVariable> variables;  // in the file's order, without the thumbnail
    std::optional<Thumbnail> thumbnail;
    std::string comment;   // of the print engine
    std::string language;  // of the print engine's bytes after the header

    // Returns whether the bytes are those of the stand-in print engine.
    bool IsStandIn() const;

    // Returns the value of the first variable of that name, or null.
    const std::string* Find(std::string_view name) const;
    // Returns that value as a number; nothing if it is not a decimal number from -1,000,000 to 1,000,000.
    std::optional<int32_t> FindNumber(std::string_view name) const;

    bool operator==(const PjlHeader&) const = default;
};

// Reads from the universal exit to the end of the line that enters the print engine's language. Throws
// PrintFileError.
PjlHeader ReadPjlHeader(ByteReader& reader);

}  // namespace orvex::tools::view
