#include "driver/job_output.h"

#include <cstdio>

#include "driver/config/spooler.h"
#include "driver/job_state.h"
#include "driver/pjl_header.h"
#include "driver/support/log.h"

namespace orvex {

namespace {

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

// Writes the bytes before "@PJL COMMENT" and the job header, and moves `rest` to that line. Leaves a chunk
// without that line alone.
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
