#include "tools/orvexprint/spool_file.h"

#include <gmock/gmock.h>

#include "tests/tools/common/made_metafile.h"
#include "tests/tools/common/thrown_text.h"

namespace orvex::tools::print {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

// Returns a small page that is told apart by the width of its frame.
std::string PageOf(int32_t width) {
    return MadeMetafile({0, 0, width, 100}, {100, 100, 10, 10}).File();
}

// Returns a device mode of this size by its own fields, told apart by its first letter.
std::string ModeOf(char letter, size_t size = 220, size_t extra = 4) {
    ByteMaker mode;
    mode.Text(std::string(1, letter)).Zeros(67).U16(size).U16(extra);
    return mode.Zeros(size + extra < mode.Size() ? 0 : size + extra - mode.Size()).Bytes();
}

ByteSpan Bytes(const std::string& file) {
    return {reinterpret_cast<const uint8_t*>(file.data()), file.size()};
}

std::string Complaint(const std::string& file) {
    return ThrownText<SpoolError>([&] { ReadSpoolFile(Bytes(file)); });
}

std::string TextOf(ByteSpan bytes) {
    return {bytes.begin(), bytes.end()};
}

// Returns the pages as the widths of their frames, with the letters of their device modes.
std::vector<std::string> PagesOf(const SpoolFile& file) {
    std::vector<std::string> pages;
    for (const SpoolPage& page : file.pages) {
        pages.push_back(std::to_string(Number32(page.metafile, 32)) + " " +
                        (page.deviceMode.empty() ? '-' : static_cast<char>(page.deviceMode[0])));
    }
    return pages;
}

}  // namespace

TEST(SpoolFile, HasNamesAndPagesWithTheirDeviceModes) {
    MadeSpoolFile made("Two labels", "LPT1:");
    made.Page(PageOf(1));
    made.DeviceMode(ModeOf('A'));
    made.Page(PageOf(2));
    made.Page(PageOf(3));
    made.DeviceMode(ModeOf('B'));
    made.Page(PageOf(4));
    const SpoolFile file = ReadSpoolFile(Bytes(made.File()));
    EXPECT_EQ(file.document, "Two labels");
    EXPECT_EQ(file.output, "LPT1:");
    EXPECT_THAT(PagesOf(file), ElementsAre("1 -", "2 A", "3 A", "4 B"));
    EXPECT_TRUE(file.firstDeviceMode.empty());
    EXPECT_THAT(file.leftOut, IsEmpty());
}

TEST(SpoolFile, PrintsInTheOrderOfItsOffsetRecords) {
    MadeSpoolFile made("", "");
    made.DeviceMode(ModeOf('A'));
    const size_t first = made.Record(12, PageOf(1));
    made.DeviceMode(ModeOf('B'));
    const size_t second = made.Record(9, PageOf(2));
    made.PointBack(13, second);
    made.PointBack(14, first);
    made.PointBack(13, second);
    const SpoolFile file = ReadSpoolFile(Bytes(made.File()));
    EXPECT_THAT(PagesOf(file), ElementsAre("2 B", "1 B", "2 B"));
}

TEST(SpoolFile, HasADeviceModeBetweenEachPageAndItsOffsetRecordAsWindowsWritesIt) {
    MadeSpoolFile made("", "");
    const size_t first = made.Record(12, PageOf(1));
    made.DeviceMode(ModeOf('A'));
    made.PointBack(14, first);
    const size_t second = made.Record(12, PageOf(2));
    made.DeviceMode(ModeOf('B'));
    made.PointBack(14, second);
    const SpoolFile file = ReadSpoolFile(Bytes(made.File()));
    ASSERT_FALSE(file.firstDeviceMode.empty());
    EXPECT_EQ(file.firstDeviceMode[0], 'A');
    EXPECT_THAT(PagesOf(file), ElementsAre("1 A", "2 B"));
    EXPECT_THAT(file.leftOut, IsEmpty());
}

