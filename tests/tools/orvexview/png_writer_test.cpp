#include "tools/orvexview/png_writer.h"

#include <gmock/gmock.h>

#include <random>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/common/png_file.h"

namespace orvex::tools::view {

namespace {

// Flat parts, slopes and noise, so that each filter is the best one of some lines.
Picture MakeArt(uint32_t width, uint32_t height, uint32_t channels) {
    std::mt19937 random(width);
    Picture picture(width, height, channels);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t i = 0; i < width * channels; ++i) {
            const uint32_t kinds[] = {255, i, static_cast<uint32_t>(random()), i * i + y};
            picture.Line(y)[i] = static_cast<uint8_t>(kinds[y % 4]);
        }
    }
    return picture;
}

void ExpectSamples(const std::filesystem::path& path, const Picture& picture) {
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

}  // namespace

TEST(PngWriter, AnotherDecoderReadsThePicture) {
    const ScratchFolder folder;
    for (const uint32_t channels : {1u, 3u}) {
        for (const auto& [width, height] : {std::pair{1u, 1u}, {1u, 9u}, {333u, 40u}, {4000u, 200u}}) {
            const Picture picture = MakeArt(width, height, channels);
            const auto path = folder.Path() / "made.png";
            PngWriter writer(path, width, height, channels, 600);
            writer.TakeLines(picture);
            writer.Complete();
            ExpectSamples(path, picture);
            EXPECT_EQ(LoadPng(path).density->x, 23622) << "600 pixels per inch";
        }
    }
}

TEST(PngWriter, TakesAPictureInParts) {
    const ScratchFolder folder;
    const Picture picture = MakeArt(50, 30, 3);
    PngWriter writer(folder.Path() / "made.png", 50, 30, 3, 300);
    for (const auto& [first, lines] : {std::pair{0u, 1u}, {1u, 20u}, {21u, 9u}}) {
        Picture part(50, lines, 3);
        std::copy_n(picture.At(0, first), part.samples.size(), part.samples.data());
        writer.TakeLines(part);
    }
    writer.Complete();
    ExpectSamples(folder.Path() / "made.png", picture);
}

TEST(PngWriter, LeavesNoFileUnlessItWasCompleted) {
    const ScratchFolder folder;
    { PngWriter(folder.Path() / "made.png", 50, 30, 3, 300).TakeLines(MakeArt(50, 30, 3)); }
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(PngWriter, NamesAFileThatCannotBeWritten) {
    const ScratchFolder folder;
    EXPECT_THAT(ThrownText([&] { PngWriter(folder.Path() / "none" / "made.png", 1, 1, 3, 300); }),
                testing::EndsWith("made.png can't be written: there is no such folder"));
}

// Wine has no /dev/full; view_script_test fills the disk there.
#ifndef _WIN32
TEST(PngWriter, SaysThatTheDiskIsFull) {
    const Picture picture = MakeArt(1000, 500, 3);
    const auto write = [&] {
        PngWriter writer("/dev/full", picture.width, picture.height, 3, 300);
        writer.TakeLines(picture);
    };
    EXPECT_EQ(ThrownText(write), "/dev/full can't be written: there is no space left");
}
#endif

TEST(PngWriter, KnowsItsOwnPictures) {
    const ScratchFolder folder;
    const auto made = folder.Path() / "made.png", other = folder.Path() / "other.png";
    const Picture picture = MakeArt(5, 3, 1);
    PngWriter writer(made, 5, 3, 1, 300);
    writer.TakeLines(picture);
    writer.Complete();
    SavePng(picture, 300, other);
    EXPECT_TRUE(IsWrittenPicture(made));
    EXPECT_FALSE(IsWrittenPicture(other));
    EXPECT_FALSE(IsWrittenPicture(folder.Path() / "none.png"));
    EXPECT_FALSE(IsWrittenPicture(folder.Write("short.png", "\x89PNG")));
}

}  // namespace orvex::tools::view
