#include "driver/job_state.h"

namespace orvex {

PDEV* g_pCurrentPdev = nullptr;
HMODULE g_hHpcrlib = nullptr;
PrintEngine g_engine = {};
uint64_t g_hJob = 0;
WCHAR g_wszSavedDirectory[MAX_PATH] = {};
char g_szJobName[kMaxNarrowName] = {};
char g_szProfileName[kMaxNarrowName] = {};
int32_t g_nProfileKind = 1;
signed char g_cHpres = kHpresUnset;
uint32_t g_cxSurface = 0;
uint32_t g_cySurface = 0;
uint32_t g_nPage = 0;
bool g_bFirstChunk = false;
bool g_bHeaderPending = false;
uint32_t g_uMaxWriteCost = 0;
ResolutionSwitch g_resolutionSwitch = {};
StageMaxima g_stageMaxima = {};
char* g_pThumbnail = nullptr;
size_t g_cbThumbnail = 0;

void ResetPages() {
    g_nPage = 0;
    // A switch that is left over belongs to a page of the job before. The new job must neither patch it into
    // what the engine outputs at job start nor report it as missed on the first page.
    g_resolutionSwitch = {};
}

void ResetOutput() {
    g_bFirstChunk = true;
    g_bHeaderPending = true;
    g_cHpres = kHpresUnset;
}

}  // namespace orvex
