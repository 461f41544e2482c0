#include "bench/report.h"

#include <lcms2.h>
#include <pixman.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
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
    if (result.aim == 0) return "-";
    return Format(result.kind == AimKind::kAtMost ? "<= %g x" : ">= %g x faster", result.aim);
}

const char* Verdict(const ContestResult& result) {
    return result.aim == 0 ? "" : result.Met() ? "met" : "NOT MET";
}

nlohmann::json TimesOf(const Timing& timing) {
    return {{"median_s", timing.Median()}, {"minimum_s", timing.Minimum()}, {"all_s", timing.seconds}};
}

}  // namespace

Machine ThisMachine() {
    return {LineOf("/proc/cpuinfo", "model name"),
            std::thread::hardware_concurrency(),
            SystemName(),
            LineOf("/sys/kernel/mm/transparent_hugepage/enabled", ""),
            ORVEX_BENCH_COMPILER,
            ORVEX_BENCH_FLAGS,
            "SSE2",
            Format("%ld KiB, %ld KiB, %ld MiB", sysconf(_SC_LEVEL1_DCACHE_SIZE) / 1024,
                   sysconf(_SC_LEVEL2_CACHE_SIZE) / 1024, sysconf(_SC_LEVEL3_CACHE_SIZE) / (1024 * 1024)),
            Format("Little CMS %d.%d, pixman %s", cmsGetEncodedCMMversion() / 1000,
                   cmsGetEncodedCMMversion() % 1000 / 10, pixman_version_string())};
}

void PrintReport(const Machine& machine, const Bench& bench, std::ostream& out) {
    out << "processor  " << machine.processor << ", " << machine.processors << " processors\n"
        << "system     " << machine.system << ", large pages " << machine.largePages << '\n'
        << "compiler   " << machine.compiler << "\nflags      " << machine.flags << '\n'
        << "kernels    " << machine.kernels << "\ncaches     " << machine.caches << "\nreferences "
        << machine.references << "\n\n"
        << "Times in ms, median / minimum. The ratio is that of the medians of a run; for several runs, the "
           "median of their ratios.\n\n"
        << Format("%-58s %21s %21s  %-22s %8s  %-16s\n", "what", "ours", "reference", "", "ratio", "aim");
    for (const ContestResult& result : bench.Results()) {
        out << Format("%-58s %10.3f /%9.3f %10.3f /%9.3f  %-22s %8.3f  %-16s %s\n", result.title.c_str(),
                      result.ours.Median() * 1e3, result.ours.Minimum() * 1e3, result.theirs.Median() * 1e3,
                      result.theirs.Minimum() * 1e3, result.reference.c_str(), result.Ratio(),
                      AimOf(result).c_str(), Verdict(result));
    }
    if (!bench.Peaks().empty()) out << "\nPeak memory beyond bitmap and color cache, MiB\n";
    for (const PeakMemory& peak : bench.Peaks()) {
        out << Format("%-58s %10.2f\n", peak.title.c_str(), peak.mebibytes);
    }
    if (!bench.Notes().empty()) out << '\n';
    for (const std::string& note : bench.Notes()) out << note << '\n';
}

void WriteJson(const Machine& machine, const Bench& bench, const std::filesystem::path& path) {
    nlohmann::json root = {{"machine",
                            {{"processor", machine.processor},
                             {"processors", machine.processors},
                             {"system", machine.system},
                             {"large_pages", machine.largePages},
                             {"compiler", machine.compiler},
                             {"flags", machine.flags},
                             {"kernels", machine.kernels},
                             {"caches", machine.caches},
                             {"references", machine.references}}},
                           {"rows", nlohmann::json::array()},
                           {"peak_memory", nlohmann::json::array()},
                           {"notes", bench.Notes()}};
    for (const ContestResult& result : bench.Results()) {
        nlohmann::json row = {{"what", result.title},
                              {"ours", TimesOf(result.ours)},
                              {"reference", result.reference},
                              {"theirs", TimesOf(result.theirs)},
                              {"kind", result.kind == AimKind::kAtMost ? "at most" : "times faster"},
                              {"ratio", result.Ratio()},
                              {"ratios", result.ratios}};
        if (result.aim != 0) {
            row["aim"] = result.aim;
            row["met"] = result.Met();
        }
        root["rows"].push_back(row);
    }
    for (const PeakMemory& peak : bench.Peaks()) {
        root["peak_memory"].push_back({{"what", peak.title}, {"mebibytes", peak.mebibytes}});
    }
    std::ofstream file(path);
    file << root.dump(1) << '\n';
    if (!file.flush()) throw std::runtime_error("could not write " + path.string());
}

}  // namespace orvex::bench
