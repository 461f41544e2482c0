// The state of the running job. One job renders at a time in a process, on the thread that calls the hooks,
// so nothing here is locked.
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
    const char* sequence;  // the command to look for: ESC "*o0M" or ESC "*o-1M"
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
extern PDEV* g_pCurrentPdev;
extern HMODULE g_hHpcrlib;    // the print engine's library while bound, or null
extern PrintEngine g_engine;  // its entry points
extern uint64_t g_hJob;
extern WCHAR g_wszSavedDirectory[MAX_PATH];  // current directory before the library was bound
extern char g_szJobName[kMaxNarrowName];
extern char g_szProfileName[kMaxNarrowName];
extern int32_t g_nProfileKind;  // what the profile loader returned at job start
extern signed char g_cHpres;    // the print engine's resolution code
extern uint32_t g_cxSurface;    // the page bitmap's size in pixels at job start
extern uint32_t g_cySurface;
extern uint32_t g_nPage;          // number of the current page, from 1
extern bool g_bFirstChunk;        // the print engine has output nothing but framing yet
extern bool g_bHeaderPending;     // the job header has not been written yet
extern uint32_t g_uMaxWriteCost;  // slowest write to the spooler so far in the process, microseconds per byte
extern ResolutionSwitch g_resolutionSwitch;
extern StageMaxima g_stageMaxima;
extern char* g_pThumbnail;    // base64 text from malloc, until the header takes it or the page ends
extern size_t g_cbThumbnail;  // its length, terminator not counted

// Forgets the pages of the job before, as the first step of a new job.
void ResetPages();

// Makes the output callback expect framing and a header, and forgets the resolution code, as soon as the
// print engine has started the new job. Deliberate: what the engine outputs inside HPCRLIB_JobStart still
// meets the flags and the code of the job before.
void ResetOutput();

}  // namespace orvex
