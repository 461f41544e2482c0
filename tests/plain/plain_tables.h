// Whole caches, filled by the plain conversions: what the driver's own are compared with. Compiled without
// sanitizers, which watch the driver and not its measure.
#pragma once

#include <cstdint>
#include <vector>

namespace orvex::plain {

using Table = std::vector<uint32_t>;

// The generic conversion of every colour; computed once for each of 50 and 100 percent.
const Table& GenericTable(int percent);

// Every colour interpolated between the grid points of `cache`, the grid points themselves included.
Table PrismTable(const uint32_t* cache);

// The half-grid average of every colour out of `cache`; the all-even colours are those of `cache`.
Table HalfGridTable(const uint32_t* cache);

}  // namespace orvex::plain
