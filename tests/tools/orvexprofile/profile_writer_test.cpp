#include "tools/orvexprofile/profile_writer.h"

#include <gmock/gmock.h>

#include <cstring>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/orvexprofile/profile_samples.h"

namespace orvex::tools::profile {

namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

TEST(ProfileWriter, AFileBeginsWithItsHeaderAndTags) {
    Profile profile = PaperProfile();
    profile.name = "Ab";
    profile.codes = ResolutionCodes{-1, 7};
    const std::string bytes = EncodeProfile(profile);
    EXPECT_EQ(bytes.substr(0, 25), "ZVC\5" + Number32(39304 + 25) + Number32(0) + '\0' + Number16(13) + '\1' +
                                       Number16(2) + "Ab" + '\2' + Number16(2) + "\xFF\x07");
    EXPECT_EQ(bytes.size(), 39304u + 25);
    EXPECT_EQ(FileSize(profile), bytes.size());
}

TEST(ProfileWriter, ANameOrCodesAloneAreEnough) {
    Profile profile = PaperProfile();
    EXPECT_EQ(EncodeProfile(profile).substr(12, 11), '\0' + Number16(11) + '\1' + Number16(5) + "Paper");
    profile.name.reset();
    profile.codes = ResolutionCodes{1, 2};
    EXPECT_EQ(EncodeProfile(profile).substr(12, 8), '\0' + Number16(8) + Tag(2, "\1\2"));
}

TEST(ProfileWriter, Version5StoresRedFastestAndThe600DpiVariantFirst) {
    const Profile profile = SampleProfile(5);
    const std::string bytes = EncodeProfile(profile);
    const size_t data = bytes.size() - 2 * 4 * 4913;
    const auto entry = [&](size_t variant, size_t place) {
        return bytes.substr(data + 4 * (4913 * variant + place), 4);
    };
    EXPECT_EQ(entry(0, 1), Number32(SampleInks(0x100000, true)));
    EXPECT_EQ(entry(0, 17), Number32(SampleInks(0x001000, true)));
    EXPECT_EQ(entry(0, 289), Number32(SampleInks(0x000010, true)));
    EXPECT_EQ(entry(0, 16), Number32(SampleInks(0xFF0000, true)));
    EXPECT_EQ(entry(1, 4912), Number32(SampleInks(0xFFFFFF, false)));
}

TEST(ProfileWriter, Version3StoresBlueFastestAndWhitesInkAt254) {
    const std::string bytes = EncodeProfile(SampleProfile(3));
    const size_t data = bytes.size() - 0x1000000;
    const auto entry = [&](size_t place) { return bytes.substr(data + 4 * place, 4); };
    EXPECT_EQ(entry(1), Number32(SampleInks(0x000002, true)));
    EXPECT_EQ(entry(128), Number32(SampleInks(0x000200, true)));
    EXPECT_EQ(entry(128 * 128 - 1), Number32(SampleInks(0x00FFFF, true)));
    EXPECT_EQ(entry(128 * 128 * 128 + 128 * 128), Number32(SampleInks(0x020000, false)));
}

TEST(ProfileWriter, Version4StoresPlanesFromYellowToBlack) {
    const std::string bytes = EncodeProfile(SampleProfile(4));
    const size_t plane = 128 * 128 * 128, data = bytes.size() - 0x1000000;
    for (int ink = 0; ink < kInks; ++ink) {
        const size_t place = data + static_cast<size_t>(3 - ink) * plane + 128;
        EXPECT_EQ(static_cast<uint8_t>(bytes[place]), InkAmount(SampleInks(0x000200, true), ink))
            << kInkLetters[ink];
    }
}

// Returns whether the driver's cache has the sample's inks for every color.
bool HasEveryColor(bool at600) {
    std::vector<uint32_t> expected(size_t{1} << 24);
    uint32_t* const inks = expected.data();
    for (uint32_t color = 0; color < 1u << 24; ++color) inks[color] = SampleInks(color, at600);
    return memcmp(g_colorCache, inks, expected.size() * sizeof *inks) == 0;
}

// Returns how many of the stored colors have other inks in the driver's cache than the sample. Each component
// of 254 has those of 255 if every second one is stored.
size_t WrongEntries(int steps, bool at600) {
    size_t wrong = 0;
    std::vector<std::pair<uint32_t, uint32_t>> components;  // as stored, and as sampled
    for (int step = 0; step < steps; ++step) {
        const uint32_t stored = StoredComponent(steps, step);
        components.emplace_back(stored, steps == 128 && stored == 254 ? 255 : stored);
    }
    for (const auto& [red, sampledRed] : components) {
        for (const auto& [green, sampledGreen] : components) {
            for (const auto& [blue, sampledBlue] : components) {
                const uint32_t sampled = ColorIndex(sampledRed, sampledGreen, sampledBlue);
                wrong += g_colorCache[ColorIndex(red, green, blue)] != SampleInks(sampled, at600);
            }
        }
    }
    return wrong;
}

TEST(ProfileWriter, TheDriverReadsBackEveryEntryOfEveryVersion) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Path() / "sample.zvp";
    for (int version = 1; version <= 5; ++version) {
        WriteProfileFile(SampleProfile(version), path);
        for (bool at600 : {true, false}) {
            SCOPED_TRACE(testing::Message()
                         << "version " << version << (at600 ? " at 600 dpi" : " otherwise"));
            LoadAccepted(path, at600 ? PrintVariant::kAt600 : PrintVariant::kOther);
            EXPECT_EQ(g_cacheKind, version);
            if (const int steps = LayoutOf(version).steps; steps == 256) {
                EXPECT_TRUE(HasEveryColor(at600));
            } else {
                EXPECT_EQ(WrongEntries(steps, at600), 0u);
            }
        }
    }
}

