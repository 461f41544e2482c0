// orvexprofile: makes, converts and shows color profiles.
#include <iostream>

#include "tools/orvexprofile/orvexprofile.h"

using namespace orvex::tools::profile;

int main(int argc, char** argv) {
    return RunProfileTool(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
}
