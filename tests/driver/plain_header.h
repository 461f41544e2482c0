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
inline std::string PlainHeader(const HeaderFacts& facts = {}) {
    return "@PJL SET COPIES=1\n@PJL SET COLLATE=0\n@PJL SET ORIGX=" + std::to_string(facts.widthPx) +
           "\n@PJL SET ORIGY=" + std::to_string(facts.heightPx) +
           "\n@PJL SET JOBCAPTURE=0\n@PJL SET NOPRINT=0\n@PJL SET ALIGN=1\n@PJL SET COLORMODE=0\n"
           "@PJL SET OVERSPRAY=0\n@PJL SET FULLWIDTH=0\n@PJL SET PURGEBAR=0\n@PJL SET PURGEDOTS=1\n"
           "@PJL SET PURGEGAP=5\n@PJL SET PURGEFREQ=0\n@PJL SET KWS=0\n@PJL SET STITCHED=0\n"
           "@PJL SET PHOFFSET=0\n@PJL SET TOFOFFSET=0\n@PJL SET HPRES=" +
           std::to_string(facts.resolutionCode) + "\n@PJL JOB NAME=\"" + facts.jobName +
           "\"\n@PJL SET PROFILE=\"" + facts.profileName + "\"\n";
}

}  // namespace orvex
