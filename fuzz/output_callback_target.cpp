// The engine's output on its way to the spooler: however it is cut into chunks, it is written as it comes,
// without leading framing, with the job header before the first comment line and with the value of one
// resolution command replaced.

#include <cstdlib>
#include <cstring>

#include "driver/job_output.h"
#include "driver/job_state.h"
#include "driver/support/text.h"
#include "fuzz/any_device_mode.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/fuzz_printer.h"
#include "fuzz/input.h"
#include "tests/plain/device_mode.h"
#include "tests/plain/job_header.h"
#include "tests/plain/job_output.h"

namespace orvex::fuzz {

namespace {

constexpr char kThumbnail[] = "dGh1bWI=";

// The state of the job before the first chunk, and the facts of its header.
struct Choices {
    explicit Choices(FuzzInput& input)
        : flags(input.Byte()),
          resolutionCode(static_cast<int8_t>(input.Byte())),
          headerFlags(input.Byte()),
          documentName(NameOf(input)) {
        const std::string_view profile = input.TakeText(input.Byte());
        profileName = profile.substr(0, profile.find('\0'));
        if (headerFlags & 2) mode.priv.chunkActive = 1;
        if (headerFlags & 4) SetAnyValues(mode, input);
    }

    bool HeaderPending() const { return flags & 1; }
    bool FirstChunk() const { return flags & 2; }
    bool SwitchPending() const { return flags & 4; }
    bool SwitchQueued() const { return flags & 8; }
    bool Thumbnail() const { return flags & 16; }
    bool ShowsChunks() const { return headerFlags & 1; }
    std::string_view Switch() const {
        return flags & 32 ? kResolutionCommand600Dpi : kResolutionCommandOther;
    }

    // Reads units of a wide text, to be repeated up to eight times, so that a few bytes make a long name.
    static std::vector<WCHAR> NameOf(FuzzInput& input) {
        std::vector<WCHAR> name;
        const size_t units = input.Byte();
        const int times = 1 + input.Byte() % 8;
        for (size_t i = 0; i < units; ++i) name.push_back(input.Number<uint16_t>());
        for (size_t i = 0; i < units * static_cast<size_t>(times - 1); ++i) name.push_back(name[i]);
        name.push_back(0);
        return name;
    }
    WideView DocumentName() const { return {documentName.data(), TextLength(documentName.data())}; }

