// The profile that is loaded into the driver's color cache through the driver's own reader: what its file
// contains, and the colors as the driver looks them up. One variant of one profile is loaded at a time in a
// process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

struct TagFacts {
    uint64_t offset = 0;  // of the tag's header in the file
    int id = 0;
    uint32_t length = 0;  // as its header states
    std::string data;     // as far as the file has it; empty for a tag that the reader refuses
};

// The contents of a file, as far as the reader got.
struct ProfileFacts {
    uint64_t size = 0;  // the file's own
    std::string mark;   // as far as the file has it
    int version = 0;
    uint32_t storedSize = 0;
    uint32_t tagAreaLength = 0;
    std::vector<TagFacts> tags;
    uint64_t dataOffset = 0;  // of the colors; 0 if the reader did not get there
    std::string problem;      // in the words of the driver's log; empty when the file is accepted

    bool Accepted() const { return problem.empty(); }
    // Return what the driver takes from the tags: the last one of each kind.
    std::optional<std::string> Name() const;
    std::optional<ResolutionCodes> Codes() const;
};

// Loads a variant of the file and returns the contents of its head. Does not throw: a file that can't be
// opened has that as its problem. After a refusal the cache is useless until the next load.
ProfileFacts LoadIntoDriver(const std::filesystem::path& path, PrintVariant variant);

// Does the same, but throws std::runtime_error with the file's name and the problem when there is one.
ProfileFacts LoadAccepted(const std::filesystem::path& path, PrintVariant variant);

// Loads the conversion that the driver prints through when a job names no profile.
void LoadGenericIntoDriver(PrintVariant variant);

// Loads what a job prints through: the file, as LoadAccepted does, or that conversion if `path` is empty.
void LoadForPrint(const std::filesystem::path& path, PrintVariant variant);

// Returns the entries that the loaded profile of this version stores, in the order of a Variant.
Variant LoadedEntries(int version);

// Returns whether the driver prints every color of a profile of this version as the profile means it. It does
// not in the versions 3 and 4: colors between the stored ones get no ink or are computed from other colors.
bool PrintsAsMeant(int version);

// Returns a source of the inks that the loaded profile of this version means for any color: the driver's, or,
// unless PrintsAsMeant, those on the straight line between the stored neighbors. It is valid as long as the
// profile stays loaded.
InkSource LoadedColors(int version);

// Returns what the driver prints for each of `colors` through the loaded profile.
std::vector<uint32_t> PrintedInks(std::span<const uint32_t> colors);

// Returns all colors whose components are multiples of `step` or 255; every color when `step` is 1.
std::vector<uint32_t> ColorsEvery(int step);

}  // namespace orvex::tools::profile
