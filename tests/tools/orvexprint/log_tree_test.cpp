#include "tests/tools/orvexprint/orvexprint_fixture.h"

namespace orvex::tools::print {
namespace {

using testing::HasSubstr;

using LogTreeTest = OrvexPrintTest;

TEST_F(LogTreeTest, ShowsTheTraceOfThisRunAlone) {
    ASSERT_EQ(Print({"--log", "trace"}), kExitPrinted) << error;
    EXPECT_THAT(out, Not(HasSubstr("DrvSendPage")));
    ASSERT_EQ(Print({"--log", "tree"}), kExitPrinted) << error;
    EXPECT_THAT(out, HasSubstr("Job 1, thread "));
    EXPECT_THAT(out, HasSubstr("   DrvSendPage = TRUE\n"));
    EXPECT_THAT(out, HasSubstr("\n1 job, "));
    EXPECT_THAT(out, HasSubstr(" 0 errors, "));
}

TEST_F(LogTreeTest, IsShownAfterAFailureToo) {
    engine = kRefusingEngine;
    RefusingEngine::refusedRow = 1;
    EXPECT_EQ(Print({"--log", "tree"}), kExitFailed);
    EXPECT_THAT(out, HasSubstr("DrvStartDoc"));
}

TEST_F(LogTreeTest, RefusesOtherWords) {
    EXPECT_EQ(Print({"--log", "leaf"}), kExitUsage);
    EXPECT_THAT(error, HasSubstr("--log: \"leaf\" is not allowed; it takes error, trace or tree"));
}

}  // namespace
}  // namespace orvex::tools::print
