#include "tools/trace/trace_tree.h"

#include <gmock/gmock.h>

#include "tests/tools/trace/traced.h"

namespace orvex::tools::trace {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(TraceTreeTest, NestsOperationsWithDurationsAndResults) {
    Log log;
    log.Trace("<DrvEnablePDEV>").Wait(3).Trace("<FillPDevData>").Info("Surface 709x472").Wait(4);
    log.Trace("Return: TRUE")
        .Trace("</FillPDevData>")
        .Wait(5)
        .Trace("Return: 0000A0")
        .Trace("</DrvEnablePDEV>");
    EXPECT_EQ(TextOf(log),
              "Job 1, thread 7, 2026-11-22\n"
              "12:00:00.000     12 ms   DrvEnablePDEV = 0000A0\n"
              "12:00:00.003      4 ms     FillPDevData = TRUE\n"
              "12:00:00.003                 Surface 709x472\n"
              "\n"
              "1 job, 7 lines, 0 errors, 0 harmless ones\n");
}

TEST(TraceTreeTest, SeparatesInterleavedThreads) {
    Log log;
    log.On(1).Trace("<DrvEnablePDEV>").On(2).Trace("<DrvEnablePDEV>").Info("second");
    log.On(1).Info("first").Trace("</DrvEnablePDEV>").On(2).Trace("</DrvEnablePDEV>");
    const std::string text = TextOf(log);
    EXPECT_LT(text.find("Job 1, thread 1"), text.find("first"));
    EXPECT_LT(text.find("first"), text.find("Job 2, thread 2"));
    EXPECT_LT(text.find("Job 2, thread 2"), text.find("second"));
}

TEST(TraceTreeTest, CountsAJobFromItsSetUpToTheEndOfItsDevice) {
    Log log;
    for (int job = 0; job < 2; ++job) {
        for (const char* hook : {"DrvEnablePDEV", "DrvStartDoc", "DrvEndDoc", "DrvDisablePDEV"})
            log.Hook(hook);
    }
    EXPECT_THAT(TextOf(log), HasSubstr("2 jobs, "));
}

TEST(TraceTreeTest, KeepsADeviceThatIsResetInItsJob) {
    Log log;
    for (const char* hook : {"DrvEnablePDEV", "DrvStartDoc", "DrvEnablePDEV", "DrvResetPDEV",
                             "DrvDisablePDEV", "DrvEndDoc", "DrvDisablePDEV"}) {
        log.Hook(hook);
    }
    EXPECT_THAT(TextOf(log), HasSubstr("1 job, "));
}

TEST(TraceTreeTest, CountsEachDocumentOfOneDevice) {
    Log log;
    for (const char* hook : {"DrvEnablePDEV", "DrvStartDoc", "DrvEndDoc", "DrvStartDoc", "DrvEndDoc"})
        log.Hook(hook);
    EXPECT_THAT(TextOf(log), HasSubstr("2 jobs, "));
}

TEST(TraceTreeTest, CountsJobsOfALogWithoutTheTrace) {
    Log log;
    log.Info("JobId:4 docname:a 0 0").Info("Page: 1").Info("JobId:5 docname:b 0 0").Info("Page: 1");
    EXPECT_THAT(TextOf(log), HasSubstr("2 jobs, "));
}

TEST(TraceTreeTest, FoldsADumpToWhatChanged) {
    Log log;
    log.Trace("<DrvStartDoc>")
        .Trace("pdmIn:")
        .Dump({"dmCopies           = 1", "dmPaperSize        = 256"}, {"dmPaperSize                 = 257"});
    log.Dump({"dmCopies           = 2", "dmPaperSize        = 256"}, {"dmPaperSize                 = 257"});
    log.Dump({"dmCopies           = 2", "dmPaperSize        = 256"}, {"dmPaperSize                 = 257"})
        .Trace("</DrvStartDoc>");
    const std::string text = TextOf(log);
    EXPECT_THAT(text, HasSubstr("pdmIn: dmCopies 1, dmPaperSize 256, private dmPaperSize 257\n"));
    EXPECT_THAT(text, HasSubstr("device mode: dmCopies 1 -> 2\n"));
    EXPECT_THAT(text, HasSubstr("device mode: as before\n"));
}

TEST(TraceTreeTest, GoesOnAfterADumpThatIsCut) {
    Log log;
    log.Trace("<DrvStartDoc>")
        .Trace("pdm:1000 priv:10dc")
        .Trace("<Public-DevMode>")
        .Trace("dmCopies           = 1");
    log.Info("JobId:1 docname:a 0 0").Trace("</DrvStartDoc>");
    const std::string text = TextOf(log);
    EXPECT_THAT(text, HasSubstr("device mode: dmCopies 1 (the dump is cut)\n"));
    EXPECT_THAT(text, HasSubstr("JobId:1"));
}

TEST(TraceTreeTest, MarksErrorsAndExplainsHarmlessOnes) {
    Log log;
    log.Error("Error: could not start a job").Error("GetQRVProfileName [a.zvp] [a]");
    const std::string text = TextOf(log);
    EXPECT_THAT(text, HasSubstr(" ! Error: could not start a job\n"));
    EXPECT_THAT(text, HasSubstr("   GetQRVProfileName [a.zvp] [a] (harmless: the catalogue"));
    EXPECT_THAT(text, HasSubstr("1 error, 1 harmless one\n"));
}

TEST(TraceTreeTest, ClosesAnOperationWhoseEndIsLost) {
    Log log;
    log.Trace("<DrvSendPage>").Trace("<GetDeviceResolution>").Wait(9).Trace("</DrvSendPage>");
    const std::string text = TextOf(log);
    EXPECT_THAT(text, HasSubstr("GetDeviceResolution (its end is not in the log)\n"));
    EXPECT_THAT(text, HasSubstr("     9 ms   DrvSendPage\n"));
    EXPECT_THAT(text, HasSubstr("1 line cut or without their other end"));
}

TEST(TraceTreeTest, DoesNotNestBelowTheLoaderWhichNeverEnds) {
    Log log;
    log.Trace("<DrvStartDoc>")
        .Trace("<zvc_load_profile>")
        .Info("next")
        .Trace("Return: TRUE")
        .Trace("</DrvStartDoc>");
    const std::string text = TextOf(log);
    EXPECT_THAT(text, HasSubstr("DrvStartDoc = TRUE\n"));
    EXPECT_THAT(text, HasSubstr("               zvc_load_profile\n12:00:00.000               next\n"));
    EXPECT_THAT(text, HasSubstr("0 harmless ones\n"));
}

TEST(TraceTreeTest, StartsAfreshWithTheNextHookOfAThread) {
    Log log;
    log.Trace("<DrvSendPage>").Trace("<GetDeviceResolution>").Hook("DrvEndDoc");
    EXPECT_THAT(TextOf(log), HasSubstr("ms   DrvEndDoc\n"));
}

TEST(TraceTreeTest, ShowsAnEndWithoutABeginning) {
    Log log;
    log.Trace("</DrvEnablePDEV>");
    EXPECT_THAT(TextOf(log), HasSubstr("DrvEnablePDEV (its beginning is not in the log)\n"));
}

TEST(TraceTreeTest, KeepsTextThatIsNoLineOfTheLog) {
    Log log;
    log.Trace("<DrvSendPage>").Raw("[2026-11-22 12:0").Raw("").Raw("\x1b[2Jxyz").Trace("</DrvSendPage>");
    const std::string text = TextOf(log);
    EXPECT_THAT(text, HasSubstr("  [2026-11-22 12:0 (not a line of the log)\n"));
    EXPECT_THAT(text, HasSubstr("  \\x1B[2Jxyz (not a line of the log)\n"));
    EXPECT_THAT(text, HasSubstr("2 lines cut"));
}

TEST(TraceTreeTest, HandsOverALongOperationInPieces) {
    std::vector<Node> pieces;
    TraceTree tree([&](JobOfThread, Node&& node) { pieces.push_back(std::move(node)); }, 10'000);
    Log log;
    log.Trace("<DrvSendPage>").Trace("<Inner>");
    for (int line = 0; line < 1000; ++line) log.Info("line");
    log.Wait(5).Trace("</Inner>").Trace("</DrvSendPage>");
    std::istringstream stream(log.Text());
    for (std::string line; std::getline(stream, line);) tree.TakeLine(line);
    tree.Finish();
    ASSERT_GT(pieces.size(), 10u);
    size_t lines = 0;
    for (const Node& piece : pieces) {
        EXPECT_EQ(piece.text, "DrvSendPage");
        if (!piece.children.empty()) lines += piece.children[0].children.size();
    }
    EXPECT_EQ(lines, 1000u);
    EXPECT_EQ(pieces.back().duration, 5);
    EXPECT_EQ(pieces.front().duration, std::nullopt);
}

TEST(TraceTreeTest, SurvivesEndlessNestingAndThreads) {
    Log log;
    for (uint32_t number = 0; number < 3000; ++number) log.On(number).Trace("<a>").On(1).Trace("<b>");
    EXPECT_THAT(TextOf(log), HasSubstr("(nested too deep)"));
}

TEST(TraceTreeTest, CutsALineThatIsTooLong) {
    Log log;
    log.Info(std::string(100'000, 'x')).Info("next");
    const std::string text = TextOf(log);
    EXPECT_LT(text.size(), 10'000u);
    EXPECT_THAT(text, HasSubstr("next"));
}

TEST(TraceTreeTest, ShowsOnlyErrorsWithTheOperationsAroundThem) {
    Log log;
    log.Trace("<DrvStartDoc>")
        .Info("quiet")
        .Trace("<Inner>")
        .Error("Error: bad")
        .Trace("</Inner>")
        .Trace("</DrvStartDoc>");
    log.Hook("DrvEndDoc").Error("ca t:0");
    const std::string text = TextOf(log, {.errors = true});
    EXPECT_THAT(text, HasSubstr("DrvStartDoc\n"));
    EXPECT_THAT(text, HasSubstr("Error: bad\n"));
    EXPECT_THAT(text, Not(testing::AnyOf(HasSubstr("quiet"), HasSubstr("DrvEndDoc"), HasSubstr("ca t"))));
}

TEST(TraceTreeTest, ShowsOnlySlowOperations) {
    Log log;
    log.Trace("<DrvStartDoc>")
        .Trace("<Slow>")
        .Wait(50)
        .Trace("</Slow>")
        .Trace("<Fast>")
        .Wait(49)
        .Trace("</Fast>")
        .Trace("</DrvStartDoc>");
    log.Hook("DrvEndDoc");
    const std::string text = TextOf(log, {.slow = 50});
    EXPECT_THAT(text, HasSubstr("    99 ms   DrvStartDoc\n"));
    EXPECT_THAT(text, HasSubstr("    50 ms     Slow\n"));
    EXPECT_THAT(text, Not(testing::AnyOf(HasSubstr("Fast"), HasSubstr("DrvEndDoc"))));
}

TEST(TraceTreeTest, ShowsOnlyOneJobOrThread) {
    Log log;
    log.On(1).Hook("DrvEnablePDEV").Hook("DrvDisablePDEV").On(2).Hook("DrvEnableSurface");
    EXPECT_THAT(TextOf(log, {.job = 2}), HasSubstr("DrvEnableSurface"));
    EXPECT_THAT(TextOf(log, {.job = 2}), Not(HasSubstr("DrvEnablePDEV")));
    EXPECT_THAT(TextOf(log, {.thread = 1}), Not(HasSubstr("DrvEnableSurface")));
}

}  // namespace
}  // namespace orvex::tools::trace
