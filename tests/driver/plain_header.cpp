#include "tests/driver/plain_header.h"

namespace orvex {

std::string PlainHeader(const HeaderFacts& facts) {
    return "@PJL SET COPIES=1\n"
           "@PJL SET COLLATE=0\n"
           "@PJL SET ORIGX=" +
           std::to_string(facts.widthPx) +
           "\n"
           "@PJL SET ORIGY=" +
           std::to_string(facts.heightPx) +
           "\n"
           "@PJL SET JOBCAPTURE=0\n"
           "@PJL SET NOPRINT=0\n"
           "@PJL SET ALIGN=1\n"
           "@PJL SET COLORMODE=0\n"
           "@PJL SET OVERSPRAY=0\n"
           "@PJL SET FULLWIDTH=0\n"
           "@PJL SET PURGEBAR=0\n"
           "@PJL SET PURGEDOTS=1\n"
           "@PJL SET PURGEGAP=5\n"
           "@PJL SET PURGEFREQ=0\n"
           "@PJL SET KWS=0\n"
           "@PJL SET STITCHED=0\n"
           "@PJL SET PHOFFSET=0\n"
           "@PJL SET TOFOFFSET=0\n"
           "@PJL SET HPRES=" +
           std::to_string(facts.resolutionCode) +
           "\n"
           "@PJL JOB NAME=\"" +
           facts.jobName +
           "\"\n"
           "@PJL SET PROFILE=\"" +
           facts.profileName + "\"\n";
}

}  // namespace orvex
