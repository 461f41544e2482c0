#include "tests/plain/driver/job_colors.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "tests/plain/driver/profile_head.h"
#include "tests/plain/driver/settings_text.h"
#include "tests/plain/long_hand_adjustment.h"
#include "tests/plain/plain_colors.h"

namespace orvex::plain {

namespace {

constexpr uint32_t kMissing = 0xFFFFFFFF;

uint32_t ByteAt(const SparseFile& file, uint64_t at) {
    for (const SparseFile::Run& run : file.runs) {
        if (at >= run.offset && at - run.offset < run.bytes.size())
            return static_cast<uint8_t>(run.bytes[static_cast<size_t>(at - run.offset)]);
    }
    return 0;
}

// Reads entry `number`, K first.
uint32_t EntryAt(const SparseFile& file, uint64_t colorsAt, uint64_t number) {
    const uint64_t at = colorsAt + 4 * number;
    return Ink(ByteAt(file, at), ByteAt(file, at + 1), ByteAt(file, at + 2), ByteAt(file, at + 3));
}
// Reads byte `number` of each plane, of which Y is the first.
uint32_t PlanesAt(const SparseFile& file, uint64_t colorsAt, uint64_t planeSize, uint64_t number) {
    const auto plane = [&](uint64_t index) { return ByteAt(file, colorsAt + index * planeSize + number); };
    return Ink(plane(3), plane(2), plane(1), plane(0));
}

uint32_t EvenNumber(uint32_t color) {
    return Red(color) / 2 * 128 * 128 + Green(color) / 2 * 128 + Blue(color) / 2;
}
uint32_t GridStep(uint32_t component) {
    return component == 255 ? 16 : component / 16;
}

// Returns the entry of a color as a profile's variant fills the table.
uint32_t ProfileEntry(const SparseFile& file, int version, uint64_t colorsAt, uint32_t color) {
    constexpr uint64_t kAll = 1 << 24, kHalf = 1 << 21;
    switch (version) {
        case 1:
            return EntryAt(file, colorsAt, color);
        case 2:
            return PlanesAt(file, colorsAt, kAll, color);
        case 3:
            return IsAllEven(color) ? EntryAt(file, colorsAt, EvenNumber(color)) : 0;
        case 4:
            return IsAllEven(color) ? PlanesAt(file, colorsAt, kHalf, EvenNumber(color)) : kMissing;
        default:
            if (!IsGridPoint(color)) return kMissing;
            return EntryAt(file, colorsAt,
                           GridStep(Blue(color)) * 289 + GridStep(Green(color)) * 17 + GridStep(Red(color)));
    }
}

constexpr uint64_t kDataSizes[] = {0, 0x8000000, 0x8000000, 0x1000000, 0x1000000, 39304};

bool HasColors(const ProfileHead& head, uint64_t found, Log& log) {
    if (head.version < 1 || head.version > 5) {
        log.Error("non supported profile version");
        return false;
    }
    const uint64_t expected = kDataSizes[head.version];
    if (found == expected) return true;
    log.Error("invalid file size %d<>%d", static_cast<int>(found), static_cast<int>(expected));
    return false;
}

// Returns the colors of a profile; nothing if it can't be used. `colors` gets its name and code in any case.
std::optional<InkTable> LoadProfile(const Installation& installation, const std::string& file, bool at600Dpi,
                                    std::string& name, int8_t& code, Log& log) {
    const std::string path = "profiles\\" + file;
    log.Info("load_profile [%s]", path.c_str());
    const auto found = installation.profiles.find(file);
    const SparseFile* profile = found == installation.profiles.end() ? nullptr : &found->second;
    const ProfileHead head = ReadHead(profile, path, file, 512, at600Dpi, true, log);
    name = head.name;
    code = head.code;
    const bool good = head.sound && HasColors(head, profile->size - head.colorsAt, log);
    const int version = good ? head.version : 0;
    log.Info("read_profile %d %d %s", version, code, name.c_str());
    if (!good) {
        log.Error("error reading profile %s!", name.c_str());
        return std::nullopt;
    }
    const uint64_t variantAt = head.colorsAt + (at600Dpi ? 0 : kDataSizes[version] / 2);
    return InkTable(version, [contents = *profile, version, variantAt](uint32_t color) {
        return ProfileEntry(contents, version, variantAt, color);
    });
}

AdjustmentScales ReadScales(const Installation& installation, Log& log) {
    const auto scale = [&](const char* key, double absent) {
        return SettingNumber(installation, "[Color]", key, absent, log);
    };
    AdjustmentScales scales;
    scales.tone = scale("tone_scale=", 100);
    scales.saturation = scale("saturation_scale=", 100);
    scales.brightness = scale("brightness_scale=", 100);
    scales.black = scale("black_scale=", 200);
    scales.yellow = scale("yellow_scale=", 100);
    scales.cyan = scale("cyan_scale=", 100);
    scales.magenta = scale("magenta_scale=", 100);
    return scales;
}

uint32_t GridColor(uint32_t point) {
    const auto value = [](uint32_t step) { return step == 16 ? 255 : 16 * step; };
    return value(point / 289) << 16 | value(point / 17 % 17) << 8 | value(point % 17);
}

InkTable Adjusted(const InkTable& table, const Adjustment& by, const AdjustmentScales& scales) {
    std::vector<uint32_t> grid;
    for (uint32_t point = 0; point < 4913; ++point) grid.push_back(table[GridColor(point)]);
    return InkTable(5, [adjusted = AdjustedGrid(grid, by, scales)](uint32_t color) {
        if (!IsGridPoint(color)) return kMissing;
        return adjusted[GridStep(Red(color)) * 289 + GridStep(Green(color)) * 17 + GridStep(Blue(color))];
    });
}

void Adjust(const Installation& installation, const PrivateDevMode& settings, InkTable& table, Log& log) {
    Adjustment by;
    by.brightness = settings.adj_brightness;
    by.saturation = settings.adj_saturation;
    by.tone = settings.adj_colortone;
    by.cyan = settings.adj_cyan;
    by.magenta = settings.adj_magenta;
    by.yellow = settings.adj_yellow;
    by.black = settings.adj_black;
    if ((by.brightness | by.saturation | by.tone | by.cyan | by.magenta | by.yellow | by.black) == 0) return;
    log.Error("ca t:%d,b:%d,s:%d,C:%d,M:%d,Y:%d,K:%d\n", by.tone, by.brightness, by.saturation, by.cyan,
              by.magenta, by.yellow, by.black);
    const AdjustmentScales scales = ReadScales(installation, log);
    log.Error("ca %lf,%lf,%lf,%lf,%lf,%lf,%lf\n", by.tone / scales.tone * 7000 * 0.5,
              by.brightness / scales.brightness * 0.5, by.saturation / scales.saturation,
              by.cyan * scales.cyan * 0.5, 9341 / scales.black * 0.5 * by.black,
              by.yellow * scales.yellow * 0.5, by.magenta * scales.magenta * 0.5);
    table = Adjusted(table, by, scales);
}

}  // namespace

uint32_t InkTable::operator[](uint32_t color) const {
    const auto found = computed_.find(color);
    return found != computed_.end() ? found->second : stored_(color);
}

uint32_t InkTable::InkOf(uint32_t color) {
    const auto found = computed_.find(color);
    if (found != computed_.end() && found->second != kMissing) return found->second;
    uint32_t ink = stored_(color);
    if (ink == kMissing && (kind_ == 3 || kind_ == 4)) ink = HalfGridAverage(color, *this);
    if (ink == kMissing && kind_ == 5) ink = Prism(color, *this);
    return computed_[color] = ink;
}

JobColors LoadJobColors(const Installation& installation, const PrivateDevMode& settings, bool at600Dpi,
                        int8_t codeBefore, Log& log) {
    const int percent = at600Dpi ? 50 : 100;
    JobColors colors = {InkTable(1, [percent](uint32_t color) { return Generic(color, percent); }), 1, "",
                        codeBefore};
    std::string file;
    for (size_t i = 0; i < 260 && settings.colorProfile[i] != 0; ++i) {
        file += static_cast<char>(settings.colorProfile[i]);
    }
    if (file.empty()) {
        log.Info("Load deafult profile");
        colors.profileName = "Default";
        log.Info("generic profile");
    } else {
        log.Info("Load profile [%s]", file.c_str());
        auto loaded =
            LoadProfile(installation, file, at600Dpi, colors.profileName, colors.resolutionCode, log);
        if (loaded) {
            colors.table = *loaded;
        } else {
            log.Info("generic profile");
        }
    }
    colors.loadedKind = colors.table.Kind();
    Adjust(installation, settings, colors.table, log);
    return colors;
}

}  // namespace orvex::plain
