// Plain definition of the installed profiles and the printer's default among them.
#pragma once

#include <string>

#include "tests/plain/driver/log.h"
#include "tests/plain/driver/world.h"

namespace orvex::plain {

// Returns the file name of the default profile; empty if none is installed.
std::string DefaultProfile(const Installation& installation, Log& log);

}  // namespace orvex::plain
