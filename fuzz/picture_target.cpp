// Pictures of every format that the host reads, PNG, JPEG, BMP and GIF, and metafiles: a file is refused with
// a sentence, or it has a size within the limit, a density if it states one, and every row of its pixels. A
// PNG has the same pixels whether they are read at once or row by row.

#include <sstream>

#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/tools/common/made_metafile.h"
#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/made_pictures.h"
#include "tests/tools/common/png_maker.h"
#include "tools/common/decoded_picture.h"
#include "tools/common/png_reader.h"
#include "tools/orvexprint/metafile.h"

namespace orvex::fuzz {

using namespace tools;
namespace {

constexpr uint64_t kMostPixels = 1 << 14;

// Runs code that may refuse a file. Returns whether it did not.
template <typename Code>
bool Accepts(std::string_view name, Code code) {
    try {
        code();
        return true;
    } catch (const PageError& error) {
        REQUIRE(std::string_view(error.what()).starts_with(name));
        return false;
    }
}

void CheckSize(const PictureSize& size) {
    REQUIRE(size.width > 0 && size.height > 0);
    REQUIRE(!size.density || (size.density->x > 0 && size.density->y > 0));
}

void CheckDecoded(std::span<const uint8_t> file) {
    Accepts("it ", [&] {
        DecodedPicture picture({file.begin(), file.end()}, "it", kMostPixels);
        const PictureSize size = picture.Size();
        CheckSize(size);
        REQUIRE(uint64_t{size.width} * size.height <= kMostPixels);
        REQUIRE(picture.Colors().profile.size() <= file.size());
        std::vector<uint32_t> row(size.width);
        for (uint32_t y = 0; y < size.height; ++y) {
            picture.ReadRow(row.data());
            for (const uint32_t pixel : row) REQUIRE(pixel <= 0xFFFFFF);
        }
    });
}

// Returns the checksum of PNG chunks, bit by bit.
uint32_t Crc32(std::span<const uint8_t> bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

// Corrects the checksums of a PNG's chunks, so that changed chunks are read as well.
std::vector<uint8_t> WithChecksums(std::span<const uint8_t> file) {
    std::vector<uint8_t> mended(file.begin(), file.end());
    constexpr size_t kSignature = 8, kHead = 8, kChecksum = 4;
    for (size_t at = kSignature; mended.size() - at >= kHead + kChecksum;) {
        const size_t size =
            size_t{mended[at]} << 24 | mended[at + 1] << 16 | mended[at + 2] << 8 | mended[at + 3];
        if (size > mended.size() - at - kHead - kChecksum) break;
        const uint32_t crc = Crc32({mended.data() + at + 4, size + 4});
        at += kHead + size;
        for (int shift = 24; shift >= 0; shift -= 8) mended[at++] = static_cast<uint8_t>(crc >> shift);
    }
    return mended;
}

void CheckPng(const std::vector<uint8_t>& file) {
    const std::string bytes(file.begin(), file.end());
    const auto open = [&](size_t windowPixels) {
        return PngReader(std::make_unique<std::istringstream>(bytes), "it", windowPixels);
    };
    std::vector<uint32_t> atOnce, rowByRow;
    const auto room = [](const PngReader& reader) {
        const PictureSize size = reader.Size();
        CheckSize(size);
        return uint64_t{size.width} * size.height <= kMostPixels ? size_t{size.width} * size.height : 0;
    };
    const bool accepted = Accepts("it ", [&] {
        PngReader reader = open(PngReader::kWindowPixels);
        REQUIRE(reader.Colors().profile.size() <= size_t{1} << 24);
        atOnce.resize(room(reader));
        if (!atOnce.empty()) reader.ReadAll(atOnce.data(), reader.Size().width);
    });
    const bool acceptedInRows = Accepts("it ", [&] {
        PngReader reader = open(100);
        rowByRow.resize(room(reader));
        for (size_t at = 0; at < rowByRow.size(); at += reader.Size().width) reader.ReadRow(&rowByRow[at]);
    });
    REQUIRE(accepted == acceptedInRows);
    if (!accepted) return;
    REQUIRE(atOnce == rowByRow);
    for (const uint32_t pixel : atOnce) REQUIRE(pixel <= 0xFFFFFF);
}

void CheckMetafile(std::span<const uint8_t> file) {
    Accepts("", [&] {
        const print::Metafile metafile = print::ReadMetafile(file);
        REQUIRE(metafile.bytes.data() == file.data() && metafile.bytes.size() <= file.size());
        for (const print::SpoolRecord& record : metafile.embedded) {
            REQUIRE(record.offset <= metafile.bytes.size());
            REQUIRE(record.data.size() <= metafile.bytes.size() - record.offset);
        }
        CheckSize(print::SizeOf(metafile, 600));
    });
}

}  // namespace

void FuzzPicture(std::span<const uint8_t> input) {
    const std::vector<uint8_t> file(input.begin(), input.end());  // ends where the file ends
    if (print::IsMetafile(file)) return CheckMetafile(file);
    if (KindOfPicture(file) != PictureKind::kOther) return CheckDecoded(file);
    CheckPng(file);
    if (file.size() >= 8) CheckPng(WithChecksums(file));
}

// Gives a PNG chunks about its colors.
static void AddColors(LodePNGInfo& info) {
    info.gama_defined = 1;
    info.gama_gamma = 45455;
    info.srgb_defined = 1;
    constexpr unsigned char kProfile[] = "profile";
    lodepng_set_icc(&info, "x", kProfile, sizeof kProfile);
}

Seeds PictureSeeds() {
    tools::Picture art(17, 9, 3);
    for (size_t i = 0; i < art.samples.size(); ++i) art.samples[i] = static_cast<uint8_t>(i * i);
    tools::Picture clear(4, 4, 4);
    for (size_t i = 0; i < clear.samples.size(); ++i) clear.samples[i] = static_cast<uint8_t>(i * 5);
    const auto png = [](const PngRecipe& recipe, size_t pixelBytes) {
        std::vector<uint8_t> samples(size_t{recipe.width} * recipe.height * pixelBytes);
        for (size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<uint8_t>(recipe.bitDepth * i * i);
        const std::vector<uint8_t> file = MakePng(recipe, samples);
        return std::string(file.begin(), file.end());
    };
    // Fonts in a comment.
    const std::string fonts = ByteMaker().U32(0).U32(0x544F4E46).U32(1).U32(4).Text("font").Bytes();
    const std::string metafile = MadeMetafile({0, 0, 2540, 5080}, {600, 600, 25, 25})
                                     .Bar(0, 0, 10, 20)
                                     .Text(5, 5, 30, "Sans", "a")
                                     .Comment(fonts)
                                     .File();
    std::string longComment = metafile;  // the size of the comment's data is past its record
    longComment[metafile.find(fonts) - 4] = '\x7F';
    const std::string jpeg = WithJfifDensity(MakeJpeg(art), 1, 300, 300);
    return {jpeg,
            WithSegment(MakeJpeg(art, 50), 0xE1, MakeExif(6, 3000, 3000)),
            WithSegment(jpeg, 0xE2, std::string("ICC_PROFILE\0\1\1profile", 21)),
            MakeJpeg(MakePicture(8, 8, 1, Samples(64, 77))),
            MakeBmp(art, 11811),
            MakeBmp(clear),
            MakeGif(3, 2, {0, 1, 2, 3, 2, 1}, {0xFF0000, 0x00FF00, 0x0000FF, 0x123456}, 1),
            png({.width = 17, .height = 9, .color = LCT_RGB, .densityX = 11811, .densityY = 11811}, 3),
            png({.width = 13, .height = 17, .color = LCT_GREY_ALPHA, .interlaced = true}, 2),
            png({.width = 16, .height = 4, .color = LCT_PALETTE, .bitDepth = 1}, 1),
            png({.width = 3, .height = 2, .color = LCT_RGBA, .bitDepth = 16, .embed = &AddColors}, 8),
            metafile,
            longComment,
            "II*"};
}

}  // namespace orvex::fuzz