TEST(ProfileWriter, TheDriverTakesNamesOfUpTo511Characters) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Path() / "name.zvp";
    Profile profile = PaperProfile();
    profile.name = std::string(511, 'n');
    WriteProfileFile(profile, path);
    EXPECT_EQ(LoadAccepted(path, PrintVariant::kAt600).Name(), profile.name);
    profile.name = std::string(512, 'n');
    EXPECT_THAT([&] { WriteProfileFile(profile, path); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("1 to 511 characters, not 512")));
}

TEST(ProfileWriter, ANewNameIsPrintableAscii) {
    CheckProfileName("Coated paper (2%)~");
    EXPECT_THAT([] { CheckProfileName(""); }, ThrowsMessage<std::invalid_argument>(HasSubstr("not 0")));
    EXPECT_THAT([] { CheckProfileName(std::string(512, 'n')); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("not 512")));
    EXPECT_THAT([] { CheckProfileName("Papier couch\xC3\xA9"); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("printable ASCII")));
    EXPECT_THAT([] { CheckProfileName("two\nlines"); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("printable ASCII")));
}

TEST(ProfileWriter, RefusesProfilesThatTheDriverWouldNotAccept) {
    Profile untagged = PaperProfile();
    untagged.name.reset();
    EXPECT_THAT([&] { EncodeProfile(untagged); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("at least one tag")));

    Profile marked = PaperProfile();
    marked.other[17] = kNotComputed;
    EXPECT_THAT(
        [&] { EncodeProfile(marked); },
        ThrowsMessage<std::invalid_argument>(HasSubstr("entry 17 of the variant for other resolutions")));

    Profile cut = PaperProfile();
    cut.at600.pop_back();
    EXPECT_THAT([&] { EncodeProfile(cut); },
                ThrowsMessage<std::invalid_argument>(
                    HasSubstr("the variant for 600 dpi has 4912 entries instead of 4913")));

    for (int version : {0, 6}) {
        Profile unknown = PaperProfile();
        unknown.version = version;
        EXPECT_THAT([&] { EncodeProfile(unknown); },
                    ThrowsMessage<std::invalid_argument>(HasSubstr("versions 1 to 5, not")));
    }
}

TEST(ProfileWriter, ReplacesAnOlderFileAsAWhole) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Write("old.zvp", "old");
    WriteProfileFile(PaperProfile(), path);
    EXPECT_EQ(ReadBytes(path), EncodeProfile(PaperProfile()));
    Profile broken = PaperProfile();
    broken.at600[0] = kNotComputed;
    EXPECT_THROW(WriteProfileFile(broken, path), std::invalid_argument);
    EXPECT_EQ(ReadBytes(path), EncodeProfile(PaperProfile()));
}

TEST(SampledVariant, NeverContainsTheNotComputedMark) {
    const InkSource full = [](std::span<const uint32_t>, std::span<uint32_t> inks) {
        for (uint32_t& value : inks) value = 0xFFFFFFFF;
    };
    EXPECT_THAT(SampleVariant(5, full), testing::Each(0xFFFFFFFEu));
}

}  // namespace

}  // namespace orvex::tools::profile
