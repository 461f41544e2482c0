#include "tests/system/random_jobs/driver_pair.h"

#include <cstring>

#include "driver/device_instance.h"
#include "tests/kit/picture.h"
#include "tests/plain/driver/thumbnail.h"
#include "tests/system/random_jobs/expected_capabilities.h"
#include "tests/system/random_jobs/random_world.h"
#include "tools/common/wide_text.h"

namespace orvex {

using namespace tools;
namespace fs = std::filesystem;

namespace {

// Lines whose numbers are times or addresses; the times also decide whether they are written.
constexpr const char* kTimed[] = {
    "setup: ",    "P Reformat: ", "L Reformat: ", "P Convert: ",      "L Convert: ",
    "P Encode: ", "L Encode: ",   "write: ",      "Page Time elapsed"};
constexpr const char* kCut[] = {"[Info]  pdev: ", "[Info]  generated base64 png"};

// Returns the text of a log without what can't be known, line by line.
std::vector<std::string> Comparable(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    std::vector<std::string> kept;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        bool dropped = line.empty() || line.starts_with("[Trace] ");
        for (const char* timed : kTimed)
            dropped = dropped || line.starts_with(std::string("[Info]  ") + timed);
        for (const char* cut : kCut) line.resize(line.starts_with(cut) ? strlen(cut) : line.size());
        for (size_t sign; (sign = line.find("-nan")) != std::string::npos;) line.erase(sign, 1);
        if (!dropped) kept.push_back(line);
    }
    return kept;
}

std::string Readable(const std::string& event) {
    std::string text;
    for (const char c : event.substr(0, 300)) {
        char code[5];
        snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned char>(c));
        text += c >= ' ' && c < 127 ? std::string(1, c) : std::string(code);
    }
    return text + (event.size() > 300 ? "..." : "");
}

// Returns a written thumbnail as the model gives it.
std::string AsPicture(const std::string& event) {
    const Picture picture = DecodePicture(DecodeBase64(event.substr(strlen("write "))));
    return "write " +
           plain::PictureText(picture.width, picture.height, {picture.rgba.begin(), picture.rgba.end()});
}

template <typename Character, size_t N>
void ClearAfterEnd(Character (&text)[N]) {
    std::fill(std::find(std::begin(text), std::end(text), Character{0}), std::end(text), Character{0});
}

DeviceMode WithCleanTexts(DeviceMode mode) {
    ClearAfterEnd(mode.pub.dmDeviceName);
    ClearAfterEnd(mode.pub.dmFormName);
    ClearAfterEnd(mode.priv.labelName);
    ClearAfterEnd(mode.priv.width_string);
    ClearAfterEnd(mode.priv.length_string);
    ClearAfterEnd(mode.priv.colorProfile);
    return mode;
}

PrinterData DataOf(const plain::LabelData& labels) {
    PrinterData data;
    if (labels.hasKey && labels.labels.empty()) data.AddKey("Label Sizes");
    for (const auto& [number, values] : labels.labels) {
        data.AddKey("Label Sizes\\" + number);
        for (const auto& [name, value] : values)
            data.Set("Label Sizes\\" + number, name, {value.type, value.bytes});
    }
    return data;
}

std::string Utf16(const std::string& text) {
    std::string bytes = "\xFF\xFE";
    for (const char c : text) bytes += {c, '\0'};
    return bytes;
}

}  // namespace

DriverPair::DriverPair() : large(LargeProfiles()) {
    fs::remove_all(installation.Path() / "profiles");
    fs::create_directories(installation.Path() / "profiles");
    for (const auto& [name, file] : large) file.Write(aside_.Path() / name);
    DriverSession& session = Session(ScriptedEngine::Entries());
    model.installation.folder = Utf8(WindowsPath(fs::absolute(installation.Path()).lexically_normal()));
    model.installation.mask = std::to_string(mask);
    model.printerName = session.Printer().name;
    session.SetSink([this](std::string_view bytes) {
        scripted_.events.push_back("write " + std::string(bytes));
        return !model.refusedWrites.contains(++writes_);
    });
}

DriverPair::~DriverPair() {
    // The job that was not ended would keep its library.
    Session().Hooks().endDoc(nullptr, 0);
    fs::current_path(directoryBefore_);
    devices_.clear();
}

