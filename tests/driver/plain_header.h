// The job header that a test expects, byte for byte.
#pragma once

#include <string>

namespace orvex {

// The print engine's line that the driver inserts the header before.
inline constexpr char kComment[] = "@PJL COMMENT engine\n";

// The facts of a job in its header. The defaults are those of the fixture's device mode and profile.
struct HeaderFacts {
    std::string jobName = "My job";
    std::string profileName = "Test colours";
    int resolutionCode = 3;
    int widthPx = 354;
    int heightPx = 472;
};

// Returns all lines of the header, with the settings of the fixture's device mode.
std::string PlainHeader(const HeaderFacts& facts = {});

}  // namespace orvex
