// Color profile files made from fuzzed inputs, for the driver's reader and for the profile tool.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "fuzz/target.h"
#include "tests/plain/sparse_file.h"

namespace orvex::fuzz {

struct ProfileInput {
    plain::SparseFile file;
    // One input in kRare may take long, whatever it holds: only then does it have all colors of versions 1 to
    // 4, which are 16 or 128 MiB, and only then is it loaded and not just read.
    bool rare;
};

constexpr uint32_t kRare = 200;

// Consumes the whole input. Its first byte selects its own bytes as the file, or its tags after a matching
// header, followed by colors that are cut short or by as many as the version has. Those are zeros with the
// input's last bytes in each eighth of them.
ProfileInput TakeProfile(std::span<const uint8_t> input);

// Values of an input's first byte; the version is added to the first two.
constexpr char kProfileCut = 0, kProfileWhole = 8;
constexpr char kProfileRaw = '\x80';

// Returns the input for a profile with these tags, an area of `areaLength` according to its header, and
// `colors`, `where` bytes after the beginning of each eighth of its colors.
std::string ProfileSeed(int choice, const std::string& tags, size_t areaLength,
                        const std::string& colors = "", uint32_t where = 0);

// Returns the input with bytes appended that make it a rare one.
std::string RareSeed(const std::string& seed);

}  // namespace orvex::fuzz
