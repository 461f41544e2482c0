#include "tests/driver/send_page_fixture.h"

#include <random>

namespace orvex {

using namespace tools;

namespace {

constexpr uint32_t kGridColors[] = {0xFFFFFF, 0x000000, 0xFF0000, 0x00FF00,
                                    0x0000FF, 0x102030, 0xF0E0D0, 0x808080};

}  // namespace

SendPageTest::~SendPageTest() {
    if (device_) Session().EndDoc(*device_);
}

DeviceMode SendPageTest::Landscape() {
    DeviceMode mode = Mode();
    mode.pub.dmOrientation = DMORIENT_LANDSCAPE;
    return mode;
}

void SendPageTest::Paint(SURFOBJ& surface) {
    std::mt19937 random(7);
    for (int32_t y = 0; y < surface.sizlBitmap.cy; ++y) {
        for (int32_t x = 0; x < surface.sizlBitmap.cx; ++x) {
            const uint32_t color = kGridColors[random() % std::size(kGridColors)];
            SetPixel(surface, x, y, color | (random() & 0xFF000000));
        }
    }
}

Rows SendPageTest::Print(const DeviceMode& mode, bool painted) {
    device_ = StartPage(mode);
    if (painted) Paint(*device_->Surface());
    at600Dpi_ = mode.pub.dmPrintQuality == 600;
    LogLines();
    EXPECT_TRUE(Session().SendPage(*device_));
    return engine.rows;
}

Rows SendPageTest::PrintSize(const DeviceMode& mode, int32_t width, int32_t height) {
    device_ = StartPage(mode);
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height), 0xFFFFFF);
    SURFOBJ surface = *device_->Surface();
    surface.sizlBitmap = {width, height};
    surface.pvBits = surface.pvScan0 = pixels.data();
    surface.lDelta = width * 4;
    surface.cjBits = static_cast<ULONG>(pixels.size() * 4);
    LogLines();
    EXPECT_TRUE(Session().Hooks().sendPage(&surface));
    return engine.rows;
}

uint32_t SendPageTest::Ink(int32_t x, int32_t y) const {
    return ProfileColor(Pixel(*device_->Surface(), x, y) & 0xFFFFFF, at600Dpi_);
}

}  // namespace orvex
