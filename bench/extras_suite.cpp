#include <cstring>

#include "bench/suites.h"
#include "driver/render/pixel_reduction.h"
#include "driver/support/log.h"
#include "tests/kit/log_capture.h"
#include "tests/plain/plain_reduction.h"

namespace orvex::bench {

namespace {

constexpr double kThumbnailWidth = 800;
constexpr double kThumbnailHeight = 600;

void MeasureThumbnail(Bench& bench) {
    constexpr char kTitle[] = "thumbnail's scaling, A4 600 dpi, photo";
    if (!bench.Wants(kTitle)) return;
    const BenchPage page = DrawPage(PageArt::kPhoto, kA4At600, false);
    const int32_t scale = ThumbnailScale(page.width, page.height, kThumbnailWidth, kThumbnailHeight);
    std::vector<uint32_t> reduced(static_cast<size_t>(page.width >> scale) *
                                  static_cast<size_t>(page.height >> scale));
    std::vector<uint32_t> copy(page.pixels.size());
    const auto reduce = [&] {
        ReducePixels(page.pixels.data(), page.width, page.height, scale, reduced.data());
    };
    bench.Hold({kTitle,
                {"ReducePixels", reduce},
                {"memcpy", [&] { memcpy(copy.data(), page.pixels.data(), page.Bytes()); }},
                AimKind::kAtMost,
                1.3,
                [&] {
                    reduce();
                    if (reduced != plain::Reduced(page.pixels, page.width, page.height, scale)) {
                        throw CheckFailure("the thumbnail is wrong");
                    }
                }});
}

// Returns the number of log lines of a page with everything on, which is its number of log calls.
size_t LogLinesOf(PageJob& job) {
    LogCapture log;
    job.Send();
    return log.TakeLines().size();
}

void MeasureSilentLog(Bench& bench, const BenchSetting& setting) {
    constexpr char kTitle[] = "log call sites of a page, log off, against the page";
    if (!bench.Wants(kTitle)) return;
    const BenchPage page = DrawPage(PageArt::kLabel, kRollLabel, true);
    PageJob job(setting.driver, page, kRollLabel, {{true, false, false}});
    const size_t lines = LogLinesOf(job);
    bench.Note("log lines of a page with everything on: " + std::to_string(lines));
    bench.Hold({kTitle,
                {"LogInfo",
                 [lines] {
                     for (size_t i = 0; i < lines; ++i) LogInfo("Page Time elapsed : %ldms\n", i);
                 }},
                {"DrvSendPage", [&] { job.Send(); }},
                AimKind::kAtMost,
                0.001,
                nullptr});
}

}  // namespace

void MeasureExtras(Bench& bench, const BenchSetting& setting) {
    MeasureThumbnail(bench);
    MeasureSilentLog(bench, setting);
}

}  // namespace orvex::bench
