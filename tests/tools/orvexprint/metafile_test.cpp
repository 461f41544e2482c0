#include "tools/orvexprint/metafile.h"

#include <gmock/gmock.h>

#include "tests/tools/common/made_metafile.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/orvexprint/metafile_page.h"
#include "tools/orvexprint/spool_file.h"

namespace orvex::tools::print {

namespace {

// A frame of 50 mm x 30 mm, recorded for a screen.
constexpr MadeMetafile::Frame kFrame = {1000, 2000, 6000, 5000};
constexpr MadeMetafile::DeviceSize kScreen = {1920, 1080, 508, 286};

ByteSpan Bytes(const std::string& file) {
    return {reinterpret_cast<const uint8_t*>(file.data()), file.size()};
}

std::string Complaint(const std::string& file) {
    return ThrownText<PageError>([&] { ReadMetafile(Bytes(file)); });
}

std::string WithNumber(std::string file, size_t offset, uint32_t number) {
    return file.replace(offset, 4, ByteMaker().U32(number).Bytes());
}

}  // namespace

TEST(Metafile, HasTheSizeOfItsFrame) {
    const std::string file = MadeMetafile(kFrame, kScreen).Bar(0, 0, 5, 5).File();
    EXPECT_TRUE(IsMetafile(Bytes(file).first(64)));
    const Metafile metafile = ReadMetafile(Bytes(file));
    EXPECT_EQ(metafile.bytes.size(), file.size());
    const PictureSize size = SizeOf(metafile, 600);
    EXPECT_EQ(size.width, 1181u);
    EXPECT_EQ(size.height, 709u);
    EXPECT_DOUBLE_EQ(size.width / size.density->x, 0.05);
    EXPECT_DOUBLE_EQ(size.height / size.density->y, 0.03);
    EXPECT_EQ(SizeOf(metafile, 1).width, 2u) << "a size is never 0";
}

TEST(Metafile, EndsWhereItsHeaderSays) {
    const std::string file = MadeMetafile(kFrame, kScreen).File();
    const std::string padded = file + "padding";
    EXPECT_EQ(ReadMetafile(Bytes(padded)).bytes.size(), file.size());
    EXPECT_EQ(Complaint(file.substr(0, file.size() - 1)),
              "is damaged: its header says 128 bytes, and there are 127");
}

TEST(Metafile, IsRefusedWhenItIsDamaged) {
    MadeMetafile made(kFrame, kScreen);
    const size_t bar = made.NextAt();
    const std::string file = made.Bar(0, 0, 5, 5).Comment("1234").File();
    EXPECT_EQ(Complaint("no metafile"), "is no enhanced metafile");
    EXPECT_EQ(Complaint(WithNumber(file, 40, 0)), "is no enhanced metafile");
    EXPECT_EQ(Complaint(file.substr(0, 60)), "is no enhanced metafile");
    EXPECT_EQ(Complaint(WithNumber(file, 48, 87)),
              "is damaged: its header says 87 bytes, and there are " + std::to_string(file.size()));
    EXPECT_EQ(Complaint(WithNumber(file, 32, 1000)), "has an empty frame, so that its size is not known");
    const std::string barName = "is damaged: record 2 at offset " + std::to_string(bar) + " has a size of ";
    for (const uint32_t size : {0u, 4u, 102u, 4000u, 0xFFFFFFFCu}) {
        EXPECT_EQ(Complaint(WithNumber(file, bar + 4, size)), barName + std::to_string(size) + " bytes");
    }
    EXPECT_EQ(Complaint(WithNumber(file, 48, static_cast<uint32_t>(file.size() - 20))),
              "is damaged: it has no end record");
    const size_t comment = file.size() - 20 - 16;
    EXPECT_EQ(Complaint(WithNumber(file, comment + 8, 5)),
              "is damaged: record 3 at offset " + std::to_string(comment) + " is a comment past its end");
}

TEST(Metafile, HasFontsInItsComments) {
    MadeMetafile made(kFrame, kScreen);
    made.Comment("").Comment("short").Comment("a private comment of some program");
    const size_t comment = made.NextAt();
    made.Comment(FontComment(2, "twelve bytes") + "7 bytes");
    const std::string file = made.File();
    const Metafile metafile = ReadMetafile(Bytes(file));
    ASSERT_EQ(metafile.embedded.size(), 1u);
    EXPECT_EQ(metafile.embedded[0].id, 2u);
    EXPECT_EQ(metafile.embedded[0].offset, comment + 20);
    EXPECT_EQ(metafile.embedded[0].data.size(), 12u);
}

TEST(Metafile, SaysThatOnlyGdiPlusDrawsIt) {
    const auto plusOnly = [](uint16_t type, uint16_t flags) {
        const std::string comment = ByteMaker().Text("EMF+").U16(type).U16(flags).Zeros(24).Bytes();
        const std::string file = MadeMetafile(kFrame, kScreen).Comment(comment).File();
        return ReadMetafile(Bytes(file)).plusOnly;
    };
    EXPECT_TRUE(plusOnly(0x4001, 0));
    EXPECT_FALSE(plusOnly(0x4001, 1)) << "drawn twice, once by GDI";
    EXPECT_FALSE(plusOnly(0x4002, 0));
}

TEST(FrameOnPage, IsWhereThePageWasDrawn) {
    // A printer of 30.2 mm x 40.4 mm says that it has 30 mm x 40 mm.
    const std::string file = MadeMetafile({0, 0, 3000, 4000}, {357, 477, 30, 40}).File();
    const Metafile metafile = ReadMetafile(Bytes(file));
    const RECT same = FrameOnPage(metafile, 357, 477, 300);
    EXPECT_EQ(same.right, 357) << "to the pixel, whatever the frame says";
    EXPECT_EQ(same.bottom, 477);
    const RECT other = FrameOnPage(metafile, 714, 954, 600);
    EXPECT_EQ(other.right, 709) << "by its real size";
    EXPECT_EQ(other.bottom, 945);
}

TEST(FrameOnPage, StaysWithinGdisNumbers) {
    const std::string file = MadeMetafile({-2147483647, 0, 2147483647, 1}, {1, 1, 1, 1}).File();
    const RECT frame = FrameOnPage(ReadMetafile(Bytes(file)), 4000, 4000, 600);
    EXPECT_EQ(frame.left, -(1 << 27));
    EXPECT_EQ(frame.right, 1 << 27);
}

TEST(FrameAt, IsTheSamePlaceWhenThePageIsTurned) {
    const PagePlacing placing = {
        .pageWidth = 300, .pageHeight = 400, .dpi = 300, .untaggedDpi = 300, .turning = Turning::kToFit};
    const PictureSize size = {350, 100, PixelDensity{300 / 0.0254, 300 / 0.0254}};
    const PagePlace place = FindPlace(size, placing);
    ASSERT_TRUE(place.turned);
    EXPECT_EQ(place.left, 100u);
    EXPECT_EQ(place.top, 25u);
    const RECT frame = FrameAt(size, placing, place);  // on a page of 400 x 300
    EXPECT_EQ(frame.left, 25);
    EXPECT_EQ(frame.top, 100);
    EXPECT_EQ(frame.right, 375);
    EXPECT_EQ(frame.bottom, 200);
}

TEST(FrameAt, IsNotReducedByThePixelThatThePageCutsOff) {
    const PagePlacing placing = {.pageWidth = 300, .pageHeight = 400, .dpi = 300, .untaggedDpi = 300};
    const PictureSize size = {301, 100, PixelDensity{300 / 0.0254, 300 / 0.0254}};
    const PagePlace place = FindPlace(size, placing);
    EXPECT_EQ(place.Width(), 300u);
    EXPECT_EQ(FrameAt(size, placing, place).right, 301);
}

}  // namespace orvex::tools::print
