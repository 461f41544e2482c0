#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "bench/page_checks.h"
#include "bench/references.h"
#include "bench/suites.h"
#include "driver/color/color_cache.h"
#include "driver/color/row_conversion.h"
#include "driver/profiles/profile_file.h"

namespace orvex::bench {

namespace {

constexpr int16_t kDpi = 600;
constexpr uint32_t kLookAhead = 128;  // pixels by which bare look-ups prefetch
constexpr uint32_t kColorBits = 0xFFFFFF;
constexpr double kSameWork = 2;  // mean difference, of 255, of two interpolations of one grid

// Converts a page row by row into one row of inks, as the row loop does.
class PageConversion {
  public:
    explicit PageConversion(const BenchPage& page) : page_(page), inks_(static_cast<size_t>(page.width)) {}

    void Ours(const PageSettings& settings) {
        for (int32_t y = 0; y < page_.height; ++y) ConvertOne(y, settings);
    }
    void Theirs(const LittleCms& colors) {
        for (int32_t y = 0; y < page_.height; ++y) colors.Convert(Row(y), inks_.data(), Width());
    }

    // Only fetches the same cache entries, at the speed of this machine's memory.
    void BareLookUps() {
        for (int32_t y = 0; y < page_.height; ++y) {
            const uint32_t* row = Row(y);
            const uint32_t width = Width();
            for (uint32_t x = 0; x < width; ++x) {
                __builtin_prefetch(&g_colorCache[row[std::min(x + kLookAhead, width - 1)] & kColorBits], 0,
                                   2);
                inks_[x] = g_colorCache[row[x] & kColorBits];
            }
        }
    }

    void Check(const PageSettings& settings, const std::vector<uint32_t>& inks) {
        for (int32_t y = 0; y < page_.height; ++y) {
            ConvertOne(y, settings);
            for (int32_t x = 0; x < page_.width; ++x) {
                if (inks_[static_cast<size_t>(x)] !=
                    plain::Print(inks[Row(y)[x]], static_cast<size_t>(x), PlainOptions(settings, kDpi))) {
                    throw CheckFailure("row conversion is wrong in row " + std::to_string(y));
                }
            }
        }
    }
    // Returns the mean difference of Little CMS' ink amounts from ours. A large one means different work.
    double MeanDifference(const LittleCms& colors, const std::vector<uint32_t>& inks) {
        uint64_t sum = 0;
        for (int32_t y = 0; y < page_.height; ++y) {
            colors.Convert(Row(y), inks_.data(), Width());
            for (int32_t x = 0; x < page_.width; ++x) {
                const uint32_t have = inks_[static_cast<size_t>(x)], want = inks[Row(y)[x]];
                for (int shift = 0; shift < 32; shift += 8) {
                    sum += static_cast<uint64_t>(std::abs(static_cast<int>(have >> shift & 0xFF) -
                                                          static_cast<int>(want >> shift & 0xFF)));
                }
            }
        }
        return static_cast<double>(sum) / (4.0 * static_cast<double>(page_.pixels.size()));
    }

  private:
    const uint32_t* Row(int32_t y) const { return page_.pixels.data() + y * ptrdiff_t{page_.width}; }
    uint32_t Width() const { return static_cast<uint32_t>(page_.width); }
    void ConvertOne(int32_t y, const PageSettings& settings) {
        ConvertRow(inks_.data(), Row(y), Width(), 1, settings.kws, kDpi == 600,
                   static_cast<uint32_t>(settings.colorMode));
    }

