#include "tests/system/endurance/helper/job_kinds.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/driver/profiles/profile_bytes.h"
#include "tests/kit/scratch_folder.h"
#include "tests/plain/device_mode.h"
#include "tests/plain/large_profile.h"

namespace orvex {

using namespace tools;
namespace fs = std::filesystem;

namespace {

constexpr int16_t kSmallestSide = 254;  // tenths of a millimeter
constexpr int32_t kBlots = 60;
constexpr int32_t kBlotPx = 16;

constexpr JobKind kKinds[] = {
    {"portrait", "grid.zvp", 300, false, false, false, false, kColorModeColor, 0, 0},
    {"landscape at 600 dpi with purge bar", "grid.zvp", 600, true, false, false, false, kColorModeColor, 0,
     1},
    {"generic, composite grey, with thumbnail", "", 300, false, false, true, false, kColorModeCompositeGray,
     0, 0},
    {"adjusted, landscape, turned", "grid.zvp", 300, true, true, false, false, kColorModeColor, 20, 0},
    {"reset in the middle, with thumbnail", "grid.zvp", 300, false, false, true, true, kColorModeColor, 0, 0},
    {"half grid, portrait, turned", "half.zvp", 300, false, true, false, false, kColorModeColor, 0, 2},
    {"broken profile, black-only grey", "broken.zvp", 300, true, false, false, true, kColorModeBlackGray, 0,
     0},
};

void Require(bool done, const char* hook) {
    if (!done) throw std::runtime_error(std::string(hook) + " refused");
}

DeviceMode ModeOf(const JobKind& kind) {
    DeviceMode mode = plain::SmallLabelMode(kind.profile);
    mode.pub.dmOrientation = kind.landscape ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
    mode.pub.dmPaperWidth = kSmallestSide;
    mode.pub.dmPaperLength = kSmallestSide + 40;
    mode.pub.dmPrintQuality = kind.dpi;
    mode.priv.rotate180 = mode.priv.mirrorImage = kind.turned;
    mode.priv.colorMode = kind.colorMode;
    mode.priv.adj_brightness = kind.brightness;
    mode.priv.purgeBar = kind.purgeBar;
    return mode;
}

std::unique_ptr<Device> Enable(DriverSession& session, const DeviceMode& mode) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(&mode);
    std::unique_ptr<Device> device = session.EnablePdev({bytes, sizeof mode});
    Require(device->Instance() != nullptr, "DrvEnablePDEV");
    session.CompletePdev(*device);
    return device;
}

// Draws blots of many colors on white, different ones on each page.
void Draw(SURFOBJ& surface, size_t page) {
    std::mt19937 random(static_cast<uint32_t>(page));
    const auto below = [&random](LONG limit) {
        return static_cast<LONG>(random() % static_cast<ULONG>(limit));
    };
    for (int32_t blot = 0; blot < kBlots; ++blot) {
        const LONG left = below(surface.sizlBitmap.cx - kBlotPx),
                   top = below(surface.sizlBitmap.cy - kBlotPx);
        const uint32_t color = random() & kColorBits;
        for (LONG y = top; y < top + kBlotPx; ++y) {
            auto* line =
                reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(surface.pvBits) + y * surface.lDelta);
            std::fill_n(line + left, kBlotPx, color);
        }
    }
}

void PrintPages(DriverSession& session, Device& device, size_t first, size_t end) {
    for (size_t page = first; page < end; ++page) {
        Require(session.StartPage(device), "DrvStartPage");
        Draw(*device.Surface(), page);
        Require(session.SendPage(device), "DrvSendPage");
    }
}

// Passes the job to a new device that prints its pages the other way up, in the same size.
std::unique_ptr<Device> Reset(DriverSession& session, Device& old, const JobKind& kind) {
    DeviceMode mode = ModeOf(kind);
    mode.priv.rotate180 = !kind.turned;
    std::unique_ptr<Device> fresh = Enable(session, mode);
    Require(session.ResetPdev(old, *fresh), "DrvResetPDEV");
    Require(session.EnableSurface(*fresh), "DrvEnableSurface");
    Require(session.StartDoc(*fresh, kind.name), "DrvStartDoc");
    return fresh;
}

}  // namespace

std::span<const JobKind> JobKinds() {
    return kKinds;
}

void InstallJobProfiles(const fs::path& installation) {
    const fs::path folder = installation / "profiles";
    fs::create_directories(folder);
    const std::string tags = NameTag("Test colours") + ResolutionTag(3, 6);
    WriteBytes(folder / "grid.zvp", ProfileBytes(5, TagArea(tags), GridColors(&ProfileInk)));
    WriteLargeProfile(folder / "half.zvp", 3, tags);
    WriteBytes(folder / "broken.zvp", ProfileBytes(5, TagArea(tags), "cut short"));
}

SessionSetup JobSession(const fs::path& installation) {
    SessionSetup setup;
    setup.installation = installation;
    setup.engine = ProgramFolder() / "hpcrlib.dll";
    return setup;
}

std::string PrintJob(DriverSession& session, const fs::path& installation, const JobKind& kind) {
    WriteBytes(installation / "settings.inf",
               kind.thumbnail ? "[Driver]\r\nAdd_Thumb=1\r\n" : "[Driver]\r\n");
    std::unique_ptr<Device> device = Enable(session, ModeOf(kind));
    Require(session.EnableSurface(*device), "DrvEnableSurface");
    Require(session.StartDoc(*device, kind.name), "DrvStartDoc");
    constexpr size_t kMiddle = kPagesAJob / 2;
    PrintPages(session, *device, 0, kMiddle);
    if (kind.reset) device = Reset(session, *device, kind);
    PrintPages(session, *device, kMiddle, kPagesAJob);
    Require(session.EndDoc(*device), "DrvEndDoc");
    return std::exchange(session.Printer().written, {});
}

}  // namespace orvex
