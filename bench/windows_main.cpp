// Times whole pages through the built DLL, to compare with the native build.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <vector>

#include "bench/page_checks.h"

using namespace orvex;
using namespace orvex::bench;

namespace {

constexpr int kRepetitions = 10;
constexpr char kProfile[] = "neutral.zvp";

double Seconds(const std::function<void()>& run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> seconds) {
    std::sort(seconds.begin(), seconds.end());
    return (seconds[seconds.size() / 2] + seconds[(seconds.size() - 1) / 2]) / 2;
}

void MeasurePage(BenchDriver& driver, const std::vector<uint32_t>& inks, PageArt art, bool landscape) {
    const BenchPage page = DrawPage(art, kA4At600, landscape);
    std::vector<uint32_t> copy(page.pixels.size());
    PageJob job(driver, page, kA4At600, {{landscape, false, false}});
    const auto memcpyPage = [&] { memcpy(copy.data(), page.pixels.data(), page.Bytes()); };
    CheckPage(job, page, {{landscape, false, false}}, kA4At600.dpi, inks);
    memcpyPage();
    std::vector<double> ours, theirs;
    for (int i = 0; i < kRepetitions; ++i) {
        ours.push_back(Seconds([&] { job.Send(); }));
        theirs.push_back(Seconds(memcpyPage));
    }
    std::printf("| warm page, %s, %s, %s | %.3f / %.3f | memcpy | %.3f / %.3f | %.2f |\n",
                kA4At600.name.data(), NameOf(art).data(), landscape ? "landscape" : "portrait",
                Median(ours) * 1e3, *std::min_element(ours.begin(), ours.end()) * 1e3, Median(theirs) * 1e3,
                *std::min_element(theirs.begin(), theirs.end()) * 1e3, Median(ours) / Median(theirs));
}

}  // namespace

int main() {
    try {
        const std::filesystem::path installation = tools::ProgramFolder() / "install";
        const std::vector<uint32_t> inks = PlainInks(installation / "profiles" / kProfile, kResolution600);
        BenchDriver driver(installation, kProfile);
        std::printf(
            "Compiled by GNU %s. Times in ms, median / minimum of %d.\n\n"
            "| What | Ours | Reference | Its time | Ratio |\n|---|---|---|---|---|\n",
            __VERSION__, kRepetitions);
        for (const PageArt art : {PageArt::kLabel, PageArt::kPhoto, PageArt::kNoise}) {
            for (const bool landscape : {true, false}) MeasurePage(driver, inks, art, landscape);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvexbench: %s\n", error.what());
        return 1;
    }
    return 0;
}
