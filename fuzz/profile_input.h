// Color profile files out of fuzzed inputs: what the driver's reader and the profile tool are both given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "fuzz/sparse_file.h"
#include "fuzz/target.h"

namespace orvex::fuzz {

struct ProfileInput {
    SparseFile file;
    // Whether it is worth much time, as one input in kRare is, whatever else it holds: the colors of
    // versions 1 to 4, of 16 and 128 MiB, are only there then.
    bool rare;
};

constexpr uint32_t kRare = 200;

// Takes all of the input. Its first byte chooses: its own bytes as the file; or its tags behind a fitting
// header, followed by colors that are cut short, or by the version's own number of them. Those are zeros,
// but for the input's last bytes, which stand in each eighth of them.
ProfileInput TakeProfile(std::span<const uint8_t> input);

// How the first byte of an input chooses; the version is added.
constexpr char kProfileCut = 0, kProfileWhole = 8;
constexpr char kProfileRaw = '\x80';

// The input of a profile with these tags, of the area length that its header claims, and bytes that stand
// among its colours, `where` bytes behind the beginning of each eighth.
std::string ProfileSeed(int choice, const std::string& tags, size_t areaLength,
                        const std::string& colors = "", uint32_t where = 0);

// The input with bytes appended that make it a rare one.
std::string RareSeed(const std::string& seed);

}  // namespace orvex::fuzz
