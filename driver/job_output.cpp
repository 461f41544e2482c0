#include "driver/job_output.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "driver/config/spooler.h"
#include "driver/job_state.h"
#include "driver/support/log.h"
#include "driver/support/settings_file.h"

namespace orvex {

namespace {

int32_t ChunkPages(const DeviceMode& mode) {
    return mode.priv.chunkActive != 0 ? mode.priv.chunksize : 10000;
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
    {"@PJL SET CHUNKPAGES=%d\n", ChunkPages, [] { return LookupFlag("[UI]", "Show_Chunked=") != 0; }},
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

constexpr size_t kFramingEnd = 3;  // bytes at each end of a framing chunk that take part in its sum

// Returns whether a chunk is pure framing: its first and last three bytes add up to 0 modulo 256.
bool IsFraming(std::string_view chunk) {
    if (chunk.size() <= 2 * kFramingEnd) return false;
    unsigned sum = 0;
    for (size_t i = 0; i < kFramingEnd; ++i) {
        sum += static_cast<uint8_t>(chunk[i]) + static_cast<uint8_t>(chunk[chunk.size() - 1 - i]);
    }
    return sum % 256 == 0;
}

// Writes the bytes before "@PJL COMMENT" and the job header, and moves `rest` to that line, if there is one.
bool InsertHeader(const PDEV& pdev, std::string_view& rest) {
    const std::string_view text = rest.substr(0, rest.find('\0'));
    const size_t comment = text.find("@PJL COMMENT");
    if (comment == std::string_view::npos) return true;
    if (!WriteToPrinter(pdev.hPrinter, rest.substr(0, comment))) return false;
    if (!WriteJobHeader(pdev)) return false;
    g_bHeaderPending = false;
    rest.remove_prefix(comment);
    return true;
}

// Replaces the value in the resolution command, ESC "*o" value "M", that the page waits for, and moves `rest`
// to the "M". Finds only a command that lies wholly in this chunk.
bool PatchResolution(HANDLE printer, std::string_view& rest) {
    constexpr size_t kBeforeValue = 3;  // ESC "*o"
    constexpr size_t kAfterValue = 1;   // "M"
    const std::string_view command(g_resolutionSwitch.sequence, g_resolutionSwitch.length);
    const size_t match = rest.find(command);
    if (match == std::string_view::npos) return true;

    char value[8];
    const int valueLength = snprintf(value, sizeof value, "%d", g_cHpres);
    g_resolutionSwitch.pending = false;
    g_resolutionSwitch.queued = false;
    LogTrace("hpres found %c%c%c%c", rest[match + 1], rest[match + 2], rest[match + 3], rest[match + 4]);
    if (!WriteToPrinter(printer, rest.substr(0, match + kBeforeValue))) return false;
    if (!WriteToPrinter(printer, {value, static_cast<size_t>(valueLength)})) return false;
    rest.remove_prefix(match + command.size() - kAfterValue);
    return true;
}

// Writes the rest of a chunk of `chunkLength` bytes and keeps the cost of the slowest write.
bool WriteTimed(HANDLE printer, std::string_view rest, uint32_t chunkLength) {
    if (chunkLength == 0) return true;
    const DWORD start = GetTickCount();
    const bool written = WriteToPrinter(printer, rest);
    const uint32_t cost = (GetTickCount() - start) * 1000u / chunkLength;
    if (cost > g_uMaxWriteCost) {
        g_uMaxWriteCost = cost;
        LogInfo("write: %dus/B", cost);
    }
    return written;
}

}  // namespace

bool WriteJobHeader(const PDEV& pdev) {
    for (const HeaderLine& line : kHeaderLines) {
        if (line.wanted != nullptr && !line.wanted()) continue;
        if (!WriteLine(pdev.hPrinter, line.format, line.value(pdev.devmode))) return false;
    }
    // Deliberate: the write of the job's name is not checked, that of the profile's only if it is the last.
    WriteLine(pdev.hPrinter, "@PJL JOB NAME=\"%s\"\n", g_szJobName);
    const bool profileWritten = WriteLine(pdev.hPrinter, "@PJL SET PROFILE=\"%s\"\n", g_szProfileName);
    return g_pThumbnail != nullptr ? WriteThumbnail(pdev.hPrinter) : profileWritten;
}

int32_t HPCRLIB_CALL JobOutputCallback(const uint8_t* data, uint32_t length, void* context) {
    if (data == nullptr || context == nullptr) return 0;
    const PDEV* pdev = *static_cast<PDEV* const*>(context);
    if (pdev == nullptr || pdev->hPrinter == nullptr) return 0;

    std::string_view rest(reinterpret_cast<const char*>(data), length);
    if (g_bFirstChunk) {
        if (IsFraming(rest)) return 1;
        g_bFirstChunk = false;
    }
    if (g_bHeaderPending && !InsertHeader(*pdev, rest)) return 0;
    if (g_resolutionSwitch.pending && g_resolutionSwitch.queued && !PatchResolution(pdev->hPrinter, rest))
        return 0;
    return WriteTimed(pdev->hPrinter, rest, length) ? 1 : 0;
}

}  // namespace orvex
