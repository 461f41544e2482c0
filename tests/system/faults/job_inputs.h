// What the job of the fault tests is made from. A failure often has the driver print as if an input were not
// there, and then the job is held against one without that input.
#pragma once

namespace orvex {

enum class JobInputs {
    kAll,
    kNoThumbnail,   // settings.inf asks for none
    kNoChunkPages,  // settings.inf does not show them
    kNoLabels,      // no media.inf
    kNoProfile,     // the file that the job names is not there
    kNoColors,      // that file ends where its colours should begin
    kNoFirstMode,   // the first device is enabled without a device mode
    kNoSecondMode,  // the second, which DrvResetPDEV gets
};

}  // namespace orvex
