// A file of zeros with some bytes among them, which may be far larger than what a fuzzed input can hold.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvex::fuzz {

struct SparseFile {
    struct Run {
        uint64_t offset;
        std::string bytes;
    };
    uint64_t size = 0;
    std::vector<Run> runs;  // within the size

    // Its first bytes, `most` at most.
    std::string Beginning(uint64_t most) const;
    // Writes it in place of what is there. The zeros cost nothing where the file system can leave them out.
    void Write(const std::filesystem::path& path) const;
};

}  // namespace orvex::fuzz
