#include "tools/orvexview/together.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/tools/common/thrown_text.h"

namespace orvex::tools::view {

TEST(Together, RunsEveryTaskOnce) {
    for (size_t count = 0; count < 40; ++count) {
        std::vector<int> runs(count);
        std::vector<std::function<void()>> tasks;
        for (int& each : runs) tasks.push_back([&each] { ++each; });
        RunTogether(tasks);
        EXPECT_EQ(runs, std::vector<int>(count, 1));
    }
}

TEST(Together, PassesOnWhatATaskThrows) {
    for (size_t failing = 0; failing < 8; ++failing) {
        std::vector<std::function<void()>> tasks(8, [] {});
        tasks[failing] = [] { throw std::runtime_error("no space"); };
        EXPECT_EQ(ThrownText([&] { RunTogether(tasks); }), "no space");
    }
}

}  // namespace orvex::tools::view
