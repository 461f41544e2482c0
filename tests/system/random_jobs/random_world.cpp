#include "tests/system/random_jobs/random_world.h"

#include <algorithm>

#include "tests/driver/profiles/profile_bytes.h"
#include "tests/plain/plain_colors.h"

namespace orvex {

namespace {

// The names of labels and profiles, which settings, printer data and device modes share.
constexpr const char* kLabelNames[] = {"Wine", "Shipping", "Jar lid", "A4"};

std::string LabelName(Random& random) {
    return random.OnceIn(12) ? std::string(random.OneOf({63u, 64u, 70u}), 'n')
                             : kLabelNames[random.Below(std::size(kLabelNames))];
}
std::string LengthText(Random& random) {
    return random.Text({"4", "1.5", "2", "30.5", "60", "300", "254.0", "1,5", "", "-2.", ".9", "1", "+3",
                        "12.3456", "123.4567", "9999999", "1.2.3", " 4", "100"});
}

std::string Setting(Random& random, const char* key, std::initializer_list<const char*> values,
                    const std::string& lineEnd) {
    std::string line = key + random.Text(values) + lineEnd;
    if (random.OnceIn(15))
        line = key + std::string(random.OneOf({251u, 252u, 253u, 300u}), '7') + lineEnd + line;
    if (random.OnceIn(15)) line.insert(line.find('='), " ");
    if (random.OnceIn(15)) line.insert(0, "; " + std::string(260, 'x') + lineEnd);
    return random.OnceIn(3) ? "" : line;
}

std::string RandomSettings(Random& random) {
    const std::string end = random.Text({"\r\n", "\r\n", "\n", "\r"});
    std::vector<std::string> sections = {"[Driver]" + end, "[UI]" + end, "[Color]" + end};
    const auto add = [&](size_t section, const char* key, std::initializer_list<const char*> values) {
        sections[section] += Setting(random, key, values, end);
    };
    add(0, "Add_Thumb=", {"1", "1", "7", "0", "-1", "yes"});
    add(0, "thumb_max_width=", {"100", "100", "99", "120.9", "800", "abc"});
    add(0, "thumb_max_height=", {"100", "100", "110", "600", "99.5"});
    add(1, "Default_Media=", {"Wine", " Shipping \t", "Jar lid", "wine", " "});
    add(1, "Default_Profile=", {"p2.zvp", " p1.zvp ", "other.zvp", ""});
    add(1, "Language=", {"DEU", "ENG", "ELL", "FRX", "XX", "JPN", "CHS", "ENU"});
    add(1, "Show_Chunked=", {"1", "1", "0", "-2"});
    add(2, "tone_scale=", {"50", "100", "0", "-200"});
    add(2, "saturation_scale=", {"80", "0.5"});
    add(2, "brightness_scale=", {"125", "1e2"});
    add(2, "black_scale=", {"400", "2000", "0"});
    add(2, "yellow_scale=", {"10", "-3"});
    add(2, "cyan_scale=", {"20", "x"});
    add(2, "magenta_scale=", {"30.5", "0"});
    std::rotate(sections.begin(), sections.begin() + static_cast<ptrdiff_t>(random.Below(3)), sections.end());
    if (random.OnceIn(6)) sections.push_back(sections[0]);
    std::string text;
    for (std::string& section : sections) {
        if (random.OnceIn(10)) section.insert(section.find(']') + 1, " more");
        if (!random.OnceIn(8)) text += section;
    }
    if (random.OnceIn(8) && !text.empty()) text.resize(random.Below(text.size()));
    return text;
}

std::string RandomMedia(Random& random) {
    std::string text = random.OnceIn(8) ? "; no labels\r\n" : "; labels\r\n[Media] and more\r\n";
    for (size_t labels = random.Below(4); labels-- > 0;) {
        const std::string separator = random.Text({",", ", ", " ", "\t,"});
        text += "\"" + LabelName(random) + "\"" + separator;
        text += "\"" + LengthText(random) + "\"" + separator;
        text += "\"" + LengthText(random) + "\"" + separator;
        text += random.Text({"0", "1", "2", "", " 1 rest"});
        text += random.Text({"\r\n", "\n", "\r\n\r\n"});
    }
    return random.OnceIn(12) ? "" : text;
}

// Returns an ink of a profile: often none at all, or one that is missing.
uint32_t RandomInk(Random& random, size_t missingOnceIn) {
    if (missingOnceIn > 0 && random.OnceIn(missingOnceIn)) return 0xFFFFFFFF;
    if (random.OnceIn(6)) return 0;
    if (random.OnceIn(6)) return 0xFFFFFF00 | (random.Bits() & 0xFF);
    return random.Bits() & 0x7FFFFFFF;
}

std::string RandomTags(Random& random) {
    std::string tags;
    for (size_t count = random.OneOf({0u, 1u, 2u, 2u, 2u, 3u}); count-- > 0;) {
        const size_t nameLength = random.OneOf({5u, 12u, 0u, 99u, 100u, 511u, 512u});
        if (random.OnceIn(2)) {
            tags +=
                NameTag(random.OnceIn(3) ? std::string(nameLength, 'N') : "Glossy " + std::to_string(count));
        } else {
            const auto other = static_cast<char>(random.OneOf({3, 48, 255, 128, 0}));
            const auto at600Dpi = static_cast<char>(random.OneOf({6, 48, 254, 1}));
            tags += random.OnceIn(10) ? Tag(2, "abc") : ResolutionTag(other, at600Dpi);
        }
    }
    return random.OnceIn(20) ? tags + Tag(3, "?") : tags;
}

plain::SparseFile FileOf(const std::string& bytes) {
    return {bytes.size(), {{0, bytes}}};
}

plain::SparseFile RandomProfile(Random& random) {
    const size_t missingOnceIn = random.OneOf({0u, 0u, 0u, 20u});
    const std::string colors = GridColors([&](uint32_t, bool) { return RandomInk(random, missingOnceIn); });
    const std::string tags = RandomTags(random);
    std::string area = TagArea(tags);
    if (random.OnceIn(20)) area = TagArea(tags, random.OneOf({0u, 3u, 2000u}));
    std::string bytes = ProfileBytes(random.OnceIn(20) ? random.OneOf({0, 1, 4, 6}) : 5, area, colors);
    if (random.OnceIn(20)) bytes[random.Below(8)] ^= 1;
    if (random.OnceIn(20)) bytes.resize(random.OneOf({0u, 11u, 13u, 17u, 20u, 39000u}));
    if (random.OnceIn(30)) bytes += "more";
    return FileOf(bytes);
}

std::string RandomBytes(Random& random, size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = random.OnceIn(8) ? '\xFF' : static_cast<char>(random.Bits());
    return bytes;
}

// Returns a profile that gives inks to dark colors only.
plain::SparseFile LargeProfile(Random& random, int version) {
    const std::string area = TagArea(NameTag("version " + std::to_string(version)) + ResolutionTag(3, 6));
    plain::SparseFile file;
    const uint64_t colorsAt = 12 + area.size(), variant = ColorsSize(version) / 2;
    file.size = colorsAt + 2 * variant;
    file.runs = {{0, ProfileHead(version, file.size) + area}};
    const uint64_t planes = version % 2 == 0 ? 4 : 1;
    for (uint64_t plane = 0; plane < 2 * planes; ++plane) {
        file.runs.push_back({colorsAt + plane * variant / planes, RandomBytes(random, 262144 / planes)});
    }
    return file;
}

}  // namespace

std::map<std::string, plain::SparseFile> LargeProfiles() {
    Random random(1);
    std::map<std::string, plain::SparseFile> profiles;
    for (int version = 1; version <= 4; ++version)
        profiles["large" + std::to_string(version) + ".zvp"] = LargeProfile(random, version);
    return profiles;
}

std::string RandomMask(Random& random) {
    if (random.OnceIn(30)) return random.Text({"3", "2", "-1", "7"});
    return random.Text({"1", "1", "1", "0", "", "abc", "4", "\t5x"});
}

void ChangeInstallation(Random& random, const std::map<std::string, plain::SparseFile>& large,
                        plain::Installation& installation) {
    installation.settings.reset();
    if (!random.OnceIn(6)) installation.settings = RandomSettings(random);
    installation.media.reset();
    if (!random.OnceIn(4)) installation.media = RandomMedia(random);
    installation.names.reset();
    if (random.OnceIn(2)) {
        installation.names =
            "[DEU]\r\np1.zvp=Papier\r\n[ENG]\r\np2.zvp=Paper\r\n[ENU]\r\np1.zvp=Letter paper\r\n[ES]\r\n";
    }
    installation.profiles.clear();
    for (const char* name : {"p1.zvp", "p2.zvp", "p3.zvp"}) {
        if (!random.OnceIn(3)) installation.profiles[name] = RandomProfile(random);
    }
    if (random.OnceIn(6)) {
        // The smaller ones are quick to load.
        const auto& [name, file] =
            *std::next(large.begin(), static_cast<ptrdiff_t>(random.OneOf({0u, 1u, 2u, 2u, 3u, 3u})));
        installation.profiles[name] = file;
    }
    installation.language = random.Text({"ENU", "DEU", "FRA", "FRX", "ELL", "ESP"});
}

plain::LabelData RandomLabels(Random& random) {
    plain::LabelData data;
    data.hasKey = !random.OnceIn(3);
    const auto text = [&](const std::string& value) {
        return plain::LabelValue{1, random.OnceIn(20) ? value : value + '\0'};
    };
    const auto number = [](uint32_t value) { return plain::LabelValue{4, Number32(value)}; };
    for (size_t count = data.hasKey ? random.Below(4) : 0; count-- > 0;) {
        const std::string key = random.OnceIn(15) ? "junk" : std::to_string(random.Between(257, 261));
        plain::LabelValues& values = data.labels[key];
        values["version"] = number(random.OnceIn(12) ? 2 : 1);
        values["name"] = text(LabelName(random));
        values["width"] = text(LengthText(random));
        values["length"] = text(LengthText(random));
        values["units"] = number(random.OneOf({0u, 1u, 1u, 2u, 9u}));
        const char* broken = random.OneOf({"version", "name", "width", "length", "units"});
        if (random.OnceIn(10)) values.erase(broken);
        if (random.OnceIn(20)) values["units"].type = 3;
    }
    return data;
}

plain::EngineScript RandomScript(Random& random) {
    plain::EngineScript script;
    script.job = random.OneOf<uint64_t>({1, 0x10000BEEF, 0x7FFFFFFFFFFFFFFF});
    const auto reply = [&](const char* call, int number) -> plain::EngineReply& {
        return script.replies[{call, number}];
    };
    const char* opens = random.OnceIn(5) ? "JobStart" : random.OnceIn(5) ? "RasterRow" : "PageStart";
    std::vector<std::string>& opening = reply(opens, 1).chunks;
    if (random.OnceIn(2)) opening.push_back(std::string("FRMSTANDIN\1\0\x1A", 13));
    if (random.OnceIn(4)) opening.push_back(random.OnceIn(2) ? "1\xCF\1\1\xFF\xFF" : "\1\1\1\1\1\xFF\xFD");
    std::string text = "\x1B%-12345X@PJL\n@PJL COMMENT engine\n@PJL ENTER LANGUAGE=X\n";
    if (random.OnceIn(6)) text = text.substr(text.find("@PJL COMMENT"));
    if (random.OnceIn(10)) text.insert(text.begin() + 5, '\0');
    const size_t cut = random.Below(text.size());
    if (random.OnceIn(3)) {
        opening.push_back(text.substr(0, cut));
        text.erase(0, cut);
    }
    opening.push_back(text);
    for (size_t count = random.Below(8); count-- > 0;) {
        const char* call = random.OneOf(
            {"PageStart", "RasterBlockStart", "RasterRow", "RasterBlockEnd", "PageEnd", "JobEnd"});
        std::string bytes = random.Text({"\x1B*o0M", "rows \x1B*o0M\x1B*o0M", "a\x1B*o-1Mb", "\x1B*o-1M", "x",
                                         "", "\x1B*o-", "1M", "@PJL COMMENT again\n", "\x1B*oM rows"});
        reply(call, random.Between(1, 4)).chunks.push_back(bytes);
    }
    // A page that is started and not sent disarms the command of the page before.
    if (random.OnceIn(2)) reply("JobEnd", 1).chunks.emplace_back("end \x1B*o0M\x1B*o-1M");
    if (random.OnceIn(5)) {
        const char* call = random.OneOf({"JobStart", "PageStart", "RasterBlockStart", "RasterRow",
                                         "RasterBlockEnd", "PageEnd", "JobEnd"});
        const int number = std::string(call) == "RasterRow" ? random.Between(1, 150) : random.Between(1, 2);
        reply(call, number).status = random.OneOf({0u, 2u, 0xFFFFFFFFu});
    }
    return script;
}

}  // namespace orvex