TEST(SpoolFile, OfOldSystemsPrintsItsPagesWhereTheyAre) {
    MadeSpoolFile made("", "");
    for (const uint32_t id : {1u, 9u, 10u, 11u}) made.Record(id, PageOf(static_cast<int32_t>(id)));
    EXPECT_THAT(PagesOf(ReadSpoolFile(Bytes(made.File()))), ElementsAre("1 -", "9 -", "10 -", "11 -"));
}

TEST(SpoolFile, KeepsDeviceModesAsTheyAreStored) {
    MadeSpoolFile made("", "");
    const std::string odd = ModeOf('A', 72, 1) + "beyond";  // 79 bytes
    made.DeviceMode(odd);
    made.Page(PageOf(1));
    EXPECT_EQ(TextOf(ReadSpoolFile(Bytes(made.File())).pages[0].deviceMode), odd);
}

TEST(SpoolFile, BeginsWithTheFirstOfTwoDeviceModes) {
    MadeSpoolFile made("", "");
    made.DeviceMode(ModeOf('A'));
    made.DeviceMode(ModeOf('B'));
    made.Page(PageOf(1));
    made.DeviceMode(ModeOf('C'));
    made.Page(PageOf(2));
    const SpoolFile file = ReadSpoolFile(Bytes(made.File()));
    EXPECT_EQ(file.firstDeviceMode[0], 'A');
    EXPECT_THAT(PagesOf(file), ElementsAre("1 B", "2 C"));
}

TEST(SpoolFile, IsRefusedIfADeviceModeIsLongerThanItsRecord) {
    const auto complaint = [](const std::string& mode) {
        MadeSpoolFile made("", "");
        made.DeviceMode(mode);
        made.Page(PageOf(1));
        return Complaint(made.File());
    };
    EXPECT_EQ(complaint(ModeOf('A').substr(0, 223)),
              "is damaged: the device mode EMRI_DEVMODE at offset 24 has 223 bytes, and is said to have 224");
    EXPECT_EQ(complaint("short"),
              "is damaged: the device mode EMRI_DEVMODE at offset 24 has 5 bytes, and is said to have none");
}

TEST(SpoolFile, HasTheFontsOfItsPages) {
    MadeSpoolFile made("", "");
    MadeMetafile page({0, 0, 100, 100}, {100, 100, 10, 10});
    const size_t comment = page.NextAt();
    page.Comment(FontComment(2, FontData("font one")));
    const size_t content = made.Page(page.File());
    made.PointBack(15, content + 8 + comment + 20);
    const std::string two =
        ByteMaker().U32(0).U32(2).U32(5).U32(3).Text("12345").FillUpTo(4).Text("abc").Bytes();
    made.Record(2, two);
    const std::string bytes = made.File();
    const SpoolFile file = ReadSpoolFile(Bytes(bytes));
    ASSERT_EQ(file.fonts.size(), 3u);
    EXPECT_EQ(TextOf(file.fonts[0]), "font one");
    EXPECT_EQ(TextOf(file.fonts[1]), "12345");
    EXPECT_EQ(TextOf(file.fonts[2]), "abc");
    EXPECT_THAT(file.leftOut, IsEmpty());
}

TEST(SpoolFile, SaysWhatIsLeftOut) {
    MadeSpoolFile made("", "");
    made.Record(20, "%!PS");
    made.Page(PageOf(1));
    made.Record(7, "subset");
    made.Record(2, ByteMaker().U32(0).U32(1).U32(9).U32(0).Text("8 bytes.").Bytes());
    made.Record(2, ByteMaker().U32(0).U32(0xFFFFFFFF).Bytes());
    made.PointBack(18, 4);
    made.Record(99, "");
    made.Record(12, PageOf(2));
    made.DeviceMode(ModeOf('A'));
    const std::string bytes = made.File() + "end";
    const SpoolFile file = ReadSpoolFile(Bytes(bytes));
    EXPECT_THAT(
        file.leftOut,
        ElementsAre(
            "the last 3 bytes are no whole record: the file may have been cut",
            "EMRI_PS_JOB_DATA at offset 24 is left out: it is for PostScript printers",
            AllOf(StartsWith("EMRI_SUBSET_FONT at offset "),
                  HasSubstr(" is left out: text in this font is drawn in one that this machine has")),
            HasSubstr("EMRI_ENGINE_FONT at offset "), HasSubstr(" is left out: its files are not within it"),
            AllOf(StartsWith("EMRI_SUBSET_FONT_EXT at offset "), HasSubstr(" points to no font")),
            HasSubstr("an unknown record (99) at offset "), HasSubstr(" is left out: no record prints it"),
            "the last device mode is left out: no page follows it"));
    EXPECT_THAT(file.fonts, IsEmpty());
}

