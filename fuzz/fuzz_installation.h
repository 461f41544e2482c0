// The installation folder that fuzzed files are put into; one for the whole program.
#pragma once

#include "tests/kit/installation_fixture.h"

namespace orvex::fuzz {

inline InstallationFixture& FuzzInstallation() {
    static InstallationFixture installation;
    return installation;
}

}  // namespace orvex::fuzz
