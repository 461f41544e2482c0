// Plain definition of a job's colors: a profile or the generic conversion, the adjustment, and the ink of any
// color.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>

#include "driver/config/device_mode.h"
#include "tests/plain/driver/log.h"
#include "tests/plain/driver/world.h"

namespace orvex::plain {

// A table of 2^24 inks, of which only those that were looked up are kept.
class InkTable {
  public:
    // `stored` returns the ink that a filled table has for a color.
    InkTable(int32_t kind, std::function<uint32_t(uint32_t color)> stored)
        : kind_(kind), stored_(std::move(stored)) {}

    int32_t Kind() const { return kind_; }
    // Returns the entry of a color as it is now.
    uint32_t operator[](uint32_t color) const;
    // Looks up the ink of a color. A missing entry is computed and kept.
    uint32_t InkOf(uint32_t color);

  private:
    int32_t kind_;
    std::function<uint32_t(uint32_t)> stored_;
    std::unordered_map<uint32_t, uint32_t> computed_;
};

struct JobColors {
    InkTable table;
    int32_t loadedKind;  // before an adjustment
    std::string profileName;
    int8_t resolutionCode;
};

// Returns the colors of a new job. `codeBefore` is the resolution code, which only a named profile changes.
JobColors LoadJobColors(const Installation& installation, const PrivateDevMode& settings, bool at600Dpi,
                        int8_t codeBefore, Log& log);

}  // namespace orvex::plain
