// The engine's output on its way to the spooler: however it is cut into chunks, it is written as it comes,
// without leading framing, with the job header before the first comment line and with the value of one
// resolution command replaced.

#include <cstdlib>
#include <cstring>

#include "driver/job_output.h"
#include "driver/job_state.h"
#include "driver/support/text.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/fuzz_printer.h"
#include "fuzz/input.h"
#include "tests/plain/device_mode.h"

namespace orvex::fuzz {

using namespace tools;
namespace {

constexpr std::string_view kComment = "@PJL COMMENT";
constexpr char kThumbnail[] = "dGh1bWI=";

struct Choices {
    explicit Choices(FuzzInput& input)
        : flags(input.Byte()), resolutionCode(static_cast<signed char>(input.Byte())) {}

    bool HeaderPending() const { return flags & 1; }
    bool FirstChunk() const { return flags & 2; }
    bool SwitchPending() const { return flags & 4; }
    bool SwitchQueued() const { return flags & 8; }
    bool Thumbnail() const { return flags & 16; }
    std::string_view Switch() const {
        return flags & 32 ? kResolutionCommand600Dpi : kResolutionCommandOther;
    }

    uint8_t flags;
    signed char resolutionCode;
};

void SetUpJob(const Choices& choices) {
    g_bHeaderPending = choices.HeaderPending();
    g_bFirstChunk = choices.FirstChunk();
    g_cHpres = choices.resolutionCode;
    g_uMaxWriteCost = 0;
    g_resolutionSwitch = {choices.Switch().data(), static_cast<uint32_t>(choices.Switch().size()),
                          choices.SwitchPending(), choices.SwitchQueued()};
    CopyText(g_szJobName, "a \"job\"\n%s");
    CopyText(g_szProfileName, "Paper");
    free(g_pThumbnail);
    g_pThumbnail = choices.Thumbnail() ? strdup(kThumbnail) : nullptr;
    g_cbThumbnail = strlen(kThumbnail);
}

// Splits the rest of the input into chunks, each after its length; length 255 takes all that is left.
std::vector<std::string> ChunksOf(FuzzInput& input) {
    std::vector<std::string> chunks;
    while (!input.Empty()) {
        const uint8_t size = input.Byte();
        chunks.emplace_back(size == 0xFF ? input.RestAsText() : input.TakeText(size));
    }
    return chunks;
}

bool IsFraming(std::string_view chunk) {
    if (chunk.size() < 7) return false;
    const std::string ends = std::string(chunk.substr(0, 3)).append(chunk.substr(chunk.size() - 3));
    uint8_t sum = 0;
    for (const char each : ends) sum = static_cast<uint8_t>(sum + static_cast<uint8_t>(each));
    return sum == 0;
}

// Returns the bytes that must reach the printer.
std::string Expected(const std::vector<std::string>& chunks, const Choices& choices,
                     const std::string& header) {
    std::string out;
    bool first = choices.FirstChunk();
    bool headerPending = choices.HeaderPending();
    bool patchPending = choices.SwitchPending() && choices.SwitchQueued();
    const std::string_view command = choices.Switch();
    for (std::string chunk : chunks) {
        if (first && IsFraming(chunk)) continue;
        first = false;
        size_t patchFrom = 0;
        const size_t comment = chunk.find(kComment);
        if (headerPending && comment < chunk.find('\0')) {
            chunk.insert(comment, header);
            patchFrom = comment + header.size();
            headerPending = false;
        }
        const size_t match = chunk.find(command, patchFrom);
        if (patchPending && match != std::string::npos) {
            chunk.replace(match + 3, command.size() - 4, std::to_string(choices.resolutionCode));
            patchPending = false;
        }
        out += chunk;
    }
    REQUIRE(g_bHeaderPending == headerPending);
    REQUIRE(g_bFirstChunk == first);
    REQUIRE((g_resolutionSwitch.pending && g_resolutionSwitch.queued) == patchPending);
    return out;
}

}  // namespace

void FuzzOutputCallback(std::span<const uint8_t> input) {
    FuzzInput bytes(input);
    const Choices choices(bytes);
    const std::vector<std::string> chunks = ChunksOf(bytes);
    FuzzInstallation().WriteSettings("");
    FuzzPrinter printer;
    PDEV pdev = {};
    pdev.devmode = plain::ValidDeviceMode();
    pdev.hPrinter = printer.Handle();

    SetUpJob(choices);
    REQUIRE(WriteJobHeader(pdev));
    REQUIRE(g_pThumbnail == nullptr);
    const std::string header = std::move(printer.Written());
    printer.Written().clear();

    SetUpJob(choices);
    PDEV* current = &pdev;
    for (const std::string& chunk : chunks) {
        const std::vector<uint8_t> block(chunk.begin(), chunk.end());  // ends where the chunk ends
        const uint8_t none = 0;
        const uint8_t* data = block.empty() ? &none : block.data();
        REQUIRE(JobOutputCallback(data, static_cast<uint32_t>(block.size()), &current) == 1);
    }
    REQUIRE(printer.Written() == Expected(chunks, choices, header));
    REQUIRE((g_pThumbnail != nullptr) ==
            (choices.Thumbnail() && g_bHeaderPending == choices.HeaderPending()));
    free(g_pThumbnail);
    g_pThumbnail = nullptr;
}

Seeds OutputCallbackSeeds() {
    const std::string opening = "\x1B%-12345X@PJL\n@PJL COMMENT \"engine\"\n@PJL ENTER LANGUAGE=X\n";
    const std::string framing("FRMSTANDIN\1\0\x1A", 13);
    const auto chunk = [](const std::string& bytes) { return static_cast<char>(bytes.size()) + bytes; };
    return {
        "\x3F\3" + chunk(framing) + chunk(opening) + chunk("rows \x1B*o0M rows") + chunk("\x1B*o0M"),
        "\x1F\xFF" + chunk("\x1B*o-1M") + chunk(opening) + chunk("x\x1B*o-1My\x1B*o-1M"),
        "\x3D\x80" + chunk(opening.substr(0, 20)) + chunk(opening.substr(20)) + chunk("") + "\xFF" + opening,
        std::string("\x01\x00\x14"
                    "a\0@PJL COMMENT twice",
                    23) +
            chunk(opening),
    };
}

}  // namespace orvex::fuzz
