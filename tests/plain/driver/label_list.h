// Plain definition of the printer's labels: the list in the printer's data, and its import from media.inf.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/plain/driver/log.h"
#include "tests/plain/driver/world.h"

namespace orvex::plain {

struct Label {
    std::string name, width, length;
    uint32_t units = 0;
    int number = 0;
};

// Returns the labels that can be read, in the order of their keys.
std::vector<Label> ReadLabels(const LabelData& data, Log& log);

// Returns a length in tenths of a millimeter as a device mode has it; 0 for a text that is no decimal number.
int16_t LabelLength(const std::string& text, uint32_t units);

// Adds the labels of media.inf to a printer that has no list.
void ImportMedia(const Installation& installation, LabelData& data, Log& log);

}  // namespace orvex::plain
