#include "driver/device_instance.h"
#include "driver/job_state.h"
#include "tests/driver/driver_fixture.h"
#include "tests/driver/plain_header.h"
#include "tests/driver/profiles/profile_bytes.h"
#include "tests/kit/picture.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

class JobOutput : public DriverTest {
  protected:
    // A job that has begun, with its first page; the engine's output callback can be called at will.
    void Begin(const DeviceMode& mode = Mode(), const std::string& title = "My job") {
        device_ = StartPage(mode, title);
    }
    ~JobOutput() override {
        if (device_) Session().EndDoc(*device_);
    }
    Device& Current() { return *device_; }

    // Everything written by one callback, and the number of writes it took.
    std::string Written(std::string_view chunk, int32_t result = 1) {
        Printer().written.clear();
        const int before = PrintSpooler().Calls("WritePrinter");
        EXPECT_EQ(engine.Output(chunk), result);
        writes = PrintSpooler().Calls("WritePrinter") - before;
        return Printer().written;
    }

    void InstallProfileWithoutCode() {
        installation.Write(std::string("profiles/") + kProfile,
                           ProfileBytes(5, TagArea(NameTag("Test colours")), GridColors(&ProfileColor)));
    }

    int writes = 0;

  private:
    std::unique_ptr<Device> device_;
};

}  // namespace

TEST_F(JobOutput, RefusesMissingArguments) {
    Begin();
    EXPECT_EQ(engine.output(nullptr, 1, engine.context), 0);
    const uint8_t data = 'x';
    EXPECT_EQ(engine.output(&data, 1, nullptr), 0);
    PDEV* none = nullptr;
    EXPECT_EQ(engine.output(&data, 1, &none), 0);
    EXPECT_THAT(Printer().written, IsEmpty());
}

TEST_F(JobOutput, SwallowsFramingChunksAtTheStart) {
    Begin();
    // 0x40 + 0x20 + 0x20 and 0x20 + 0x20 + 0x40 are 256 together.
    EXPECT_EQ(Written("\x40\x20\x20_\x20\x20\x40"), "");
    EXPECT_EQ(Written(std::string_view("\x00\x00\x00_\x00\x00\x00", 7)), "");
    EXPECT_EQ(Written("ab"), "ab");
    EXPECT_EQ(Written("\x40\x20\x20_\x20\x20\x40"), "\x40\x20\x20_\x20\x20\x40");  // no longer the first
}

TEST_F(JobOutput, NeverSwallowsAChunkOfSixBytes) {
    Begin();
    EXPECT_EQ(Written("\x40\x20\x20\x20\x20\x40"), "\x40\x20\x20\x20\x20\x40");
}

TEST_F(JobOutput, NeverSwallowsAChunkOfAnotherSum) {
    Begin();
    EXPECT_EQ(Written("\x40\x20\x20_\x20\x20\x41"), "\x40\x20\x20_\x20\x20\x41");
}

TEST_F(JobOutput, PutsTheHeaderBeforeTheComment) {
    Begin();
    EXPECT_EQ(Written("before" + std::string(kComment) + "after"),
              "before" + PlainHeader() + kComment + "after");
    EXPECT_EQ(writes, 1 + 21 + 1);  // a write each for what stands before, for every line and for the rest
    EXPECT_EQ(Written(kComment), kComment);  // once a job
}

TEST_F(JobOutput, WritesNothingWhereNothingStandsBeforeTheComment) {
    Begin();
    Written(kComment);
    EXPECT_EQ(writes, 21 + 1);
}

TEST_F(JobOutput, KeepsTheHeaderPendingUntilAChunkHasTheComment) {
    Begin();
    EXPECT_EQ(Written("@PJL COMMEN"), "@PJL COMMEN");
    EXPECT_EQ(Written("T"), "T");
    EXPECT_EQ(Written(kComment), PlainHeader() + kComment);
}