fs::path DriverPair::PathOf(const std::string& profile) const {
    return installation.Path() / "profiles" / profile;
}

void DriverPair::InstallFiles() {
    const plain::Installation& wanted = model.installation;
    const auto install = [&](const char* name, const std::optional<std::string>& text) {
        fs::remove(installation.Path() / name);
        if (text) WriteBytes(installation.Path() / name, *text);
    };
    install("settings.inf", wanted.settings);
    install("media.inf", wanted.media);
    install("profilenames.inf", wanted.names ? std::optional(Utf16(*wanted.names)) : std::nullopt);
    for (const auto& [name, file] : large) {
        if (fs::exists(PathOf(name))) fs::rename(PathOf(name), aside_.Path() / name);
    }
    fs::remove_all(installation.Path() / "profiles");
    fs::create_directories(installation.Path() / "profiles");
    for (const auto& [name, file] : wanted.profiles) {
        if (large.contains(name)) {
            fs::rename(aside_.Path() / name, PathOf(name));
        } else {
            file.Write(PathOf(name));
        }
    }
    Session().Shell().SetLanguage(wanted.language);
    Printer().data = DataOf(model.labels);
}

void DriverPair::WriteMask() {
    WriteBytes(Session().Driver().LogControlPath(), model.installation.mask);
}

void DriverPair::BeginJob(const plain::EngineScript& script) {
    model.engine.Begin(script);
    scripted_.part.Begin(script);
    model.writes = writes_ = 0;
}

int DriverPair::EnablePdev(const std::optional<Record>& record) {
    DriverSession& session = Session();
    session.Shell().FailFolder(model.installation.found ? 0 : ERROR_ACCESS_DENIED);
    if (!model.makesPalettes) session.Graphics().FailCall(GraphicsService::kCreatePalette);
    std::unique_ptr<Device> device = session.EnablePdev(record ? *record : Record());
    std::optional<Record> expected = record;
    const int number = model.EnablePdev(expected ? &*expected : nullptr);
    EXPECT_EQ(device->Instance() != nullptr, number != plain::kNoDevice);
    EXPECT_TRUE(device->Intact());
    const bool sameRecord =
        !expected || memcmp(device->DeviceMode(), expected->data(), expected->size()) == 0;
    EXPECT_TRUE(sameRecord) << "in the caller's device mode";
    EXPECT_EQ(Printer().data, DataOf(model.labels));
    if (number != plain::kNoDevice && device->Instance() != nullptr) {
        session.CompletePdev(*device);
        devices_.push_back(std::move(device));
        const GDIINFO capabilities = ExpectedCapabilities(model.Device(number));
        EXPECT_EQ(memcmp(&devices_.back()->Capabilities(), &capabilities, sizeof capabilities), 0);
    }
    ExpectSame(number != plain::kNoDevice ? "DrvCompletePDEV" : "DrvEnablePDEV");
    return number;
}

bool DriverPair::EnableSurface(int device) {
    Device& driverDevice = *devices_[static_cast<size_t>(device)];
    DriverSession& session = Session();
    if (!model.makesBitmaps) session.Graphics().FailCall(GraphicsService::kCreateBitmap);
    if (model.makesBitmaps && !model.associates)
        session.Graphics().FailCall(GraphicsService::kAssociateSurface);
    const size_t surfaces = session.Graphics().LiveSurfaces();
    const bool expected = model.EnableSurface(device);
    EXPECT_EQ(session.EnableSurface(driverDevice), expected);
    EXPECT_EQ(session.Graphics().LiveSurfaces(), surfaces + (expected ? 1 : 0));
    const DrawnSurface* surface = session.Graphics().FindSurface(driverDevice.SurfaceHandle());
    if (surface != nullptr) {
        EXPECT_EQ(surface->size.cx, model.Device(device).surfaceWidth);
        EXPECT_EQ(surface->size.cy, model.Device(device).surfaceHeight);
        EXPECT_EQ(surface->stride, 4 * surface->size.cx);
        EXPECT_EQ(surface->hooks, 0u);
    }
    ExpectSame("DrvEnableSurface");
    return expected;
}

