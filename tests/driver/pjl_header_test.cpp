#include "driver/job_output.h"

#include "tests/driver/job_output_fixture.h"
#include "tests/kit/picture.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using PjlHeader = JobOutputTest;

TEST_F(PjlHeader, IsInsertedBeforeTheCommentOnce) {
    Begin();
    EXPECT_EQ(Written("before" + std::string(kComment) + "after"), "before" + Header() + kComment + "after");
    EXPECT_EQ(writes, 1 + 21 + 1);           // one for the bytes before, one a line, one for the rest
    EXPECT_EQ(Written(kComment), kComment);  // only once a job
}

TEST_F(PjlHeader, IsTheFirstWriteIfNothingIsBeforeTheComment) {
    Begin();
    Written(kComment);
    EXPECT_EQ(writes, 21 + 1);
}

TEST_F(PjlHeader, StaysPendingUntilAChunkHasTheComment) {
    Begin();
    EXPECT_EQ(Written("@PJL COMMEN"), "@PJL COMMEN");
    EXPECT_EQ(Written("T"), "T");
    EXPECT_EQ(Written(kComment), Header() + kComment);
}

TEST_F(PjlHeader, IsNotInsertedBeforeACommentAfterAZeroByte) {
    Begin();
    const std::string hidden = std::string("a\0", 2) + kComment;
    EXPECT_EQ(Written(hidden), hidden);
    EXPECT_EQ(Written(kComment + std::string("\0tail", 5)), Header() + kComment + std::string("\0tail", 5));
}

TEST_F(PjlHeader, IsNotInsertedBeforeACommentThatTheChunkCutsOff) {
    Begin();
    const std::string text = "@PJL COMMENT";
    Printer().written.clear();
    EXPECT_EQ(engine.output(reinterpret_cast<const uint8_t*>(text.data()), 11, engine.context), 1);
    EXPECT_EQ(Printer().written, "@PJL COMMEN");
}

TEST_F(PjlHeader, ContainsEverySetting) {
    DeviceMode mode = Mode();
    mode.pub.dmCopies = 12;
    mode.pub.dmCollate = 1;
    mode.priv.jobCapture = 1;
    mode.priv.noPrint = 1;
    mode.priv.alignment = 2;
    mode.priv.colorMode = 2;
    mode.priv.overspray = 3;
    mode.priv.kws_fullwidth = 1;
    mode.priv.purgeBar = 2;
    mode.priv.purgeDots = 10;
    mode.priv.purgeGap = 15;
    mode.priv.purgeFreq = 20;
    mode.priv.kws = 1;
    mode.priv.stitched = 1;
    mode.priv.phHOffset = -1000;
    mode.priv.phVOffset = -250;
    Begin(mode);
    EXPECT_THAT(
        Written(kComment),
        StartsWith("@PJL SET COPIES=12\n@PJL SET COLLATE=1\n@PJL SET ORIGX=354\n@PJL SET ORIGY=472\n"
                   "@PJL SET JOBCAPTURE=1\n@PJL SET NOPRINT=1\n@PJL SET ALIGN=2\n@PJL SET COLORMODE=2\n"
                   "@PJL SET OVERSPRAY=3\n@PJL SET FULLWIDTH=1\n@PJL SET PURGEBAR=2\n@PJL SET PURGEDOTS=10\n"
                   "@PJL SET PURGEGAP=15\n@PJL SET PURGEFREQ=20\n@PJL SET KWS=1\n@PJL SET STITCHED=1\n"
                   "@PJL SET PHOFFSET=-1000\n@PJL SET TOFOFFSET=-250\n@PJL SET HPRES=3\n"));
}

TEST_F(PjlHeader, ContainsChunksOnlyWhenTheInstallationShowsThem) {
    installation.Write("settings.inf", "[UI]\nShow_Chunked=1\n");
    DeviceMode mode = Mode();
    mode.priv.chunksize = 77;
    Begin(mode);
    EXPECT_THAT(Written(kComment),
                HasSubstr("@PJL SET TOFOFFSET=0\n@PJL SET CHUNKPAGES=10000\n@PJL SET HPRES="));
    EXPECT_EQ(writes, 22 + 1);
    Session().EndDoc(Current());
    mode.priv.chunkActive = 1;
    Begin(mode);
    EXPECT_THAT(Written(kComment), HasSubstr("@PJL SET CHUNKPAGES=77\n"));
    Session().EndDoc(Current());
    installation.Write("settings.inf", "[UI]\nShow_Chunked=0\n");
    Begin(mode);
    EXPECT_THAT(Written(kComment), Not(HasSubstr("CHUNKPAGES")));
}