TEST_F(JobOutput, LooksForTheCommentUpToTheFirstZeroByteOnly) {
    Begin();
    const std::string hidden = std::string("a\0", 2) + kComment;
    EXPECT_EQ(Written(hidden), hidden);
    EXPECT_EQ(Written(kComment + std::string("\0tail", 5)),
              PlainHeader() + kComment + std::string("\0tail", 5));
}

TEST_F(JobOutput, LooksForTheCommentWithinTheChunkOnly) {
    Begin();
    const std::string text = "@PJL COMMENT";
    Printer().written.clear();
    EXPECT_EQ(engine.output(reinterpret_cast<const uint8_t*>(text.data()), 11, engine.context), 1);
    EXPECT_EQ(Printer().written, "@PJL COMMEN");
}

TEST_F(JobOutput, CarriesEverySettingInTheHeader) {
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

TEST_F(JobOutput, CarriesChunksOnlyWhenTheInstallationShowsThem) {
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

TEST_F(JobOutput, PrintsTheResolutionCodeAsASignedByte) {
    installation.Write(
        "profiles/test.zvp",
        ReadBytes(installation.Path() / "profiles/test.zvp").replace(12 + 3 + 3 + 12 + 3, 1, "\xFF"));
    Begin();
    EXPECT_THAT(Written(kComment), HasSubstr("@PJL SET HPRES=-1\n"));
}

TEST_F(JobOutput, FailsAtOnceWhenANumericLineIsLostAndKeepsTheHeaderPending) {
    for (const int nth : {1, 2, 10, 20}) {
        Begin();
        Written("first");
        PrintSpooler().FailCall("WritePrinter", nth, ERROR_DISK_FULL);
        Written("before" + std::string(kComment), 0);
        EXPECT_EQ(writes, nth);
        EXPECT_EQ(Written(kComment), PlainHeader() + kComment);
        Session().EndDoc(Current());
    }
}

TEST_F(JobOutput, DoesNotMindALostJobName) {
    Begin();
    PrintSpooler().FailCall("WritePrinter", 20, ERROR_DISK_FULL);
    EXPECT_THAT(Written(kComment),
                AllOf(Not(HasSubstr("JOB NAME")), HasSubstr("PROFILE"), HasSubstr(kComment)));
}

TEST_F(JobOutput, FailsWhenTheProfileLineIsLost) {
    Begin();
    PrintSpooler().FailCall("WritePrinter", 21, ERROR_DISK_FULL);
    Written(kComment, 0);
    EXPECT_EQ(writes, 21);
    EXPECT_THAT(Written(kComment), HasSubstr("PROFILE"));
}

TEST_F(JobOutput, FailsWhenTheRestOfTheChunkIsLost) {
    Begin();
    Written("first");
    PrintSpooler().FailCall("WritePrinter", 1, ERROR_DISK_FULL);
    Written("second", 0);
    EXPECT_EQ(Written("third"), "third");
}

TEST_F(JobOutput, WritesNothingForAnEmptyChunk) {
    Begin();
    EXPECT_EQ(Written(""), "");
    EXPECT_EQ(writes, 0);
}

TEST_F(JobOutput, PatchesTheResolutionOnce) {
    mask = 3;
    Begin();
    Written(kComment);
    std::string seen;
    engine.onPageStart = [&] {
        seen = Written("head \x1B*o-1M tail");
        EXPECT_EQ(writes, 3);
        EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o-1M");  // once
    };
    LogLines();
    ASSERT_TRUE(Session().SendPage(Current()));
    EXPECT_EQ(seen, "head \x1B*o3M tail");
    EXPECT_THAT(LogLines(), Contains("[Trace] hpres found *o-1"));
}

TEST_F(JobOutput, PatchesTheShorterCommandAt600Dpi) {
    DeviceMode mode = Mode();
    mode.pub.dmPrintQuality = 600;
    Begin(mode);
    Written(kComment);
    engine.onPageStart = [&] { EXPECT_EQ(Written("\x1B*o0M\x1B*o0M"), "\x1B*o6M\x1B*o0M"); };
    ASSERT_TRUE(Session().SendPage(Current()));
}

TEST_F(JobOutput, DoesNotSeeACommandThatStraddlesChunksAndStaysArmed) {
    Begin();
    Written(kComment);
    engine.onPageStart = [&] {
        EXPECT_EQ(Written("x\x1B*o-1"), "x\x1B*o-1");
        EXPECT_EQ(Written("M"), "M");
        EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o3M");
    };
    ASSERT_TRUE(Session().SendPage(Current()));
}

TEST_F(JobOutput, FailsWhenAPieceOfThePatchIsLost) {
    for (const int nth : {1, 2, 3}) {
        Begin();
        Written(kComment);
        engine.onPageStart = [&] {
            PrintSpooler().FailCall("WritePrinter", nth, ERROR_DISK_FULL);
            Written("head \x1B*o-1M tail", 0);
            EXPECT_EQ(writes, nth);
        };
        ASSERT_TRUE(Session().SendPage(Current()));
        engine.onPageStart = nullptr;
        Session().EndDoc(Current());
    }
}

TEST_F(JobOutput, PatchesTheFirstPageWhenTheProfileSetTheCode) {
    Begin();
    engine.onPageStart = [&] { EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o3M"); };
    ASSERT_TRUE(Session().SendPage(Current()));
}

TEST_F(JobOutput, SettlesTheCodeOnTheFirstPageWhenTheProfileSetNone) {
    mask = 3;
    struct Case {
        int16_t dpi;
        const char* command;
        const char* code;
    };
    for (const Case& item : {Case{300, "\x1B*o-1M", "HPRES=-1\n"}, {600, "\x1B*o0M", "HPRES=0\n"}}) {
        InstallProfileWithoutCode();
        DeviceMode mode = Mode();
        mode.pub.dmPrintQuality = item.dpi;
        Begin(mode);
        engine.onPageStart = [&] {
            EXPECT_EQ(Written(item.command), item.command);
            EXPECT_THAT(Written(kComment), HasSubstr(item.code));
        };
        LogLines();
        ASSERT_TRUE(Session().SendPage(Current()));
        EXPECT_THAT(LogLines(), Not(Contains(StartsWith("[Trace] hpres found"))));
        engine.onPageStart = [&] {
            EXPECT_EQ(Written(item.command), item.command);
        };  // patched to what it was
        ASSERT_TRUE(Session().StartPage(Current()));
        LogLines();
        ASSERT_TRUE(Session().SendPage(Current()));
        EXPECT_THAT(LogLines(), Contains(StartsWith("[Trace] hpres found *o")));
        engine.onPageStart = nullptr;
        Session().EndDoc(Current());
    }
}

TEST_F(JobOutput, IsNotPatchedOnceTheNextPageBeganAndReportsTheMiss) {
    Begin();
    ASSERT_TRUE(Session().SendPage(Current()));  // arms the switch, which nothing consumes
    ASSERT_TRUE(Session().StartPage(Current()));
    EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o-1M");
    LogLines();
    ASSERT_TRUE(Session().SendPage(Current()));
    EXPECT_THAT(LogLines(), Contains("[Error] Error: page 2 res missed!!!!!!!!!!!!!!!!!!!"));
}

TEST_F(JobOutput, ReportsNoMissWhereTheCommandWasPatched) {
    Begin();
    ASSERT_TRUE(Session().SendPage(Current()));
    EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o3M");
    ASSERT_TRUE(Session().StartPage(Current()));
    LogLines();
    ASSERT_TRUE(Session().SendPage(Current()));
    EXPECT_THAT(LogLines(), Not(Contains(HasSubstr("res missed"))));
}

TEST_F(JobOutput, CarriesTheThumbnailBehindTheHeader) {
    installation.Write("settings.inf", "[Driver]\nAdd_Thumb=1\nthumb_max_width=100\nthumb_max_height=100\n");
    Begin();
    SetPixel(*Current().Surface(), 0, 0, 0x000000);
    std::string header;
    engine.onPageStart = [&] {
        header = Written(kComment);
        EXPECT_EQ(writes, 21 + 3 + 1);
    };
    ASSERT_TRUE(Session().SendPage(Current()));
    const std::string opening = PlainHeader() + "@PJL SET QRV_THUMBNAIL=\"";
    ASSERT_THAT(header, StartsWith(opening));
    const size_t end = header.find('"', opening.size());
    EXPECT_EQ(header.substr(end), std::string("\"\n") + kComment);
    const Picture picture = DecodePicture(DecodeBase64(header.substr(opening.size(), end - opening.size())));
    EXPECT_EQ(picture.width, kWidthPx / 8);  // 472 is halved until it is at most 100
    EXPECT_EQ(picture.height, kHeightPx / 8);
    EXPECT_THAT(LogLines(), Not(Contains("[Info]  Clearing thumbnail as not used!")));
}

TEST_F(JobOutput, MindsOfTheThumbnailItsClosingQuoteOnly) {
    installation.Write("settings.inf", "[Driver]\nAdd_Thumb=1\n");
    struct Case {
        int lost;
        int32_t result;
    };
    for (const Case& item : {Case{21, 1}, {22, 1}, {23, 1}, {24, 0}}) {
        Begin();
        engine.onPageStart = [&] {
            PrintSpooler().FailCall("WritePrinter", item.lost, ERROR_DISK_FULL);
            Written(kComment, item.result);
        };
        ASSERT_TRUE(Session().SendPage(Current()));
        engine.onPageStart = nullptr;
        Session().EndDoc(Current());
    }
}

TEST_F(JobOutput, DropsAThumbnailThatTheHeaderDidNotTake) {
    installation.Write("settings.inf", "[Driver]\nAdd_Thumb=1\n");
    Begin();
    LogLines();
    ASSERT_TRUE(Session().SendPage(Current()));
    EXPECT_THAT(LogLines(), Contains("[Info]  Clearing thumbnail as not used!"));
    EXPECT_THAT(Written(kComment), Not(HasSubstr("THUMBNAIL")));
}

namespace {

DWORD tick = 0;
DWORD tickStep = 0;

}  // namespace

TEST_F(JobOutput, LogsTheCostOfItsSlowestWrite) {
    Begin();
#ifndef _WIN32
    g_uMaxWriteCost = 0;  // natively the driver is loaded once for all tests
#endif
    const ImportPatch clock(Session().Driver().Module(), "GetTickCount",
                            reinterpret_cast<void*>(+[]() WINAPI -> DWORD { return tick += tickStep; }));
    LogLines();
    tickStep = 1;
    Written(std::string(1000, 'x'));  // the cheapest that is slower than none
    EXPECT_THAT(LogLines(), Contains("[Info]  write: 1us/B"));
    tickStep = 4'000'000;
    Written(std::string(980, 'x') + kComment);  // the whole chunk counts, not only what is written last
    EXPECT_THAT(LogLines(), Contains("[Info]  write: 4000000us/B"));
    Written(std::string(1000, 'x'));  // as slow, no slower
    EXPECT_THAT(LogLines(), IsEmpty());
    Written(std::string(1001, 'x'));
    EXPECT_THAT(LogLines(), IsEmpty());
    tickStep = 4'294'968;  // its microseconds wrap to 704
    Written("x");
    EXPECT_THAT(LogLines(), IsEmpty());
    tickStep = 4'005'000;
    Written(std::string(1000, 'x'));
    EXPECT_THAT(LogLines(), ElementsAre("[Info]  write: 4005000us/B"));
}

}  // namespace orvex
