#include "driver/pjl_header.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "driver/config/spooler.h"
#include "driver/job_state.h"
#include "driver/support/settings_file.h"

namespace orvex {

namespace {

constexpr int32_t kUnchunkedPages = 10000;

int32_t ChunkPages(const DeviceMode& mode) {
    return mode.priv.chunkActive != 0 ? mode.priv.chunksize : kUnchunkedPages;
}

bool ShowsChunks() {
    return LookupFlag("[UI]", "Show_Chunked=") != 0;
}

struct HeaderLine {
    const char* format;
    int32_t (*value)(const DeviceMode& mode);
    bool (*wanted)() = nullptr;  // null: always
};

const HeaderLine kHeaderLines[] = {
    {"@PJL SET COPIES=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.pub.dmCopies; }},
    {"@PJL SET COLLATE=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.pub.dmCollate; }},
    {"@PJL SET ORIGX=%d\n", [](const DeviceMode&) { return static_cast<int32_t>(g_cxSurface); }},
    {"@PJL SET ORIGY=%d\n", [](const DeviceMode&) { return static_cast<int32_t>(g_cySurface); }},
    {"@PJL SET JOBCAPTURE=%d\n", [](const DeviceMode& mode) { return mode.priv.jobCapture; }},
    {"@PJL SET NOPRINT=%d\n", [](const DeviceMode& mode) { return mode.priv.noPrint; }},
    {"@PJL SET ALIGN=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.priv.alignment; }},
    {"@PJL SET COLORMODE=%d\n", [](const DeviceMode& mode) { return mode.priv.colorMode; }},
    {"@PJL SET OVERSPRAY=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.priv.overspray; }},
    {"@PJL SET FULLWIDTH=%d\n", [](const DeviceMode& mode) { return mode.priv.kws_fullwidth; }},
    {"@PJL SET PURGEBAR=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.priv.purgeBar; }},
    {"@PJL SET PURGEDOTS=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.priv.purgeDots; }},
    {"@PJL SET PURGEGAP=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.priv.purgeGap; }},
    {"@PJL SET PURGEFREQ=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.priv.purgeFreq; }},
    {"@PJL SET KWS=%d\n", [](const DeviceMode& mode) { return mode.priv.kws; }},
    {"@PJL SET STITCHED=%d\n", [](const DeviceMode& mode) { return mode.priv.stitched; }},
    {"@PJL SET PHOFFSET=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.priv.phHOffset; }},
    {"@PJL SET TOFOFFSET=%d\n", [](const DeviceMode& mode) -> int32_t { return mode.priv.phVOffset; }},
    {"@PJL SET CHUNKPAGES=%d\n", ChunkPages, ShowsChunks},
    {"@PJL SET HPRES=%d\n", [](const DeviceMode&) -> int32_t { return g_cHpres; }},
};

constexpr size_t kMaxLine = kMaxNarrowName + 32;

// Formats a line and writes it in one call.
template <typename Value>
bool WriteLine(HANDLE printer, const char* format, Value value) {
    char line[kMaxLine];
    const int length = snprintf(line, sizeof line, format, value);
    return WriteToPrinter(printer, {line, std::min(static_cast<size_t>(length), sizeof line - 1)});
}

// Writes the waiting thumbnail and frees it. Deliberate: only the write of the closing quote counts.
bool WriteThumbnail(HANDLE printer) {
    WriteToPrinter(printer, "@PJL SET QRV_THUMBNAIL=\"");
    WriteToPrinter(printer, {g_pThumbnail, g_cbThumbnail});
    const bool written = WriteToPrinter(printer, "\"\n");
    free(g_pThumbnail);
    g_pThumbnail = nullptr;
    return written;
}

}  // namespace

bool WriteJobHeader(const PDEV& pdev) {
    for (const HeaderLine& line : kHeaderLines) {
        if (line.wanted != nullptr && !line.wanted()) continue;
        if (!WriteLine(pdev.hPrinter, line.format, line.value(pdev.devmode))) return false;
    }
    // Deliberate: the write of the job's name is not checked, and that of the profile's name counts only if
    // it is the last.
    WriteLine(pdev.hPrinter, "@PJL JOB NAME=\"%s\"\n", g_szJobName);
    const bool profileWritten = WriteLine(pdev.hPrinter, "@PJL SET PROFILE=\"%s\"\n", g_szProfileName);
    return g_pThumbnail != nullptr ? WriteThumbnail(pdev.hPrinter) : profileWritten;
}

}  // namespace orvex
