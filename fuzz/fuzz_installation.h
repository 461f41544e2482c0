// The installation folder that fuzzed files are put into; one for the whole program.
#pragma once

#include "tests/support/installation_fixture.h"

inline InstallationFixture& FuzzInstallation() {
    static InstallationFixture installation;
    return installation;
}