    uint8_t flags;
    int resolutionCode;  // -128 to 127
    uint8_t headerFlags;
    std::vector<WCHAR> documentName;  // terminated
    std::string profileName;
    DeviceMode mode = plain::ValidDeviceMode();
    static constexpr uint32_t kWidthPx = 1200, kHeightPx = 0xFFFFFFFF;
};

void SetUpJob(const Choices& choices) {
    g_bHeaderPending = choices.HeaderPending();
    g_bFirstChunk = choices.FirstChunk();
    g_cHpres = static_cast<signed char>(choices.resolutionCode);
    g_uMaxWriteCost = 0;
    g_cxSurface = choices.kWidthPx;
    g_cySurface = choices.kHeightPx;
    g_resolutionSwitch = {choices.Switch().data(), static_cast<uint32_t>(choices.Switch().size()),
                          choices.SwitchPending(), choices.SwitchQueued()};
    NarrowText(g_szJobName, sizeof g_szJobName, choices.DocumentName());
    CopyText(g_szProfileName, choices.profileName);
    free(g_pThumbnail);
    g_pThumbnail = choices.Thumbnail() ? strdup(kThumbnail) : nullptr;
    g_cbThumbnail = strlen(kThumbnail);
}

std::string HeaderOf(const Choices& choices) {
    plain::HeaderFacts facts;
    facts.jobName = plain::JobName(choices.DocumentName());
    facts.profileName = choices.profileName;
    facts.resolutionCode = choices.resolutionCode;
    facts.widthPx = choices.kWidthPx;
    facts.heightPx = -1;  // printed as a signed number
    facts.showsChunks = choices.ShowsChunks();
    if (choices.Thumbnail()) facts.thumbnail = kThumbnail;
    return plain::JobHeader(choices.mode, facts);
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

// Returns the bytes that must reach the printer.
std::string Expected(const std::vector<std::string>& chunks, const Choices& choices) {
    plain::JobOutput job = {choices.FirstChunk(), choices.HeaderPending(), choices.SwitchPending(),
                            choices.SwitchQueued(), std::string(choices.Switch())};
    std::string out;
    for (const std::string& chunk : chunks)
        out += job.Spooled(chunk, HeaderOf(choices), choices.resolutionCode);
    REQUIRE(g_bHeaderPending == job.headerPending);
    REQUIRE(g_bFirstChunk == job.firstChunk);
    REQUIRE(g_resolutionSwitch.pending == job.switchPending);
    REQUIRE(g_resolutionSwitch.queued == job.switchQueued);
    return out;
}

}  // namespace

void FuzzOutputCallback(std::span<const uint8_t> input) {
    FuzzInput bytes(input);
    const Choices choices(bytes);
    const std::vector<std::string> chunks = ChunksOf(bytes);
    FuzzInstallation().WriteSettings(choices.ShowsChunks() ? "[UI]\nShow_Chunked=1\n" : "");
    FuzzPrinter printer;
    PDEV pdev = {};
    pdev.devmode = choices.mode;
    pdev.hPrinter = printer.Handle();

    SetUpJob(choices);
    PDEV* current = &pdev;
    for (const std::string& chunk : chunks) {
        const std::vector<uint8_t> block(chunk.begin(), chunk.end());  // ends where the chunk ends
        const uint8_t none = 0;
        const uint8_t* data = block.empty() ? &none : block.data();
        REQUIRE(JobOutputCallback(data, static_cast<uint32_t>(block.size()), &current) == 1);
    }
    REQUIRE(printer.Written() == Expected(chunks, choices));
    REQUIRE((g_pThumbnail != nullptr) ==
            (choices.Thumbnail() && g_bHeaderPending == choices.HeaderPending()));
    free(g_pThumbnail);
    g_pThumbnail = nullptr;
}

Seeds OutputCallbackSeeds() {
    const std::string opening = "\x1B%-12345X@PJL\n@PJL COMMENT \"engine\"\n@PJL ENTER LANGUAGE=X\n";
    const std::string framing("FRMSTANDIN\1\0\x1A", 13);
    const auto chunk = [](const std::string& bytes) { return static_cast<char>(bytes.size()) + bytes; };
    const std::string noNames(4, '\0');
    // Names of several alphabets: a surrogate pair, then half of one; and a name that is too long, repeated.
    const std::string name("\4\0A\0\x3D\xD8\0\xDE\x3D\xD8\5%s\"\nP", 16);
    const std::string longName("\x44\x07", 2);
    std::string units;
    for (int i = 0; i < 0x44; ++i)
        units += std::string(i % 3 == 0 ? "\xE4\0" : i % 3 == 1 ? "\xAC\x20" : "n\0", 2);
    const std::string anyMode = std::string("\7\0\0\0", 4) + InputForFields({{"dmCopies", -1},
                                                                             {"alignment", -300},
                                                                             {"colorMode", 70000},
                                                                             {"kws", -5},
                                                                             {"purgeDots", 40000},
                                                                             {"chunkActive", 2},
                                                                             {"chunksize", -7}});
    return {
        "\x3F\3" + noNames + chunk(framing) + chunk(opening) + chunk("rows \x1B*o0M rows") +
            chunk("\x1B*o0M"),
        "\x1F\xFF\1" + name + "\xFF" + chunk("\x1B*o-1M") + chunk(opening) + chunk("x\x1B*o-1My\x1B*o-1M"),
        "\x3D\x80\3" + longName + units + '\0' + chunk(opening.substr(0, 20)) + chunk(opening.substr(20)) +
            chunk("") + "\xFF" + opening,
        "\x01\x05" + anyMode + chunk(opening),
        std::string("\x01\x00", 2) + noNames +
            std::string("\x14"
                        "a\0@PJL COMMENT twice",
                        21) +
            chunk(opening),
    };
}

}  // namespace orvex::fuzz
