#include "tests/system/random_jobs/random_record.h"

#include <algorithm>

#include "tests/plain/device_mode.h"

namespace orvex {

namespace {

template <size_t N>
void SetWide(WCHAR (&field)[N], const std::string& text) {
    std::fill(std::begin(field), std::end(field), WCHAR{0});
    for (size_t i = 0; i < std::min(text.size(), N); ++i) field[i] = static_cast<WCHAR>(text[i]);
}

std::string RandomProfileName(Random& random, const plain::Installation& installation) {
    if (!installation.profiles.empty() && !random.OnceIn(6)) {
        return std::next(installation.profiles.begin(),
                         static_cast<ptrdiff_t>(random.Below(installation.profiles.size())))
            ->first;
    }
    return random.Text({"", "", "missing.zvp", "..\\settings.inf", "profiles/p1.zvp", "C:p1.zvp", "NUL"});
}

void SetPaper(Random& random, DEVMODEW& pub) {
    pub.dmFields = random.OnceIn(5) ? random.Bits() : 0xFFFFFFFF;
    pub.dmOrientation = static_cast<short>(random.Between(1, 2));
    pub.dmPaperSize = random.OneOf<short>({256, 256, 9, 257, 258, 259, 260, 300});
    pub.dmPaperWidth = static_cast<short>(random.OneOf({254, 255, 300, 320, 253}));
    pub.dmPaperLength = static_cast<short>(random.OneOf({254, 256, 280, 320, 253, 1100}));
    pub.dmPrintQuality = random.OneOf<short>({300, 300, 600, 600, 0, 720, -600});
    pub.dmCopies = random.OneOf<short>({1, 2, 0, 10000, 10001, -1});
    pub.dmCollate = random.OneOf<short>({0, 1});
}

void SetSettings(Random& random, PrivateDevMode& priv) {
    const auto flag = [&] { return random.OneOf({0, 1}); };
    priv.rotate180 = flag();
    priv.mirrorImage = flag();
    priv.jobCapture = flag();
    priv.noPrint = flag();
    priv.stitched = flag();
    priv.chunkActive = flag();
    priv.chunksize = random.OneOf<short>({30, 29, 500, 10000});
    priv.alignment = static_cast<short>(random.Between(0, 2));
    priv.overspray = static_cast<short>(random.Between(0, 4));
    priv.kws = flag();
    priv.kws_fullwidth = random.OnceIn(6) ? 1 : 0;
    priv.purgeBar = static_cast<short>(random.OneOf({0, 0, 1, 2, 3}));
    priv.purgeDots = static_cast<short>(random.OneOf({1, 5, 10, 0, 4}));
    priv.purgeGap = static_cast<short>(random.OneOf({5, 10, 15, 6}));
    priv.purgeFreq = static_cast<short>(random.OneOf({0, 1, 2, 10, 3}));
    priv.phHOffset = random.OneOf<short>({0, 0, 10, -10, 1, -1, 200, -200, 1000, -1000, 1001});
    priv.phVOffset = random.OneOf<short>({0, 250, -250, 251});
    priv.colorMode = random.OneOf({0, 0, 1, 2, 3});
    priv.dmPaperSize = random.OneOf<short>({257, 256, 258, 259});
    priv.units = random.OneOf({0u, 1u, 2u});
    if (random.OnceIn(5)) {
        for (int8_t* value : {&priv.adj_brightness, &priv.adj_colortone, &priv.adj_saturation, &priv.adj_cyan,
                              &priv.adj_magenta, &priv.adj_yellow, &priv.adj_black}) {
            if (random.OnceIn(2))
                *value = static_cast<int8_t>(random.OneOf({1, -1, 30, -40, 100, -100, 101}));
        }
    }
}

void Corrupt(Random& random, Record& record) {
    for (size_t fields = random.Below(5); fields-- > 0;) {
        const RecordField field = random.OneOf(AllFields());
        Put(record, field, random.OneOf(Values()));
    }
    Put(record, kSize, sizeof(DEVMODEW));
    Put(record, kExtra, sizeof(PrivateDevMode));
    if (!random.OnceIn(3)) return;
    const size_t size = random.OneOf({188u, 212u, 220u, 221u, 100u, 72u, 71u, 300u});
    if (random.OnceIn(2)) Put(record, kVersion, 0);
    record = Resized(record, size, random.OneOf({696u, 695u, 0u, 161u, 300u, 697u}));
}

// Returns one of the colors that profiles differ in: grid points and their neighbors, dark colors, white.
uint32_t RandomColor(Random& random) {
    const auto component = [&] {
        return random.OneOf({0u, 16u, 240u, 255u, 8u, 250u, 17u, static_cast<uint32_t>(random.Below(256))});
    };
    const size_t choice = random.Below(4);
    if (choice == 0) return 0xFFFFFF;
    const uint32_t bits = random.Bits();
    if (choice == 1) return (bits & 7) << 16 | (bits >> 8 & 0xFF) << 8 | (bits >> 16 & 7);
    uint32_t color = 0;
    for (int i = 0; i < 3; ++i) color = color << 8 | component();
    return color;
}

}  // namespace

Record RandomRecord(Random& random, const plain::Installation& installation) {
    DeviceMode mode = plain::ValidDeviceMode();
    SetPaper(random, mode.pub);
    SetSettings(random, mode.priv);
    SetWide(mode.pub.dmFormName, random.Text({"", "Form", "A form with a name of 32 letters"}));
    SetWide(mode.priv.colorProfile, RandomProfileName(random, installation));
    if (random.OnceIn(30)) SetWide(mode.priv.colorProfile, std::string(260, 'z'));
    Record record(Bytes(mode).begin(), Bytes(mode).end());
    if (random.OnceIn(20)) Put(record, kSignature, 0x18284001);
    if (random.OnceIn(5)) Corrupt(random, record);
    return record;
}

plain::PageBits RandomPage(Random& random, int32_t mostWidth, int32_t mostHeight) {
    plain::PageBits page;
    const auto side = [&] { return random.OnceIn(6) ? random.Between(60, 140) : random.Between(1, 40); };
    page.width = std::min(side(), mostWidth);
    page.height = std::min(side(), mostHeight);
    if (random.OnceIn(8)) {  // past the limits that a thumbnail has without settings
        page.width = std::min(random.Between(1, 3), mostWidth);
        page.height = std::min(random.Between(500, 1300), mostHeight);
    }
    page.pixelBytes = random.OnceIn(6) ? 3 : 4;
    page.upward = random.OnceIn(4);
    page.stride = page.width * page.pixelBytes + (random.OnceIn(3) ? random.Between(1, 8) : 0);
    // Sanitizers want pixels that are read as numbers to be aligned.
    if (page.pixelBytes == 4) page.stride += -page.stride & 3;
    page.bytes.resize(static_cast<size_t>(page.stride * (page.height - 1) + page.width * page.pixelBytes));
    std::vector<uint32_t> colors;
    for (int i = 0; i < 12; ++i) colors.push_back(RandomColor(random));
    const int32_t across = random.Between(1, 12), down = random.Between(1, 12);
    for (int32_t y = 0; y < page.height; ++y) {
        for (int32_t x = 0; x < page.width; ++x) {
            const bool again = x % across != 0 || y % down != 0;
            const uint32_t color = again ? page.Pixel(x - x % across, y - y % down) : random.OneOf(colors);
            const uint32_t pixel = color | 0xAB000000;
            for (int32_t i = 0; i < page.pixelBytes; ++i)
                page.bytes[page.Offset(x, y) + static_cast<size_t>(i)] = static_cast<uint8_t>(pixel >> 8 * i);
        }
    }
    return page;
}

}  // namespace orvex
