// orvexprofile: makes, converts and shows color profiles.
#include <iostream>

#include "tools/common/interrupt.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprofile/orvexprofile.h"

using namespace orvex::tools::profile;

int main(int argc, char** argv) {
    orvex::tools::EndCleanlyOnInterrupt();
    return RunProfileTool(orvex::tools::Utf8Arguments(argc, argv), std::cout, std::cerr);
}
