// Lengths in different units.
#pragma once

namespace orvex::tools {

constexpr double kMmPerInch = 25.4;
constexpr double kMetersPerInch = 0.0254;

}  // namespace orvex::tools
