#include "driver/pjl_header.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "driver/job_state.h"
#include "driver/printer_output.h"
#include "driver/support/settings_file.h"

namespace orvex {

namespace {

constexpr int32_t kUnchunkedPages = 10000;

const DEVMODEW& Pub(const PDEV& pdev) {
    return pdev.devmode.pub;
}
const PrivateDevMode& Priv(const PDEV& pdev) {
    return pdev.devmode.priv;
}

int32_t ChunkPages(const PDEV& pdev) {
    return Priv(pdev).chunkActive != 0 ? Priv(pdev).chunksize : kUnchunkedPages;
}

bool ShowsChunks() {
    return LookupFlag("[UI]", "Show_Chunked=") != 0;
}

struct HeaderLine {
    const char* format;
    int32_t (*value)(const PDEV& pdev);
    bool (*wanted)() = nullptr;  // null: always
};

const HeaderLine kHeaderLines[] = {
    {"@PJL SET COPIES=%d\n", [](const PDEV& pdev) -> int32_t { return Pub(pdev).dmCopies; }},
    {"@PJL SET COLLATE=%d\n", [](const PDEV& pdev) -> int32_t { return Pub(pdev).dmCollate; }},
    {"@PJL SET ORIGX=%d\n", [](const PDEV&) { return static_cast<int32_t>(g_cxSurface); }},
    {"@PJL SET ORIGY=%d\n", [](const PDEV&) { return static_cast<int32_t>(g_cySurface); }},
    {"@PJL SET JOBCAPTURE=%d\n", [](const PDEV& pdev) { return Priv(pdev).jobCapture; }},
    {"@PJL SET NOPRINT=%d\n", [](const PDEV& pdev) { return Priv(pdev).noPrint; }},
    {"@PJL SET ALIGN=%d\n", [](const PDEV& pdev) -> int32_t { return Priv(pdev).alignment; }},
    {"@PJL SET COLORMODE=%d\n", [](const PDEV& pdev) { return Priv(pdev).colorMode; }},
    {"@PJL SET OVERSPRAY=%d\n", [](const PDEV& pdev) -> int32_t { return Priv(pdev).overspray; }},
    {"@PJL SET FULLWIDTH=%d\n", [](const PDEV& pdev) { return Priv(pdev).kws_fullwidth; }},
    {"@PJL SET PURGEBAR=%d\n", [](const PDEV& pdev) -> int32_t { return Priv(pdev).purgeBar; }},
    {"@PJL SET PURGEDOTS=%d\n", [](const PDEV& pdev) -> int32_t { return Priv(pdev).purgeDots; }},
    {"@PJL SET PURGEGAP=%d\n", [](const PDEV& pdev) -> int32_t { return Priv(pdev).purgeGap; }},
    {"@PJL SET PURGEFREQ=%d\n", [](const PDEV& pdev) -> int32_t { return Priv(pdev).purgeFreq; }},
    {"@PJL SET KWS=%d\n", [](const PDEV& pdev) { return Priv(pdev).kws; }},
    {"@PJL SET STITCHED=%d\n", [](const PDEV& pdev) { return Priv(pdev).stitched; }},
    {"@PJL SET PHOFFSET=%d\n", [](const PDEV& pdev) -> int32_t { return Priv(pdev).phHOffset; }},
    {"@PJL SET TOFOFFSET=%d\n", [](const PDEV& pdev) -> int32_t { return Priv(pdev).phVOffset; }},
    {"@PJL SET CHUNKPAGES=%d\n", ChunkPages, ShowsChunks},
    {"@PJL SET HPRES=%d\n", [](const PDEV&) -> int32_t { return g_cHpres; }},
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
        if (!WriteLine(pdev.hPrinter, line.format, line.value(pdev))) return false;
    }
    // Deliberate: the write of the job's name is not checked, and that of the profile's name counts only if
    // it is the last.
    WriteLine(pdev.hPrinter, "@PJL JOB NAME=\"%s\"\n", g_szJobName);
    const bool profileWritten = WriteLine(pdev.hPrinter, "@PJL SET PROFILE=\"%s\"\n", g_szProfileName);
    return g_pThumbnail != nullptr ? WriteThumbnail(pdev.hPrinter) : profileWritten;
}

}  // namespace orvex
