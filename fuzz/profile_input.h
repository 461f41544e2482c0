// Colour profile files out of fuzzed inputs: what the driver's reader and the profile tool are both given.
#pragma once

#include <cstddef>
#include <string>

#include "fuzz/input.h"
#include "fuzz/target.h"

// What is done with a file's colours. Taking them costs the filling of the whole colour cache, so that most
// files are refused for colours of a wrong size, once their header and tags are read, and the colours of
// versions 3 and 4 and the whole load, which computes every entry of a refused file's cache, are rare.
enum class ProfileColors { Cut, Grid, HalfGrid, WholeLoad };

struct ProfileInput {
    ProfileColors colors;
    std::string file;
};

// Takes all of the input. An input's first byte chooses: its own bytes as the file, or its tags between a
// fitting header and colours.
ProfileInput TakeProfile(FuzzInput& input);

// How the first byte of an input chooses.
constexpr char kProfileCut = 0, kProfileGrid = 5;
constexpr char kProfileHalfGridEntries = 0x46, kProfileHalfGridPlanes = 0x47, kProfileWholeLoad = 0x4E;
constexpr char kProfileRaw = '\x80';

// Bytes of the first variant of the colours of version 5.
constexpr size_t kGridVariantSize = 19652;

// The input of a profile with these tags, of the area length that its header claims, and bytes over the
// beginning of its colours.
std::string ProfileSeed(char choice, const std::string& tags, size_t areaLength,
                        const std::string& colors = "");

// Inputs of the profile's target that take the tests a second, and would take the fuzzers the better part of
// a short run.
Seeds SlowProfileSeeds();
