#include "bench/report.h"

#include <lcms2.h>
#include <pixman.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <thread>

namespace orvex::bench {

namespace {

std::string Format(const char* format, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

// Returns the value of the first line of a file that begins with `key`, or its first line for an empty key.
std::string LineOf(const char* file, const std::string& key) {
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        if (line.rfind(key, 0) != 0) continue;
        const size_t colon = key.empty() ? std::string::npos : line.find(": ");
        return colon == std::string::npos ? line : line.substr(colon + 2);
    }
    return "unknown";
}

std::string SystemName() {
    utsname name;
    return uname(&name) == 0 ? std::string(name.sysname) + " " + name.release : "unknown";
}

std::string AimOf(const ContestResult& result) {
    if (result.aim == 0) return "";
    return Format(result.kind == AimKind::kAtMost ? "at most %g" : "at least %g times faster", result.aim);
}

const char* Verdict(const ContestResult& result) {
    return result.aim == 0 ? "" : result.Met() ? "yes" : "**no**";
}

// Returns "median / minimum" in milliseconds.
std::string TimesOf(const Timing& timing) {
    return Format("%.3f / %.3f", timing.Median() * 1e3, timing.Minimum() * 1e3);
}

void PrintMachine(std::ostream& out) {
    out << "- Processor: " << LineOf("/proc/cpuinfo", "model name") << ", "
        << std::thread::hardware_concurrency() << " processors; caches of "
        << sysconf(_SC_LEVEL1_DCACHE_SIZE) / 1024 << " KiB, " << sysconf(_SC_LEVEL2_CACHE_SIZE) / 1024
        << " KiB and " << sysconf(_SC_LEVEL3_CACHE_SIZE) / 1024 / 1024 << " MiB\n- System: " << SystemName()
        << ", large pages " << LineOf("/sys/kernel/mm/transparent_hugepage/enabled", "")
        << "\n- Compiler: " << ORVEX_BENCH_COMPILER << ", `" << ORVEX_BENCH_FLAGS << "`\n- References: "
        << Format("Little CMS %d.%d, pixman %s\n", cmsGetEncodedCMMversion() / 1000,
                  cmsGetEncodedCMMversion() % 1000 / 10, pixman_version_string());
}

}  // namespace

void PrintReport(const Bench& bench, std::ostream& out) {
    PrintMachine(out);
    out << "\nTimes in ms, median / minimum. The ratio is that of the medians.\n\n"
           "| What | Ours | Reference | Its time | Ratio | Aim | Met |\n|---|---|---|---|---|---|---|\n";
    for (const ContestResult& result : bench.Results()) {
        out << "| " << result.title << " | " << TimesOf(result.ours) << " | " << result.reference << " | "
            << TimesOf(result.theirs) << " | " << Format("%.2f", result.Ratio()) << " | " << AimOf(result)
            << " | " << Verdict(result) << " |\n";
    }
    if (!bench.Peaks().empty()) {
        out << "\nPeak memory of a page beyond its bitmap and the color cache:\n\n| What | MiB "
               "|\n|---|---|\n";
    }
    for (const PeakMemory& peak : bench.Peaks()) {
        out << "| " << peak.title << " | " << Format("%.2f", peak.mebibytes) << " |\n";
    }
    if (!bench.Notes().empty()) out << '\n';
    for (const std::string& note : bench.Notes()) out << "- " << note << '\n';
}

}  // namespace orvex::bench