TEST_F(PjlHeader, ContainsTheResolutionCodeAsASignedByte) {
    installation.Write(
        "profiles/test.zvp",
        ReadBytes(installation.Path() / "profiles/test.zvp").replace(12 + 3 + 3 + 12 + 3, 1, "\xFF"));
    Begin();
    EXPECT_THAT(Written(kComment), HasSubstr("@PJL SET HPRES=-1\n"));
}

TEST_F(PjlHeader, FailsAtOnceAndStaysPendingWhenANumericLineIsLost) {
    for (const int nth : {1, 2, 10, 20}) {
        Begin();
        Written("first");
        PrintSpooler().FailCall("WritePrinter", nth, ERROR_DISK_FULL);
        Written("before" + std::string(kComment), 0);
        EXPECT_EQ(writes, nth);
        EXPECT_EQ(Written(kComment), Header() + kComment);
        Session().EndDoc(Current());
    }
}

TEST_F(PjlHeader, IsCompleteWithoutALostJobName) {
    Begin();
    PrintSpooler().FailCall("WritePrinter", 20, ERROR_DISK_FULL);
    EXPECT_THAT(Written(kComment),
                AllOf(Not(HasSubstr("JOB NAME")), HasSubstr("PROFILE"), HasSubstr(kComment)));
}

TEST_F(PjlHeader, FailsWhenTheProfileLineIsLost) {
    Begin();
    PrintSpooler().FailCall("WritePrinter", 21, ERROR_DISK_FULL);
    Written(kComment, 0);
    EXPECT_EQ(writes, 21);
    EXPECT_THAT(Written(kComment), HasSubstr("PROFILE"));
}

TEST_F(PjlHeader, EndsWithTheThumbnail) {
    installation.Write("settings.inf", "[Driver]\nAdd_Thumb=1\nthumb_max_width=100\nthumb_max_height=100\n");
    Begin();
    SetPixel(*Current().Surface(), 0, 0, 0x000000);
    std::string header;
    SendPage([&] {
        header = Written(kComment);
        EXPECT_EQ(writes, 21 + 3 + 1);
    });
    const std::string opening = Header() + "@PJL SET QRV_THUMBNAIL=\"";
    ASSERT_THAT(header, StartsWith(opening));
    const size_t end = header.find('"', opening.size());
    EXPECT_EQ(header.substr(end), std::string("\"\n") + kComment);
    const Picture picture = DecodePicture(DecodeBase64(header.substr(opening.size(), end - opening.size())));
    EXPECT_EQ(picture.width, kWidthPx / 8);  // 472 is halved until it is at most 100
    EXPECT_EQ(picture.height, kHeightPx / 8);
    EXPECT_THAT(LogLines(), Not(Contains("[Info]  Clearing thumbnail as not used!")));
}

TEST_F(PjlHeader, FailsOnlyOverTheClosingQuoteOfTheThumbnail) {
    installation.Write("settings.inf", "[Driver]\nAdd_Thumb=1\n");
    struct Case {
        int lost;
        int32_t result;
    };
    for (const Case& item : {Case{21, 1}, {22, 1}, {23, 1}, {24, 0}}) {
        Begin();
        SendPage([&] {
            PrintSpooler().FailCall("WritePrinter", item.lost, ERROR_DISK_FULL);
            Written(kComment, item.result);
        });
        Session().EndDoc(Current());
    }
}

TEST_F(PjlHeader, HasNoThumbnailOfAnEarlierPage) {
    installation.Write("settings.inf", "[Driver]\nAdd_Thumb=1\n");
    Begin();
    LogLines();
    ASSERT_TRUE(Session().SendPage(Current()));
    EXPECT_THAT(LogLines(), Contains("[Info]  Clearing thumbnail as not used!"));
    EXPECT_THAT(Written(kComment), Not(HasSubstr("THUMBNAIL")));
}

}  // namespace orvex
