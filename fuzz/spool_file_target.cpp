// Spool files and shadow files: a file is refused with a sentence, or all that was found is within it, every
// page is a metafile that can be read, and every device mode has as many bytes as it says.

#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/tools/common/made_metafile.h"
#include "tests/tools/orvexprint/made_shadow.h"
#include "tools/orvexprint/metafile.h"
#include "tools/orvexprint/shadow_file.h"
#include "tools/orvexprint/spool_file.h"

namespace orvex::fuzz {

using namespace tools::print;
namespace {

enum : uint8_t { kSpoolFile, kShadowFile, kRecords, kKinds };  // what the first byte chooses

std::span<const uint8_t> AsBytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

// Returns a spool file with a sound header and records out of the input.
std::string FileOf(FuzzInput& input) {
    tools::MadeSpoolFile made("Fuzzed", "");
    while (!input.Empty()) {
        const uint32_t id = input.Byte();
        if (id == EMRI_METAFILE_EXT || id == EMRI_ENGINE_FONT_EXT) {
            made.PointBack(id, made.Size() - std::min<size_t>(made.Size(), input.Number<uint16_t>()));
        } else {
            const auto size = input.Number<uint16_t>();
            made.Record(id, std::string(input.TakeText(size)));
        }
    }
    return made.File();
}

bool IsWithin(ByteSpan part, ByteSpan whole) {
    return part.empty() ||
           (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

void CheckDeviceMode(ByteSpan mode, ByteSpan file) {
    REQUIRE(IsWithin(mode, file));
    REQUIRE(mode.empty() || (DeviceModeSize(mode) > 0 && DeviceModeSize(mode) <= mode.size()));
    REQUIRE(mode.empty() || mode.size() >= kLeastDeviceMode);
}

void CheckSpoolFile(ByteSpan bytes) {
    try {
        const SpoolFile file = ReadSpoolFile(bytes);
        REQUIRE(!file.pages.empty());
        REQUIRE(file.leftOut.size() <= 21);
        for (const SpoolPage& page : file.pages) {
            REQUIRE(IsWithin(page.metafile, bytes));
            const Metafile metafile = ReadMetafile(page.metafile);
            for (const SpoolRecord& record : metafile.embedded)
                REQUIRE(IsWithin(record.data, metafile.bytes));
            CheckDeviceMode(page.deviceMode, bytes);
        }
        for (const ByteSpan font : file.fonts) REQUIRE(IsWithin(font, bytes));
    } catch (const SpoolError& error) {
        REQUIRE(*error.what() != '\0');
    }
}

void CheckShadowFile(ByteSpan bytes) {
    try {
        const ShadowFile shadow = ReadShadowFile(bytes);
        CheckDeviceMode(shadow.deviceMode, bytes);
        REQUIRE(shadow.deviceMode.empty() || shadow.deviceMode.size() == kLeastDeviceMode ||
                shadow.deviceMode.size() == DeviceModeSize(shadow.deviceMode));
    } catch (const SpoolError& error) {
        REQUIRE(*error.what() != '\0');
    }
}

std::string Mode() {
    return tools::ByteMaker().Zeros(68).U16(72).U16(8).Zeros(8).Bytes();
}

std::string Page() {
    tools::MadeMetafile page({0, 0, 100, 100}, {100, 100, 10, 10});
    return page.Comment(tools::FontComment(EMRI_ENGINE_FONT, tools::FontData("font"))).Bar(1, 1, 2, 2).File();
}

// Returns a record as FileOf() reads it.
std::string Record(uint32_t id, const std::string& data) {
    return std::string(1, static_cast<char>(id)) + tools::ByteMaker().U16(data.size()).Text(data).Bytes();
}
std::string PointBack(uint32_t id, size_t back) {
    return std::string(1, static_cast<char>(id)) + tools::ByteMaker().U16(back).Bytes();
}

}  // namespace

void FuzzSpoolFile(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    switch (choices.Byte() % kKinds) {
        case kSpoolFile:
            return CheckSpoolFile(choices.Rest());
        case kShadowFile:
            return CheckShadowFile(choices.Rest());
        default:
            CheckSpoolFile(AsBytes(FileOf(choices)));
    }
}

Seeds SpoolFileSeeds() {
    tools::MadeSpoolFile made("Name", "Port");
    made.DeviceMode(Mode());
    const size_t content = made.Page(Page());
    made.PointBack(EMRI_ENGINE_FONT_EXT, content + 8 + 108 + 20);
    made.Record(EMRI_SUBSET_FONT, "subset");
    const std::string pageRecord = Record(EMRI_METAFILE_DATA, Page());
    const size_t back = 8 + (Page().size() + 3) / 4 * 4;
    Seeds seeds = {
        std::string(1, kSpoolFile) + made.File(),
        std::string(1, kRecords) + Record(EMRI_DEVMODE, Mode()) + pageRecord +
            PointBack(EMRI_METAFILE_EXT, back) + Record(EMRI_PS_JOB_DATA, "%!"),
        std::string(1, kRecords) + Record(EMRI_METAFILE, Page()) + Record(EMRI_BW_METAFILE, Page()) +
            Record(EMRI_ENGINE_FONT, tools::FontData("x")),
        std::string(1, kSpoolFile) + "PK\x03\x04",
    };
    const std::string shortMode = tools::ByteMaker().Zeros(68).U16(10).U16(0).Bytes();
    seeds.push_back(std::string(1, kShadowFile) + MakeShadowFile(kShadowKinds[0], "Name", "RAW", shortMode));
    for (const ShadowKind& kind : kShadowKinds)
        seeds.push_back(std::string(1, kShadowFile) + MakeShadowFile(kind, "Name", "NT EMF 1.008", Mode()));
    return seeds;
}

}  // namespace orvex::fuzz
