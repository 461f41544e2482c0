#include <cstring>
#include <memory>

#include "bench/page_checks.h"
#include "bench/references.h"
#include "bench/suites.h"

namespace orvex::bench {

namespace {

// An order of rows and its aims, as multiples of a memcpy of the bitmap.
struct Order {
    const char* name;
    PageSettings settings;                // landscape, rotate180, mirrorImage
    double labelAim, photoAim, noiseAim;  // 0: no aim
};

constexpr Order kOrders[] = {
    {"landscape", {{true, false, false}}, 1.0, 3, 13},
    {"landscape mirrored", {{true, false, true}}, 2, 0, 0},
    {"landscape rotated", {{true, true, false}}, 2, 0, 0},
    {"landscape rotated mirrored", {{true, true, true}}, 2, 0, 0},
    {"portrait", {}, 1.7, 4, 15},
    {"portrait mirrored", {{false, false, true}}, 2, 0, 0},
    {"portrait rotated", {{false, true, false}}, 2, 0, 0},
    {"portrait rotated mirrored", {{false, true, true}}, 2, 0, 0},
};

constexpr PageArt kArts[] = {PageArt::kLabel, PageArt::kPhoto, PageArt::kNoise};

double AimFor(const Order& order, PageArt art) {
    return art == PageArt::kLabel ? order.labelAim : art == PageArt::kPhoto ? order.photoAim : order.noiseAim;
}

std::string Title(const PageSize& size, PageArt art, const char* order) {
    return "warm page, " + std::string(size.name) + ", " + std::string(NameOf(art)) + ", " + order;
}

const std::vector<uint32_t>& InksAt(const BenchSetting& setting, int16_t dpi) {
    return dpi == 600 ? setting.inks : setting.inks300;
}

void MeasureOrder(Bench& bench, const BenchSetting& setting, const BenchPage& page, const PageSize& size,
                  PageArt art, const Order& order) {
    const std::string title = Title(size, art, order.name);
    if (!bench.Wants(title)) return;
    PageJob job(setting.driver, page, size, order.settings);
    std::vector<uint32_t> copy(page.pixels.size());
    bench.Hold({title,
                {"DrvSendPage", [&] { job.Send(); }},
                {"memcpy", [&] { memcpy(copy.data(), page.pixels.data(), page.Bytes()); }},
                AimKind::kAtMost,
                size.dpi == kA4At600.dpi && size.name == kA4At600.name ? AimFor(order, art) : 0,
                [&] { CheckPage(job, page, order.settings, size.dpi, InksAt(setting, size.dpi)); }});
    bench.NotePeak(title, [&] { job.Send(); });
}

// Measures against the obvious program: it turns the whole page, converts it row by row and hands the rows to
// an engine that does nothing.
void MeasureObviousProgram(Bench& bench, const BenchSetting& setting, PageArt art, double aim) {
    const std::string title = "obvious program, A4 600 dpi, " + std::string(NameOf(art)) + ", portrait";
    if (!bench.Wants(title)) return;
    const BenchPage page = DrawPage(art, kA4At600, false);
    PageJob job(setting.driver, page, kA4At600, {});
    const LittleCms colors;
    PixmanRotation rotation(page);
    std::vector<uint32_t> row(static_cast<size_t>(rotation.Width()));
    const PrintEngine engine = IdleEngine();
    const auto check = [&] {
        CheckPage(job, page, {}, kA4At600.dpi, setting.inks);
        rotation.Rotate();
        for (int32_t y = 0; y < rotation.Rows(); ++y) {
            for (int32_t x = 0; x < rotation.Width(); ++x) {
                if ((rotation.Row(y)[x] & 0xFFFFFF) != plain::PagePixel(page, {}, y, x)) {
                    throw CheckFailure("pixman turns the page another way");
                }
            }
        }
    };
    bench.Hold({title,
                {"DrvSendPage", [&] { job.Send(); }},
                {"pixman and Little CMS",
                 [&] {
                     rotation.Rotate();
                     for (int32_t y = 0; y < rotation.Rows(); ++y) {
                         colors.Convert(rotation.Row(y), row.data(), static_cast<uint32_t>(rotation.Width()));
                         engine.HPCRLIB_RasterRow(0, row.data());
                     }
                 }},
                AimKind::kTimesFaster,
                aim,
                check});
}

}  // namespace

void MeasurePages(Bench& bench, const BenchSetting& setting) {
    for (const PageSize& size : {kA4At600, kA4At300, kRollLabel}) {
        for (const PageArt art : kArts) {
            for (const bool landscape : {true, false}) {
                BenchPage page;
                for (const Order& order : kOrders) {
                    const RowOrder& rows = order.settings.order;
                    const bool turned = rows.rotate180 || rows.mirrorImage;
                    // Only one page has aims for all orders.
                    if (turned && (art != PageArt::kLabel || size.name != kA4At600.name)) continue;
                    if (rows.landscape != landscape) continue;
                    if (!bench.Wants(Title(size, art, order.name))) continue;
                    if (page.pixels.empty()) page = DrawPage(art, size, landscape);
                    MeasureOrder(bench, setting, page, size, art, order);
                }
            }
        }
    }
    MeasureObviousProgram(bench, setting, PageArt::kLabel, 9);
    MeasureObviousProgram(bench, setting, PageArt::kPhoto, 9);
}

}  // namespace orvex::bench
