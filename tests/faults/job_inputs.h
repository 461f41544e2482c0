// What the job of the fault tests is made from. A failure often has the driver print as if an input were not
// there, and then the job is held against one without that input.
#pragma once

enum class JobInputs {
    All,
    NoThumbnail,   // settings.inf asks for none
    NoChunkPages,  // settings.inf does not show them
    NoLabels,      // no media.inf
    NoProfile,     // the file that the job names is not there
    NoColors,      // that file ends where its colours should begin
    NoFirstMode,   // the first device is enabled without a device mode
    NoSecondMode,  // the second, which DrvResetPDEV gets
};
