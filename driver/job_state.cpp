#include "driver/job_state.h"

namespace orvex {

void ResetJobPages() {
    g_nPage = 0;
    // A switch that is left over belongs to a page of the job before. The new job must neither patch it into
    // what the engine outputs at job start nor report it as missed on the first page.
    g_resolutionSwitch = {};
}

void ResetJobOutput() {
    g_bFirstChunk = true;
    g_bHeaderPending = true;
    g_cHpres = kHpresUnset;
}

}  // namespace orvex
