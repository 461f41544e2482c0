#include <chrono>
#include <cstdio>
#include <memory>

#include "bench/suites.h"
#include "tools/common/wide_text.h"

namespace orvex::bench {

namespace {

// A page of each kind of art whose first print is timed; the names go through a command line.
struct ColdPage {
    const char* name;
    PageArt art;
    PageSize size;
};
const ColdPage kColdPages[] = {
    {"a4-label", PageArt::kLabel, kA4At600},
    {"a4-photo", PageArt::kPhoto, kA4At600},
    {"roll-label", PageArt::kLabel, kRollLabel},
};

// Seconds of a process' set-up (driver, device, profile, start of the job), and of its first and second page.
struct ColdTimes {
    double setUp;
    double first;
    double second;
};

ColdTimes TimesOfNewProcess(const ColdPage& page) {
    const std::string command =
        tools::Utf8FromPath(tools::ProgramFolder() / "orvexbench") + " --new-process " + page.name;
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), &pclose);
    ColdTimes times;
    if (!output || std::fscanf(output.get(), "%lf %lf %lf", &times.setUp, &times.first, &times.second) != 3) {
        throw CheckFailure("this failed: " + command);
    }
    return times;
}

ContestResult AtMost(const std::string& title, const Timing& ours, const Timing& second, double aim) {
    return {
        title, "the same page again", AimKind::kAtMost, aim, ours, second, {ours.Median() / second.Median()}};
}

}  // namespace

void TimeNewProcess(const std::filesystem::path& installation, const std::string& profile,
                    const std::string& name) {
    for (const ColdPage& cold : kColdPages) {
        if (cold.name != name) continue;
        const BenchPage page = DrawPage(cold.art, cold.size, true);
        using Clock = std::chrono::steady_clock;
        const auto seconds = [](Clock::duration time) { return std::chrono::duration<double>(time).count(); };
        const auto start = Clock::now();
        BenchDriver driver(installation, profile);
        PageJob job(driver, page, cold.size, {{true, false, false}});
        const auto ready = Clock::now();
        job.Send();
        const auto printed = Clock::now();
        job.Send();
        std::printf("%.9f %.9f %.9f\n", seconds(ready - start), seconds(printed - ready),
                    seconds(Clock::now() - printed));
        return;
    }
    throw CheckFailure("no page is named " + name);
}

void MeasureColdPages(Bench& bench) {
    for (const ColdPage& page : kColdPages) {
        const std::string what =
            std::string(page.size.name) + ", " + std::string(NameOf(page.art)) + ", landscape";
        const std::string first = "first page of a process, " + what;
        const std::string whole = "job of one page, new process, " + what;
        if (!bench.Wants(first) && !bench.Wants(whole)) continue;
        Timing firsts, wholes, seconds;
        for (int i = 0; i < bench.Repetitions(); ++i) {
            const ColdTimes times = TimesOfNewProcess(page);
            firsts.seconds.push_back(times.first);
            wholes.seconds.push_back(times.setUp + times.first);
            seconds.seconds.push_back(times.second);
        }
        bench.Take(AtMost(first, firsts, seconds, page.art == PageArt::kPhoto ? 2 : 0));
        bench.Take(AtMost(whole, wholes, seconds, 0));
    }
}

}  // namespace orvex::bench
