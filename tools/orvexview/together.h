// Work on all processors of the machine.
#pragma once

#include <algorithm>
#include <atomic>
#include <functional>
#include <future>
#include <thread>
#include <vector>

namespace orvex::tools::view {

// Runs tasks that need nothing of each other, as many at a time as there are processors, and returns when all
// of them are done. Throws what a task threw; other tasks may then not have run.
inline void RunTogether(const std::vector<std::function<void()>>& tasks) {
    std::atomic<size_t> next = 0;
    const auto work = [&] {
        for (size_t task = next++; task < tasks.size(); task = next++) tasks[task]();
    };
    const size_t processors = std::max(std::thread::hardware_concurrency(), 1u);
    std::vector<std::future<void>> others;
    while (others.size() + 1 < std::min(processors, tasks.size())) {
        others.push_back(std::async(std::launch::async, work));
    }
    work();
    for (std::future<void>& other : others) other.get();
}

}  // namespace orvex::tools::view