bool DriverPair::ResetPdev(int old, int fresh) {
    const bool expected = model.ResetPdev(old, fresh);
    EXPECT_EQ(Session().ResetPdev(*devices_[static_cast<size_t>(old)], *devices_[static_cast<size_t>(fresh)]),
              expected);
    ExpectSame("DrvResetPDEV");
    return expected;
}

void DriverPair::DisablePdev(int device) {
    Device& driverDevice = *devices_[static_cast<size_t>(device)];
    Session().DisableSurface(driverDevice);
    EXPECT_EQ(Session().Graphics().FindSurface(driverDevice.SurfaceHandle()), nullptr);
    Session().DisablePdev(driverDevice);
    devices_[static_cast<size_t>(device)].reset();
    model.DisablePdev(device);
    ExpectSame("DrvDisablePDEV");
}

SURFOBJ DriverPair::SurfaceOf(int device, const plain::PageBits& page) const {
    SURFOBJ surface = {};
    if (device != plain::kNoDevice) {
        const Device& driverDevice = *devices_[static_cast<size_t>(device)];
        surface.hsurf = driverDevice.SurfaceHandle();
        surface.dhpdev = driverDevice.Instance();
        surface.hdev = driverDevice.Handle();
    }
    auto* bits = const_cast<uint8_t*>(page.bytes.data());
    surface.sizlBitmap = {page.width, page.height};
    surface.cjBits = static_cast<ULONG>(page.bytes.size());
    surface.pvBits = bits;
    surface.pvScan0 = bits + page.Offset(0, 0);
    surface.lDelta = page.upward ? -page.stride : page.stride;
    surface.iBitmapFormat = page.pixelBytes == 3 ? BMF_24BPP : BMF_32BPP;
    return surface;
}

template <typename Hook>
bool DriverPair::CallWithSurface(const char* name, int device, const plain::PageBits& page, bool erases,
                                 bool expected, Hook hook) {
    SURFOBJ surface = SurfaceOf(device, page);
    const bool valid = device != plain::kNoDevice;
    if (valid && erases) PoisonBits(device, page);
    // Pages of an odd width come without a surface if there is no device.
    SURFOBJ* given = valid || page.width % 2 == 0 ? &surface : nullptr;
    SetLastError(0);
    const bool answer = hook(given) != FALSE;
    EXPECT_TRUE(valid || GetLastError() == ERROR_INVALID_PARAMETER);
    EXPECT_EQ(answer, expected);
    if (valid && erases) ExpectWhiteBits(device, page);
    ExpectSame(name);
    return expected;
}

void DriverPair::PoisonBits(int device, const plain::PageBits& page) {
    const DrawnSurface& surface =
        *Session().Graphics().FindSurface(devices_[static_cast<size_t>(device)]->SurfaceHandle());
    for (int32_t y = 0; y < page.height; ++y)
        memset(surface.bits->Data() + y * surface.stride, 0x11, static_cast<size_t>(4 * page.width));
}

void DriverPair::ExpectWhiteBits(int device, const plain::PageBits& page) {
    const DrawnSurface& surface =
        *Session().Graphics().FindSurface(devices_[static_cast<size_t>(device)]->SurfaceHandle());
    const std::vector<uint32_t> white(static_cast<size_t>(page.width), 0xFFFFFF);
    bool erased = true;
    for (int32_t y = 0; y < page.height; ++y) {
        erased =
            erased && memcmp(surface.bits->Data() + y * surface.stride, white.data(), white.size() * 4) == 0;
    }
    EXPECT_TRUE(erased) << "the page was not erased";
}

bool DriverPair::StartDoc(int device, const plain::PageBits& page, const std::string& title, int jobId) {
    Session().Shell().FailFolder(model.installation.found ? 0 : ERROR_ACCESS_DENIED);
    Session().Engine().FailLoading(!model.libraryLoads);
    const bool expected = model.StartDoc(device, page.width, page.height, title, jobId);
    std::u16string wideTitle = Wide(title);
    return CallWithSurface("DrvStartDoc", device, page, true, expected, [&](SURFOBJ* surface) {
        return Session().Hooks().startDoc(surface, AsWchar(wideTitle), static_cast<DWORD>(jobId));
    });
}

