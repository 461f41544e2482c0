#ifdef ORVEX_LITTLE_CMS
#include <lcms2.h>

#include <array>
#include <stdexcept>

#include "driver/color/color_cache.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tools/orvexprofile/icc_profile.h"
#include "tools/orvexprofile/ink_treatment.h"
#endif

namespace orvex::fuzz {

// ICC profiles in the profile tool: one that is taken gives a color the same inks alone and among others,
// within the limit. One that is refused gets an error that names its file.

#ifdef ORVEX_LITTLE_CMS

using namespace tools::profile;

namespace {

constexpr RenderingIntent kIntents[] = {RenderingIntent::kPerceptual, RenderingIntent::kRelativeColorimetric,
                                        RenderingIntent::kSaturation, RenderingIntent::kAbsoluteColorimetric};
constexpr uint32_t kColors[] = {0xFFFFFF, 0x000000, 0xFF0000, 0x00FF00, 0x0000FF, 0x808080, 0x123456,
                                0xFEFEFE, 0x010101, 0xC08040, 0x00FFFF, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
constexpr double kLimit = 240, kScale = 50;

void CheckInks(const IccProfile& icc) {
    const InkSource source = Treated(icc.Source(), kLimit, kScale);
    std::array<uint32_t, std::size(kColors)> inks = {};
    source(kColors, inks);
    for (size_t i = 0; i < inks.size(); ++i) {
        uint32_t alone = 0;
        source({&kColors[i], 1}, {&alone, 1});
        REQUIRE(alone == inks[i]);
        REQUIRE(inks[i] != kNotComputed);
        REQUIRE(TotalInk(inks[i]) <= kLimit * kFullAmount / 100 * kScale / 100 + kInks / 2.0);
        REQUIRE(kColors[i] != kWhite || inks[i] == 0);
    }
}

// Returns a printer's profile with a small table for each intent and a description.
std::string PrintersProfile(cmsColorSpaceSignature space, double version) {
    constexpr cmsTagSignature kTables[] = {cmsSigBToA0Tag, cmsSigBToA1Tag, cmsSigBToA2Tag};
    const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, version);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, space);
    cmsSetPCS(profile, cmsSigLabData);
    for (const cmsTagSignature table : kTables) {
        uint16_t corners[8][4] = {};
        for (uint16_t i = 0; i < 32; ++i) corners[i / 4][i % 4] = static_cast<uint16_t>(i * 2100);
        cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, 3, 4);
        cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocCLut16bit(nullptr, 2, 3, 4, corners[0]));
        cmsWriteTag(profile, table, pipeline);
        cmsPipelineFree(pipeline);
    }
    cmsMLU* text = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(text, "en", "US", "A printer");
    cmsWriteTag(profile, cmsSigProfileDescriptionTag, text);
    cmsMLUfree(text);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::string bytes(size, '\0');
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

}  // namespace

void FuzzIcc(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    const uint8_t choice = choices.Byte();
    FuzzInstallation().Write("printer.icc", choices.RestAsText());
    const std::filesystem::path path = FuzzInstallation().Folder() / "printer.icc";
    try {
        const IccProfile icc(path, kIntents[choice % std::size(kIntents)], (choice & 4) != 0);
        CheckInks(icc);
        REQUIRE(icc.Description().find('\0') == std::string::npos);
    } catch (const std::runtime_error& error) {
        REQUIRE(std::string_view(error.what()).find(path.string()) != std::string_view::npos);
    }
}

Seeds IccSeeds() {
    const std::string sound = PrintersProfile(cmsSigCmykData, 2.1);
    std::string screen = PrintersProfile(cmsSigCmykData, 2.1);
    screen.replace(12, 4, "mntr");
    return {
        '\0' + sound,  '\5' + sound,
        '\3' + sound,  '\2' + PrintersProfile(cmsSigCmykData, 4.3),
        '\1' + screen, '\0' + sound.substr(0, sound.size() / 2),
    };
}

#endif

}  // namespace orvex::fuzz
