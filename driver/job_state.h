// The state of the running job. One job renders at a time, on the thread that calls the hooks: no locks.
#pragma once

#include <cstdint>

#include "driver/device_instance.h"
#include "driver/profiles/profile_file.h"
#include "engine/hpcrlib.h"
#include "platform/windows.h"

namespace orvex {

// A change of the print engine's resolution code that waits to be patched into the engine's output. The
// output callback acts while both flags are set, and clears both; DrvStartPage clears `pending` only.
struct ResolutionSwitch {
    const char* sequence;  // the command to look for
    uint32_t length;       // of the sequence, 5 or 6 bytes
    bool pending;
    bool queued;
};

// The longest time in ms that each stage of a page took so far in the job. Only a new maximum is logged.
struct StageMaxima {
    uint32_t setup;
    uint32_t reformat;
    uint32_t convert;
    uint32_t encode;
    uint32_t spare;  // defined by the system, but not used
};

constexpr signed char kHpresUnset = kDefaultResolutionCode;  // g_cHpres until something sets it
constexpr size_t kMaxNarrowName = 512;  // bytes of a job's or profile's narrow name, terminator included

// The instance of the running job; null without a job, and once that instance is disabled. Its address is the
// print engine's callback context, so that an instance made by a reset can take the job over.
inline PDEV* g_pCurrentPdev = nullptr;
inline HMODULE g_hHpcrlib = nullptr;  // the print engine's library while bound, or null
inline PrintEngine g_engine = {};     // its entry points
inline uint64_t g_hJob = {};
inline WCHAR g_wszSavedDirectory[MAX_PATH] = {};  // current directory before the library was bound
inline char g_szJobName[kMaxNarrowName] = {};
inline char g_szProfileName[kMaxNarrowName] = {};
inline int32_t g_nProfileKind = {};         // what the profile loader returned at job start
inline signed char g_cHpres = kHpresUnset;  // the print engine's resolution code
inline uint32_t g_cxSurface = {};           // the page bitmap's size in pixels at job start
inline uint32_t g_cySurface = {};
inline uint32_t g_nPage = {};          // number of the current page, from 1
inline bool g_bFirstChunk = {};        // the print engine has output nothing but framing yet
inline bool g_bHeaderPending = {};     // the job header has not been written yet
inline uint32_t g_uMaxWriteCost = {};  // slowest write to the spooler in the process, microseconds per byte
inline ResolutionSwitch g_resolutionSwitch = {};
inline StageMaxima g_stageMaxima = {};
inline char* g_pThumbnail = nullptr;  // base64 text from malloc, until the header takes it or the page ends
inline size_t g_cbThumbnail = {};     // its length, terminator not counted

// Resets what belongs to the pages of the job before, as the first step of a new job.
inline void ResetJobPages() {
    g_nPage = 0;
    // A switch that is left over belongs to a page of the job before. The new job must neither patch it into
    // what the engine outputs at job start nor report it as missed on the first page.
    g_resolutionSwitch = {};
}

// Resets what the output callback and the header depend on, once the print engine has started the new job.
// Deliberate: the engine's output inside HPCRLIB_JobStart still meets what the job before has left.
inline void ResetJobOutput() {
    g_bFirstChunk = true;
    g_bHeaderPending = true;
    g_cHpres = kHpresUnset;
}

// Resets the durations that a job's pages are compared with, on its first page.
inline void ResetStageMaxima() {
    g_stageMaxima = {};
}

}  // namespace orvex
