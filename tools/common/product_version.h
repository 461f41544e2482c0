// The version of everything that is built together.
#pragma once

namespace orvex::tools {

// From the build: "1.0.0".
extern const char* const kProductVersion;

}  // namespace orvex::tools
