// The job header that a test expects, byte by byte.
#pragma once

#include <string>

namespace orvex {

// The engine's line in front of which the driver writes the header.
inline constexpr char kComment[] = "@PJL COMMENT engine\n";

// The facts of a job in its header; by default those of the fixture's device mode and profile.
struct HeaderFacts {
    std::string jobName = "My job";
    std::string profileName = "Test colours";
    int resolutionCode = 3;
    int widthPx = 354;
    int heightPx = 472;
};

// Returns all lines of the header, every setting as in the fixture's device mode.
std::string PlainHeader(const HeaderFacts& facts = {});

}  // namespace orvex
