// The color adjustment of a job, as strong as settings.inf says.
#pragma once

#include "driver/color/color_adjustment.h"

namespace orvex {

// Adjusts the color cache, with the scales of settings.inf, and logs how far its colors move.
void ApplyAdjustment(const int32_t (&values)[kAdjustmentValues]);

}  // namespace orvex