bool DriverPair::StartPage(int device, const plain::PageBits& page) {
    return CallWithSurface("DrvStartPage", device, page, true, model.StartPage(device),
                           [&](SURFOBJ* surface) { return Session().Hooks().startPage(surface); });
}

bool DriverPair::SendPage(int device, const plain::PageBits& page) {
    return CallWithSurface("DrvSendPage", device, page, false, model.SendPage(device, page),
                           [&](SURFOBJ* surface) { return Session().Hooks().sendPage(surface); });
}

bool DriverPair::EndDoc(int device, const plain::PageBits& page) {
    return CallWithSurface("DrvEndDoc", device, page, false, model.EndDoc(device),
                           [&](SURFOBJ* surface) { return Session().Hooks().endDoc(surface, 0); });
}

void DriverPair::ExpectSame(const char* hook) {
    SCOPED_TRACE(hook);
    ExpectSameEvents();
    ExpectSameLog(hook);
    ExpectSameDevices();
    EXPECT_EQ(Session().Engine().Bound(), model.Bound());
    EXPECT_TRUE(fs::equivalent(fs::current_path(), model.Bound() ? installation.Path() : directoryBefore_));
    EXPECT_THAT(Session().Graphics().Complaints(), testing::IsEmpty());
}

void DriverPair::ExpectSameEvents() {
    const std::vector<std::string>& actual = scripted_.events;
    for (size_t i = 0; i < std::max(actual.size(), model.events.size()); ++i) {
        std::string is = i < actual.size() ? actual[i] : "nothing";
        const std::string wanted = i < model.events.size() ? model.events[i] : "nothing";
        if (wanted.starts_with(std::string("write ") + plain::kPicture)) is = AsPicture(is);
        if (is == wanted) continue;
        ADD_FAILURE() << "event " << i << " is\n  " << Readable(is) << "\nand must be\n  "
                      << Readable(wanted);
        break;
    }
    scripted_.events.clear();
    model.events.clear();
}

void DriverPair::ExpectSameLog(const char* hook) {
    const std::vector<std::string> lines = LogLines();
    EXPECT_EQ(Comparable(lines), Comparable(model.log.lines));
    const bool tracedBefore = maskBefore_ & 2, tracedAfter = model.log.mask & 2;
    const auto isTrace = [](const std::string& line) { return line.starts_with("[Trace] "); };
    EXPECT_TRUE(tracedBefore || tracedAfter || std::none_of(lines.begin(), lines.end(), isTrace));
    if (tracedAfter) {
        ASSERT_FALSE(lines.empty());
        EXPECT_TRUE(!tracedBefore || isTrace(lines.front()));
        EXPECT_EQ(lines.back(), "[Trace] </" + std::string(hook) + ">");
    }
    maskBefore_ = model.log.mask;
    model.log.lines.clear();
}

void DriverPair::ExpectSameDevices() {
    for (size_t i = 0; i < devices_.size(); ++i) {
        const plain::ModelDevice& expected = model.Device(static_cast<int>(i));
        if (!expected.enabled) continue;
        const PDEV& actual = InstanceOf(*devices_[i]);
        ExpectSameRecord(actual.devmode, expected.mode);
        EXPECT_EQ(actual.dwPageWidth, expected.pageWidth);
        EXPECT_EQ(actual.dwPageLength, expected.pageLength);
        EXPECT_EQ(actual.orientation, expected.orientation);
        EXPECT_EQ(actual.pageCount, expected.pageCount);
        EXPECT_EQ(actual.cCopies, -1);
        EXPECT_EQ(actual.flags, (expected.inJob ? 4u : 0u) | (expected.reset ? 0x100000u : 0u));
    }
}

void DriverPair::ExpectSameRecord(const DeviceMode& actual, const DeviceMode& expected) {
    const DeviceMode a = WithCleanTexts(actual), b = WithCleanTexts(expected);
    const auto* left = reinterpret_cast<const uint8_t*>(&a);
    const auto* right = reinterpret_cast<const uint8_t*>(&b);
    const auto first = std::mismatch(left, left + sizeof a, right).first - left;
    EXPECT_EQ(first, static_cast<ptrdiff_t>(sizeof a)) << "the device modes differ at this offset";
}

}  // namespace orvex
