#include "tools/orvexprint/progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace orvex::tools::print {

TEST(Progress, ShowsEachPercentOnceAndClearsItsLine) {
    std::ostringstream out;
    {
        Progress progress(out, true, 12);
        progress.Show(1, 1, 1000);
        progress.Show(1, 10, 1000);
        progress.Show(1, 11, 1000);
        progress.Show(12, 3, 2);
        progress.Show(12, 0, 0);
    }
    EXPECT_EQ(out.str(),
              "\rpage 1 of 12: 0 %\rpage 1 of 12: 1 %\rpage 12 of 12: 100 %\r                    \r");
}

}  // namespace orvex::tools::print
