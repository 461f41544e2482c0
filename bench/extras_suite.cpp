#include <cstring>

#include "bench/suites.h"
#include "render/thumbnail.h"
#include "support/log.h"
#include "tests/support/log_capture.h"

namespace {

constexpr double kThumbnailWidth = 800;
constexpr double kThumbnailHeight = 600;

void CheckThumbnail(const BenchPage& page, int32_t scale, const std::vector<uint32_t>& reduced) {
    const int32_t side = 1 << scale, width = page.width >> scale, height = page.height >> scale;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            uint32_t want = 0xFF000000;
            for (int shift = 0; shift < 24; shift += 8) {
                uint64_t sum = 0;
                for (int32_t i = 0; i < side * side; ++i) {
                    const int32_t row = y * side + i / side, column = x * side + i % side;
                    sum += page.pixels[static_cast<size_t>(row) * static_cast<size_t>(page.width) +
                                       static_cast<size_t>(column)] >>
                               shift &
                           0xFF;
                }
                want |= static_cast<uint32_t>(sum / static_cast<uint64_t>(side * side)) << shift;
            }
            if (reduced[static_cast<size_t>(y * width + x)] != want) {
                throw CheckFailure("the thumbnail is wrong");
            }
        }
    }
}

void MeasureThumbnail(Bench& bench) {
    constexpr char kTitle[] = "thumbnail's scaling, A4 600 dpi, photo";
    if (!bench.Wants(kTitle)) return;
    const BenchPage page = DrawPage(PageArt::Photo, kA4At600, false);
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
                AimKind::AtMost,
                1.3,
                [&] {
                    reduce();
                    CheckThumbnail(page, scale, reduced);
                }});
}

// How often a page comes to a log call: the lines of its log with everything on.
size_t LogLinesOf(PageJob& job) {
    LogCapture log;
    job.Send();
    return log.TakeLines().size();
}

void MeasureSilentLog(Bench& bench, const BenchSetting& setting) {
    constexpr char kTitle[] = "log call sites of a page, log off, against the page";
    if (!bench.Wants(kTitle)) return;
    const BenchPage page = DrawPage(PageArt::Label, kRollLabel, true);
    PageJob job(setting.driver, page, kRollLabel, {.landscape = true});
    const size_t lines = LogLinesOf(job);
    bench.Note("log lines of a page with everything on: " + std::to_string(lines));
    bench.Hold({kTitle,
                {"LogInfo",
                 [lines] {
                     for (size_t i = 0; i < lines; ++i) LogInfo("Page Time elapsed : %ldms\n", i);
                 }},
                {"DrvSendPage", [&] { job.Send(); }},
                AimKind::AtMost,
                0.001,
                nullptr});
}

}  // namespace

void MeasureExtras(Bench& bench, const BenchSetting& setting) {
    MeasureThumbnail(bench);
    MeasureSilentLog(bench, setting);
}
