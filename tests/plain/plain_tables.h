// Plain definitions of whole color tables, compiled without sanitizers to be fast.
#pragma once

#include <cstdint>
#include <vector>

namespace orvex::plain {

using Table = std::vector<uint32_t>;

// Returns the generic conversion of every color, computed once for each of 50 and 100 percent.
const Table& GenericTable(int percent);

// Returns every color interpolated between the grid points of `cache`, the grid points included.
Table PrismTable(const uint32_t* cache);

// Returns the half-grid average of every color from `cache`; the all-even colors are those of `cache`.
Table HalfGridTable(const uint32_t* cache);

}  // namespace orvex::plain