    const BenchPage& page_;
    std::vector<uint32_t> inks_;
};

void AgainstLittleCms(Bench& bench, const BenchSetting& setting, PageArt art, double aim) {
    const std::string name(NameOf(art));
    const std::string warm = "row conversion, " + name + ", warm";
    const std::string first = "row conversion, " + name + ", first page";
    const bool wantsFirst = art == PageArt::kPhoto && bench.Wants(first);
    if (!bench.Wants(warm) && !wantsFirst) return;
    const BenchPage page = DrawPage(art, kA4At600, true);
    LoadFresh(setting);
    const LittleCms colors;
    PageConversion conversion(page);
    const Contender theirs = {"Little CMS", [&] { conversion.Theirs(colors); }};
    const auto check = [&] {
        conversion.Check({}, setting.inks);
        const double difference = conversion.MeanDifference(colors, setting.inks);
        if (difference > kSameWork) throw CheckFailure("Little CMS gives other colors");
        bench.Note(name + " page: " + std::to_string(DistinctColors(page)) + " colors in " +
                   std::to_string(page.pixels.size()) + " pixels; Little CMS differs by " +
                   std::to_string(difference) + " of 255 in the mean");
    };
    bench.Hold(
        {warm, {"ConvertRow", [&] { conversion.Ours({}); }}, theirs, AimKind::kTimesFaster, aim, check});
    if (!wantsFirst) return;
    bench.Hold({first,
                {"ConvertRow", [&] { conversion.Ours({}); }, [&] { LoadFresh(setting); }},
                theirs,
                AimKind::kTimesFaster,
                3.5,
                check});
}

// Measures against bare look-ups: what a page costs beyond them is the driver's part.
void AgainstBareLookUps(Bench& bench, const BenchSetting& setting, PageArt art) {
    const std::string title = "row conversion, " + std::string(NameOf(art)) + ", bare look-ups";
    if (!bench.Wants(title)) return;
    const BenchPage page = DrawPage(art, kA4At600, true);
    LoadFresh(setting);
    PageConversion conversion(page);
    bench.Hold({title,
                {"ConvertRow", [&] { conversion.Ours({}); }},
                {"bare look-ups", [&] { conversion.BareLookUps(); }},
                AimKind::kAtMost,
                0,
                [&] { conversion.Check({}, setting.inks); }});
}

void AgainstPlainColor(Bench& bench, const BenchSetting& setting) {
    const struct {
        const char* title;
        PageSettings settings;
    } ways[] = {
        {"row conversion, label, composite gray", {.colorMode = kColorModeCompositeGray}},
        {"row conversion, label, black-only gray", {.colorMode = kColorModeBlackGray}},
        {"row conversion, label, kws", {.kws = true}},
        {"row conversion, label, kws and composite gray",
         {.kws = true, .colorMode = kColorModeCompositeGray}},
    };
    BenchPage page;
    for (const auto& way : ways) {
        if (!bench.Wants(way.title)) continue;
        if (page.pixels.empty()) page = DrawPage(PageArt::kLabel, kA4At600, true);
        LoadFresh(setting);
        PageConversion conversion(page);
        bench.Hold({way.title,
                    {"ConvertRow", [&] { conversion.Ours(way.settings); }},
                    {"plain color", [&] { conversion.Ours({}); }},
                    AimKind::kAtMost,
                    1.5,
                    [&] { conversion.Check(way.settings, setting.inks); }});
    }
}

}  // namespace

void LoadFresh(const BenchSetting& setting) {
    signed char code;
    char name[512];
    const std::string path = setting.profile.string();
    if (zvc_load_profile(path.c_str(), kResolution600, &code, name, sizeof name) != kGrid) {
        throw CheckFailure(path + " does not load");
    }
}

void MeasureRowConversion(Bench& bench, const BenchSetting& setting) {
    AgainstLittleCms(bench, setting, PageArt::kLabel, 15);
    AgainstLittleCms(bench, setting, PageArt::kPhoto, 8);
    AgainstLittleCms(bench, setting, PageArt::kNoise, 3);
    AgainstBareLookUps(bench, setting, PageArt::kPhoto);
    AgainstBareLookUps(bench, setting, PageArt::kNoise);
    AgainstPlainColor(bench, setting);
}

}  // namespace orvex::bench
