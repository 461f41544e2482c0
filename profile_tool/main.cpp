// orvexprofile: makes, converts and shows colour profiles.
#include <iostream>

#include "profile_tool/orvexprofile.h"

int main(int argc, char** argv) {
    return RunProfileTool(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
}
