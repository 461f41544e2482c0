#include "tools/orvexview/log_command.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "tests/kit/scratch_folder.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/viewing.h"

namespace orvex::tools::view {
namespace {

using testing::HasSubstr;

constexpr char kLog[] =
    "[2026-11-22 12:00:00.000] [TID: 7] [Trace] <DrvStartDoc>\n"
    "[2026-11-22 12:00:00.060] [TID: 7] [Error] Error: could not start a job\n"
    "[2026-11-22 12:00:00.060] [TID: 7] [Trace] </DrvStartDoc>\n";

class LogCommandTest : public testing::Test {
  protected:
    LogCommandTest() : log_(Utf8FromPath(folder_.Path() / "driver.txt")) {
        WriteWholeFile(PathFromUtf8(log_), std::string_view(kLog));
    }

    int Run(const std::vector<std::string>& arguments) {
        out_.str("");
        error_.str("");
        return RunOrvexView(arguments, out_, error_);
    }

    ScratchFolder folder_;
    std::string log_;
    std::ostringstream out_;
    std::ostringstream error_;
};

TEST_F(LogCommandTest, ShowsTheTree) {
    EXPECT_EQ(Run({"--log", log_}), 0);
    EXPECT_THAT(out_.str(), HasSubstr("60 ms   DrvStartDoc\n"));
}

TEST_F(LogCommandTest, FailsWithErrorsOnlyWhenTheyAreAskedFor) {
    EXPECT_EQ(Run({"--log=" + log_, "--errors"}), 1);
    EXPECT_THAT(out_.str(), HasSubstr("could not start a job"));
}

TEST_F(LogCommandTest, FailsWithErrorsOfTheJobThatIsAskedFor) {
    const std::string sound =
        "[2026-11-22 13:00:00.000] [TID: 9] [Trace] <DrvStartDoc>\n"
        "[2026-11-22 13:00:00.060] [TID: 9] [Trace] </DrvStartDoc>\n";
    WriteWholeFile(PathFromUtf8(log_), std::string_view(kLog + sound));
    EXPECT_EQ(Run({"--log", log_, "--errors", "--job", "1"}), 1);
    EXPECT_EQ(Run({"--log", log_, "--errors", "--job", "2"}), 0);
    EXPECT_EQ(Run({"--log", log_, "--job", "3"}), 1);
    EXPECT_EQ(error_.str(), "orvexview: --job 3: " + log_ + " has 2 jobs\n");
}

TEST_F(LogCommandTest, SaysThatAFileIsNoLog) {
    WriteWholeFile(PathFromUtf8(log_), std::string_view("@PJL\n"));
    EXPECT_EQ(Run({"--log", log_}), 1);
    EXPECT_EQ(error_.str(), "orvexview: " + log_ + " has no line of the driver's log\n");
    WriteWholeFile(PathFromUtf8(log_), std::string_view(""));
    EXPECT_EQ(Run({"--log", log_}), 0) << "nothing has been logged yet";
}

TEST_F(LogCommandTest, TakesTimesInMillisecondsAndSeconds) {
    EXPECT_EQ(Run({"--log", log_, "--slow", "0.06s"}), 0);
    EXPECT_THAT(out_.str(), HasSubstr("DrvStartDoc"));
    EXPECT_EQ(Run({"--log", log_, "--slow", "61ms"}), 0);
    EXPECT_THAT(out_.str(), Not(HasSubstr("DrvStartDoc")));
}

TEST_F(LogCommandTest, RefusesWrongValues) {
    EXPECT_EQ(Run({"--log", log_, "--slow", "soon"}), 2);
    EXPECT_EQ(error_.str(),
              "orvexview: --slow: \"soon\" is not allowed; it takes a time such as 50ms or 1.5s\n");
    EXPECT_EQ(Run({"--log", log_, "--job", "0"}), 2);
    EXPECT_EQ(error_.str(),
              "orvexview: --job: \"0\" is not allowed; it takes the number of a job in the log, from 1\n");
    EXPECT_EQ(Run({"--log", log_, "--json", "--html", "x"}), 2);
}

TEST_F(LogCommandTest, WritesAPageButNotOverTheLog) {
    const std::string page = Utf8FromPath(folder_.Path() / "log.html");
    EXPECT_EQ(Run({"--log", log_, "--html", page}), 0);
    EXPECT_THAT(ReadWholeText(PathFromUtf8(page)), HasSubstr("DrvStartDoc"));
    EXPECT_EQ(out_.str(), page + ": 1 job, 3 lines, 1 error, 0 harmless ones\n");
    EXPECT_NE(Run({"--log", log_, "--html", log_}), 0);
    EXPECT_EQ(ReadWholeText(PathFromUtf8(log_)), kLog);
}

TEST_F(LogCommandTest, NamesALogThatIsNotThere) {
    EXPECT_EQ(Run({"--log", log_ + "x"}), 1);
    EXPECT_THAT(error_.str(), HasSubstr("driver.txtx"));
}

TEST_F(LogCommandTest, TeachesItsOptions) {
    EXPECT_EQ(Run({"--log", "--help"}), 0);
    EXPECT_THAT(out_.str(), HasSubstr("--slow TIME"));
}

}  // namespace
}  // namespace orvex::tools::view
