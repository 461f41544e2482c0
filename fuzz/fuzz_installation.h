// Returns the installation folder for fuzzed files, which the whole program shares.
#pragma once

#include "tests/kit/installation_fixture.h"

namespace orvex::fuzz {

inline InstallationFixture& FuzzInstallation() {
    static InstallationFixture installation;
    return installation;
}

}  // namespace orvex::fuzz
