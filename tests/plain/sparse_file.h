// A file of zeros with some bytes among them, as large as a color profile needs to be.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvex::plain {

struct SparseFile {
    struct Run {
        uint64_t offset;
        std::string bytes;
    };
    uint64_t size = 0;
    std::vector<Run> runs;  // within the size

    // Returns its first bytes, up to `most`.
    std::string Beginning(uint64_t most) const;
    // Replaces the file at `path`. The zeros are left as holes, so that a file of 128 MiB is written fast.
    void Write(const std::filesystem::path& path) const;
};

}  // namespace orvex::plain
