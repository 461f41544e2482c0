#include "tests/kit/driver_fixture.h"

#include <cstring>

#include "tests/driver/profiles/profile_bytes.h"
#include "tests/plain/device_mode.h"

namespace orvex {

using namespace tools;

uint32_t ProfileColor(uint32_t color, bool at600Dpi) {
    return color == 0xFFFFFF ? 0 : (color ^ (at600Dpi ? 0x5A000000u : 0x3C000000u)) & 0x7FFFFFFF;
}

DriverTest::DriverTest() {
    installation.Write(
        std::filesystem::path("profiles") / kProfile,
        ProfileBytes(5, TagArea(NameTag("Test colours") + ResolutionTag(3, 6)), GridColors(&ProfileColor)));
}

DriverTest::~DriverTest() {
    Unload();
}

DeviceMode DriverTest::Mode() {
    return plain::SmallLabelMode(kProfile);
}

plain::HeaderFacts DriverTest::Facts(const std::string& jobName) {
    return {.jobName = jobName,
            .profileName = "Test colours",
            .resolutionCode = 3,
            .widthPx = kWidthPx,
            .heightPx = kHeightPx};
}

std::string DriverTest::Header(const std::string& jobName) {
    return plain::JobHeader(Mode(), Facts(jobName));
}

std::vector<uint8_t> DriverTest::Bytes(const DeviceMode& mode) {
    std::vector<uint8_t> bytes(sizeof mode);
    memcpy(bytes.data(), &mode, sizeof mode);
    return bytes;
}

DriverSession& DriverTest::Session(EngineSource source) {
    if (!session_) {
        SessionSetup setup;
        setup.installation = installation.Path();
        setup.engine = std::move(source);
        session_.emplace(setup);
        heap_.emplace(session_->Driver().Module(), HeapWatch::Blocks::kGuarded);
        log_.emplace(session_->Driver().LogPath(), mask);
    }
    return *session_;
}

DriverSession& DriverTest::Restart(EngineSource source) {
    Unload();
    return Session(std::move(source));
}

void DriverTest::Unload() {
    if (!session_) return;
    EXPECT_THAT(LeftOnHeap(), testing::IsEmpty());
    EXPECT_THAT(session_->Graphics().Complaints(), testing::IsEmpty());
    log_.reset();
    heap_.reset();
    session_.reset();
}

std::vector<std::string> DriverTest::LeftOnHeap() const {
    const std::string log = session_->Driver().LogName();
    const std::string control = log.substr(0, log.size() - strlen("txt")) + "dat";
    std::vector<std::string> left = heap_->Misuses();
    for (const std::span<const uint8_t> block : heap_->LiveBlocks()) {
        const std::string_view bytes(reinterpret_cast<const char*>(block.data()), block.size());
        const bool keptForLife = bytes == std::string_view(log.c_str(), log.size() + 1) ||
                                 bytes == std::string_view(control.c_str(), control.size() + 1);
        if (!keptForLife) left.push_back("a block of " + std::to_string(block.size()) + " bytes");
    }
    return left;
}

std::unique_ptr<Device> DriverTest::Enable(const DeviceMode& mode) {
    DriverSession& session = Session();
    std::unique_ptr<Device> device = session.EnablePdev(Bytes(mode));
    EXPECT_NE(device->Instance(), nullptr);
    session.CompletePdev(*device);
    EXPECT_TRUE(session.EnableSurface(*device));
    return device;
}

std::unique_ptr<Device> DriverTest::StartPage(const DeviceMode& mode, const std::string& title) {
    std::unique_ptr<Device> device = Enable(mode);
    EXPECT_TRUE(Session().StartDoc(*device, title));
    EXPECT_TRUE(Session().StartPage(*device));
    return device;
}

uint32_t DriverTest::Pixel(const SURFOBJ& surface, int32_t x, int32_t y) {
    uint32_t pixel;
    memcpy(&pixel, static_cast<const uint8_t*>(surface.pvBits) + y * surface.lDelta + x * 4, sizeof pixel);
    return pixel;
}

void DriverTest::SetPixel(SURFOBJ& surface, int32_t x, int32_t y, uint32_t color) {
    memcpy(static_cast<uint8_t*>(surface.pvBits) + y * surface.lDelta + x * 4, &color, sizeof color);
}

}  // namespace orvex
