// Reads colour profile files for the tools: what a file holds, and what the driver's reader would say about
// it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

struct TagFacts {
    uint64_t offset = 0;  // of the tag's header in the file
    int id = 0;
    uint32_t length = 0;  // that the header states
    std::string data;     // that the reader took, as far as the file has it; empty for a tag it refuses
};

// What the driver's reader sees of a file, step by step until it gives up.
struct ProfileFacts {
    uint64_t size = 0;  // the file's real one
    std::string magic;  // as far as the file has it
    int version = 0;
    uint32_t storedSize = 0;
    uint32_t tagAreaLength = 0;
    std::vector<TagFacts> tags;
    uint64_t dataOffset = 0;  // of the colour data; 0 when the reader gives up before
    std::string problem;      // the reader's own message, empty when it accepts the file

    bool Accepted() const { return problem.empty(); }
    // What the driver takes from the tags: the last of each kind.
    std::optional<std::string> Name() const;
    std::optional<ResolutionCodes> Codes() const;
};

// Never throws: a file that can't be opened has that as its problem.
ProfileFacts InspectProfile(const std::filesystem::path& path);

}  // namespace orvex::tools::profile
