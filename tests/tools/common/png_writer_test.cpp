#include "tools/common/png_writer.h"

#include <gmock/gmock.h>

#include <random>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/common/number_text.h"
#include "tools/common/png_file.h"

namespace orvex::tools {
namespace {

namespace fs = std::filesystem;

// Flat parts, slopes, noise and repeated rows, so that each filter is the best one of some rows.
Picture MakeArt(uint32_t width, uint32_t height, uint32_t channels) {
    std::mt19937 random(width);
    Picture picture(width, height, channels);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t i = 0; i < width * channels; ++i) {
            const uint32_t kinds[] = {255, i, static_cast<uint32_t>(random()), i * i + y};
            picture.Line(y)[i] = static_cast<uint8_t>(kinds[y % 4]);
        }
        if (y % 7 == 6) std::copy_n(picture.At(0, y - 1), picture.Line(y).size(), picture.At(0, y));
    }
    return picture;
}

PngSettings SettingsOf(const Picture& picture) {
    return {
        .width = picture.width, .height = picture.height, .channels = picture.channels, .pixelsPerInch = 600};
}

void WritePng(const fs::path& path, const Picture& picture, const PngSettings& settings) {
    PngWriter writer(path, settings);
    writer.WriteRows(picture);
    writer.Complete();
}

void ExpectSamples(const fs::path& path, const Picture& picture) {
    const RasterImage image = LoadPng(path);
    ASSERT_EQ(image.width, picture.width);
    ASSERT_EQ(image.height, picture.height);
    for (uint32_t y = 0; y < picture.height; ++y) {
        for (uint32_t x = 0; x < picture.width; ++x) {
            const uint8_t* samples = picture.At(x, y);
            const uint32_t expected = picture.channels == 1
                                          ? samples[0] * 0x010101u
                                          : uint32_t{samples[0]} << 16 | samples[1] << 8 | samples[2];
            ASSERT_EQ(image.Row(y)[x], expected) << x << ", " << y;
        }
    }
}

TEST(PngWriter, WritesPicturesThatAreReadBack) {
    const ScratchFolder folder;
    const fs::path path = folder.Path() / "made.png";
    for (const uint32_t channels : {1u, 3u}) {
        for (const auto& [width, height] : {std::pair{1u, 1u}, {1u, 9u}, {333u, 40u}, {4000u, 200u}}) {
            const Picture picture = MakeArt(width, height, channels);
            WritePng(path, picture, SettingsOf(picture));
            ExpectSamples(path, picture);
            EXPECT_EQ(LoadPng(path).density->x, 23622) << "600 pixels per inch";
        }
    }
}

TEST(PngWriter, TakesAPictureInParts) {
    const ScratchFolder folder;
    const Picture picture = MakeArt(50, 30, 3);
    PngWriter writer(folder.Path() / "made.png", SettingsOf(picture));
    for (const auto& [first, lines] : {std::pair{0u, 1u}, {1u, 20u}, {21u, 9u}}) {
        Picture part(50, lines, 3);
        std::copy_n(picture.At(0, first), part.samples.size(), part.samples.data());
        writer.WriteRows(part);
    }
    writer.Complete();
    ExpectSamples(folder.Path() / "made.png", picture);
}

TEST(PngWriter, MarksColorsAsThoseOfSrgbOnlyWhenAsked) {
    const ScratchFolder folder;
    const fs::path path = folder.Path() / "made.png";
    const Picture picture = MakeArt(5, 3, 3);
    PngSettings settings = SettingsOf(picture);
    for (const bool srgb : {false, true}) {
        settings.srgb = srgb;
        WritePng(path, picture, settings);
        EXPECT_EQ(OpenPng(path).Colors().srgb, srgb);
    }
}

TEST(PngWriter, LeavesNoFileUnlessItIsComplete) {
    const ScratchFolder folder;
    const Picture picture = MakeArt(50, 30, 3);
    { PngWriter(folder.Path() / "made.png", SettingsOf(picture)).WriteRows(picture); }
    EXPECT_TRUE(fs::is_empty(folder.Path()));
}

TEST(PngWriter, RefusesARowOfAnotherLength) {
    const ScratchFolder folder;
    PngWriter writer(folder.Path() / "row.png", {.width = 2, .height = 2, .pixelsPerInch = 96});
    for (const unsigned size : {0u, 5u, 7u})
        EXPECT_THROW(writer.WriteRow(std::vector<uint8_t>(size)), std::runtime_error);
}

TEST(PngWriter, NamesAFileThatCannotBeWritten) {
    const ScratchFolder folder;
    EXPECT_THAT(
        ThrownText([&] { PngWriter(folder.Path() / "none" / "made.png", {.width = 1, .height = 1}); }),
        testing::EndsWith("made.png can't be written: there is no such folder"));
}

// Wine has no /dev/full; view_script_test fills the disk there.
#ifndef _WIN32
TEST(PngWriter, SaysThatTheDiskIsFull) {
    const Picture picture = MakeArt(1000, 500, 3);
    EXPECT_EQ(ThrownText([&] { WritePng("/dev/full", picture, SettingsOf(picture)); }),
              "/dev/full can't be written: there is no space left");
}
#endif

TEST(PngWriter, NamesTheProgramThatHasMadeAPicture) {
    const ScratchFolder folder;
    const fs::path made = folder.Path() / "made.png", other = folder.Path() / "other.png";
    const Picture picture = MakeArt(5, 3, 1);
    for (const bool srgb : {false, true}) {
        PngSettings settings = SettingsOf(picture);
        settings.srgb = srgb;
        settings.software = "someprogram";
        WritePng(made, picture, settings);
        EXPECT_TRUE(IsPngMadeBy("someprogram", made));
        EXPECT_FALSE(IsPngMadeBy("someprogra", made));
        EXPECT_FALSE(IsPngMadeBy("program", made));
    }
    ExpectSamples(made, picture);
    WritePng(other, picture, SettingsOf(picture));
    EXPECT_FALSE(IsPngMadeBy("someprogram", other));
    EXPECT_FALSE(IsPngMadeBy("someprogram", folder.Path() / "none.png"));
    EXPECT_FALSE(IsPngMadeBy("someprogram", folder.Write("short.png", "\x89PNG")));
}

}  // namespace
}  // namespace orvex::tools
