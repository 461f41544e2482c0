// Plain definition of how a profile is read up to its colors, with the lines that it leaves in the log.
#pragma once

#include <cstdint>
#include <string>

#include "tests/plain/driver/log.h"
#include "tests/plain/sparse_file.h"

namespace orvex::plain {

struct ProfileHead {
    bool sound = false;
    uint8_t version = 0;
    std::string name;  // of the last name tag, up to its first zero byte; without one, as it was before
    int8_t code = 0x30;
    uint64_t colorsAt = 0;
};

// Reads the head of a file at `path`; null is a file that can't be opened. A name of `nameSize` bytes or more
// is refused. Errors of the file and its header are logged at the level of errors if `asErrors`.
ProfileHead ReadHead(const SparseFile* file, const std::string& path, const std::string& nameBefore,
                     size_t nameSize, bool at600Dpi, bool asErrors, Log& log);
inline ProfileHead ReadHead(const SparseFile& file, size_t nameSize, bool at600Dpi) {
    Log log;
    return ReadHead(&file, "", "", nameSize, at600Dpi, false, log);
}

}  // namespace orvex::plain
