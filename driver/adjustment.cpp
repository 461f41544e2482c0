#include "driver/adjustment.h"

#include "driver/support/log.h"
#include "driver/support/settings_file.h"

namespace orvex {

namespace {

double Scale(const char* key, double absent) {
    return LookupNumber("[Color]", key, absent);
}

}  // namespace

void ApplyAdjustment(const int32_t (&values)[kAdjustmentValues]) {
    const AdjustmentScales absent;
    const AdjustmentScales scales = {.tone = Scale("tone_scale=", absent.tone),
                                     .saturation = Scale("saturation_scale=", absent.saturation),
                                     .brightness = Scale("brightness_scale=", absent.brightness),
                                     .black = Scale("black_scale=", absent.black),
                                     .yellow = Scale("yellow_scale=", absent.yellow),
                                     .cyan = Scale("cyan_scale=", absent.cyan),
                                     .magenta = Scale("magenta_scale=", absent.magenta)};
    const ColorMovement by = MovementOf(values, scales);
    LogError("ca %lf,%lf,%lf,%lf,%lf,%lf,%lf\n", by.tone, by.brightness, by.saturation, by.cyan, by.black,
             by.yellow, by.magenta);
    AdjustColors(values, scales);
}

}  // namespace orvex
