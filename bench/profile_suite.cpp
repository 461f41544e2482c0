#include <cstring>
#include <numeric>

#include "bench/page_checks.h"
#include "bench/suites.h"
#include "driver/color/color_cache.h"
#include "driver/color/generic_conversion.h"
#include "driver/color/row_conversion.h"
#include "driver/profiles/profile_file.h"
#include "tests/kit/scratch_folder.h"
#include "tests/plain/plain_colors.h"
#include "tools/orvexprofile/conversion.h"
#include "tools/orvexprofile/profile_writer.h"

namespace orvex::bench {

using namespace tools::profile;

namespace {

constexpr size_t kTableBytes = kCacheEntries * sizeof(uint32_t);
constexpr uint32_t kRow = 4096;  // colors converted at once

Contender Memset(std::vector<uint32_t>& table) {
    return {"memset 64 MiB", [&] { memset(table.data(), 0xFF, kTableBytes); }};
}

int32_t Load(const std::filesystem::path& path) {
    signed char code;
    char name[512];
    return zvc_load_profile(path.string().c_str(), kResolution600, &code, name, sizeof name);
}

void MeasureGeneric(Bench& bench, std::vector<uint32_t>& table) {
    bench.Hold({"generic conversion of all colors",
                {"FillWithGenericConversion", [] { FillWithGenericConversion(g_colorCache, kHalfInk); }},
                Memset(table),
                AimKind::kAtMost,
                1.4,
                [] {
                    std::vector<uint32_t> inks(kCacheEntries);
                    for (uint32_t color = 0; color < kCacheEntries; ++color) {
                        inks[color] = plain::Generic(color, kHalfInk);
                    }
                    FillWithGenericConversion(g_colorCache, kHalfInk);
                    CheckCache(inks, "the generic conversion");
                }});
}

void MeasureLoads(Bench& bench, const BenchSetting& setting, std::vector<uint32_t>& table) {
    constexpr char kLoad2[] = "load of a version 2 profile", kLoad5[] = "load of a version 5 profile";
    if (bench.Wants(kLoad2)) {
        const ScratchFolder folder;
        std::filesystem::path paths[3];
        for (const int version : {1, 2}) {
            paths[version] = folder.Path() / ("bench" + std::to_string(version) + ".zvp");
            WriteProfileFile(ConvertProfile(setting.profile, version), paths[version]);
        }
        bench.Hold({kLoad2,
                    {"zvc_load_profile", [&] { Load(paths[2]); }},
                    {"version 1", [&] { Load(paths[1]); }},
                    AimKind::kAtMost,
                    2.5,
                    [&] {
                        Load(paths[2]);
                        CheckCache(setting.inks, "version 2");
                        Load(paths[1]);
                        CheckCache(setting.inks, "version 1");
                    }});
    }
    bench.Hold({kLoad5,
                {"zvc_load_profile", [&] { Load(setting.profile); }},
                Memset(table),
                AimKind::kAtMost,
                1.2,
                [&] {
                    Load(setting.profile);
                    std::vector<uint32_t> grid(kCacheEntries);
                    for (uint32_t color = 0; color < kCacheEntries; ++color) {
                        grid[color] = plain::IsGridPoint(color) ? setting.inks[color] : kNotComputed;
                    }
                    CheckCache(grid, "version 5");
                }});
}

void MeasureInterpolation(Bench& bench, const BenchSetting& setting, std::vector<uint32_t>& table) {
    constexpr char kTitle[] = "interpolation of all colors";
    if (!bench.Wants(kTitle)) return;
    std::vector<uint32_t> colors(kCacheEntries), inks(kRow);
    std::iota(colors.begin(), colors.end(), 0u);
    const auto convertAll = [&] {
        for (size_t first = 0; first < kCacheEntries; first += kRow) {
            ConvertRow(inks.data(), colors.data() + first, kRow, 1, 0, 1, kColorModeColor);
        }
    };
    bench.Hold({kTitle,
                {"ConvertRow", convertAll, [&] { LoadFresh(setting); }},
                Memset(table),
                AimKind::kAtMost,
                12,
                [&] {
                    LoadFresh(setting);
                    convertAll();
                    CheckCache(setting.inks, "the interpolation");
                }});
}

}  // namespace

void MeasureProfiles(Bench& bench, const BenchSetting& setting) {
    std::vector<uint32_t> table(kCacheEntries);
    MeasureGeneric(bench, table);
    MeasureLoads(bench, setting, table);
    MeasureInterpolation(bench, setting, table);
}

}  // namespace orvex::bench
