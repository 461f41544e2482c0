#include "tools/orvexprint/progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace orvex::tools::print {

using std::chrono::milliseconds;

namespace {

// Collects what is written, one entry for each write.
class Writes : public std::streambuf {
  public:
    std::vector<std::string> all;

  protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        all.emplace_back(text, static_cast<size_t>(size));
        return size;
    }
    int overflow(int character) override {
        all.emplace_back(1, static_cast<char>(character));
        return character;
    }
};

}  // namespace

TEST(Progress, IsWrittenTenTimesASecondAsOneBlockEach) {
    Writes writes;
    std::ostream out(&writes);
    Progress::Clock::time_point now;
    const auto at = [&now](int ms) { now = Progress::Clock::time_point(milliseconds(ms)); };
    {
        Progress progress(out, true, 12, [&now] { return now; });
        at(5000);
        progress.Show(1, 1, 1000);
        at(5099);
        progress.Show(1, 500, 1000);
        at(5100);
        progress.Show(12, 3, 2);
        at(5101);
        progress.Show(12, 4, 2);
        at(5300);
        progress.Show(2, 10, 1000);
    }
    const std::vector<std::string> expected = {"\rpage 1 of 12: 0 %", "\rpage 12 of 12: 100 %",
                                               "\rpage 2 of 12: 1 %   ", "\r                 \r"};
    EXPECT_EQ(writes.all, expected);
}

TEST(Progress, OfAPageWithoutRowsIsWhole) {
    std::ostringstream out;
    Progress(out, true, 1).Show(1, 0, 0);
    EXPECT_EQ(out.str(), "\rpage 1 of 1: 100 %\r                  \r");
}

TEST(Progress, IsNotShownWithoutATerminal) {
    std::ostringstream out;
    Progress(out, false, 1).Show(1, 1, 2);
    EXPECT_EQ(out.str(), "");
}

}  // namespace orvex::tools::print