TEST(SpoolFile, SaysMuchOnlyOnce) {
    MadeSpoolFile made("", "");
    made.Page(PageOf(1));
    for (uint32_t i = 0; i < 100; ++i) made.Record(1000 + i, "");
    const SpoolFile file = ReadSpoolFile(Bytes(made.File()));
    EXPECT_EQ(file.leftOut.size(), 21u);
    EXPECT_EQ(file.leftOut.back(), "further records are left out as well");
}

TEST(SpoolFile, IsRefusedIfAPageCannotBeFound) {
    MadeSpoolFile none("", "");
    EXPECT_EQ(Complaint(none.File()), "has no pages");
    EXPECT_EQ(Complaint(none.File() + "\x0C"), "has no whole page: it may have been cut");
    for (const uint64_t back : {0ull, 1ull, 28ull, 0xFFFFFFFFFFFFFFFFull}) {
        MadeSpoolFile made("", "");
        made.Page(PageOf(1));
        const std::string at = std::to_string(made.Size());
        made.Record(13, ByteMaker().U64(back).Bytes());
        EXPECT_EQ(Complaint(made.File()),
                  "is damaged: EMRI_METAFILE_EXT at offset " + at + " points to no page");
    }
    MadeSpoolFile damaged("", "");
    damaged.Page(PageOf(1).substr(0, 120));
    EXPECT_EQ(Complaint(damaged.File()),
              "has a page (EMRI_METAFILE_DATA at offset 24) that is damaged: its header says 128 bytes, and "
              "there are 120");
}

TEST(SpoolFile, IsReadWithoutNamesThatAreNotInItsHeader) {
    for (const uint32_t offset : {8u, 1000u, 0xFFFFFFFFu}) {
        MadeSpoolFile made("Name", "Port");
        made.Page(PageOf(1));
        std::string bytes = made.File();
        bytes.replace(8, 4, ByteMaker().U32(offset).Bytes());
        const SpoolFile file = ReadSpoolFile(Bytes(bytes));
        EXPECT_EQ(file.document, "");
        EXPECT_EQ(file.output, "Port");
        EXPECT_THAT(file.leftOut, ElementsAre("the name of the document is not within the header"));
    }
}

TEST(SpoolFile, IsRefusedIfItsHeaderIsDamaged) {
    MadeSpoolFile made("", "");
    made.Page(PageOf(1));
    for (const uint32_t size : {0u, 15u, 100000u}) {
        std::string bytes = made.File();
        bytes.replace(4, 4, ByteMaker().U32(size).Bytes());
        EXPECT_EQ(Complaint(bytes),
                  "is damaged: its header has a size of " + std::to_string(size) + " bytes");
    }
}

TEST(SpoolFile, OfAnotherKindIsRefusedWithItsName) {
    EXPECT_THAT(Complaint("PK\x03\x04 and so on"), StartsWith("is an XPS spool file; only those with "));
    for (const char* raw : {"\x1B%-12345X@PJL", "%!PS-Adobe", "%PDF-1.7", "@PJL SET", "\x04%!PS"}) {
        EXPECT_THAT(Complaint(raw), StartsWith("is a RAW spool file, which holds what a driver wrote"));
    }
    EXPECT_THAT(Complaint("anything else at all"), StartsWith("is no spool file, or a RAW spool file, "));
    EXPECT_THAT(Complaint(""), StartsWith("is no spool file, or "));
}

}  // namespace orvex::tools::print
