#include "tests/system/faults/fault_fixture.h"

#include <utility>

#include "driver/support/text.h"
#include "tests/driver/profiles/profile_bytes.h"

namespace orvex {

using namespace tools;

namespace fs = std::filesystem;

namespace {

constexpr size_t kPages = 3;
constexpr JobInputs kWithoutPage[kPages] = {JobInputs::kNoFirstPage, JobInputs::kNoSecondPage,
                                            JobInputs::kNoThirdPage};
constexpr int32_t kColorsBetween = 500;  // colors of a page between those of the profile

std::string Settings(JobInputs inputs) {
    const auto flag = [inputs](JobInputs without) { return inputs == without ? "0" : "1"; };
    return std::string("[Driver]\r\nAdd_Thumb=") + flag(JobInputs::kNoThumbnail) +
           "\r\nthumb_max_width=100\r\nthumb_max_height=100\r\n"
           "[UI]\r\nDefault_Media=Small\r\nDefault_Profile=test.zvp\r\nShow_Chunked=" +
           flag(JobInputs::kNoChunkPages) + "\r\n[Color]\r\nblack_scale=150\r\n";
}
constexpr char kMedia[] = "[Media]\r\n\"Small\" \"25.4\" \"28\" 0\r\n\"Strip\" \"25.4\" \"25.4\" 0\r\n";
constexpr std::u16string_view kProfileNames = u"\xFEFF[ENU]\r\ntest.zvp=Test paper\r\n";

std::string TestProfile(JobInputs inputs) {
    const std::string colors = inputs == JobInputs::kNoColors ? "" : GridColors(&ProfileColor);
    return ProfileBytes(5, TagArea(NameTag("Test colours") + ResolutionTag(3, 6)), colors);
}

std::string BytesOf(std::u16string_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

// Chooses the second label of the list, since the printer's own is the first, and every stage of the colors.
DeviceMode WithSettings(DeviceMode mode) {
    mode.pub.dmPaperSize = 259;
    mode.priv.dmPaperSize = 258;
    mode.priv.adj_brightness = 10;
    mode.priv.adj_cyan = 1;
    return mode;
}

// The first page, of which a thumbnail is made, has few colors. The others have all colors of the profile's
// grid and some between them.
uint32_t PageColor(int32_t pixel, size_t page) {
    if (page == 1)
        return pixel / 1000 % 4 == 0 ? 0x102030u * static_cast<uint32_t>(pixel / 4000 % 5) : kColorBits;
    if (pixel < kGridPoints) {
        return ColorIndex(GridValue(pixel / kGridSteps / kGridSteps),
                          GridValue(pixel / kGridSteps % kGridSteps), GridValue(pixel % kGridSteps));
    }
    if (pixel % 8 != 0) return kColorBits;
    return static_cast<uint32_t>(pixel / 8 % kColorsBetween) * 2654435761u & kColorBits;
}

void DrawPage(SURFOBJ& surface, size_t page) {
    const int32_t pixels = surface.sizlBitmap.cx * surface.sizlBitmap.cy;
    auto* next = static_cast<uint32_t*>(surface.pvBits);
    for (int32_t pixel = 0; pixel < pixels; ++pixel) *next++ = PageColor(pixel, page);
}

// Joins the lines of a message that holds a line end, and drops the two addresses in "pdev: old<-new", which
// differ from run to run.
std::vector<std::string> MessagesIn(const std::vector<std::string>& lines) {
    constexpr std::string_view kTakeover = "[Info]  pdev: ";
    std::vector<std::string> messages;
    for (const std::string& line : lines) {
        if (line.starts_with(kTakeover)) {
            messages.emplace_back(kTakeover);
        } else if (messages.empty() || line.starts_with('[')) {
            messages.push_back(line);
        } else {
            messages.back() += "\n" + line;
        }
    }
    return messages;
}

}  // namespace

FaultTest::FaultTest() : directory_(fs::current_path()) {
    SetInputs(JobInputs::kAll);
    installation.Write("profilenames.inf", BytesOf(kProfileNames));
    installation.Write("profiles/first.zvp",
                       ProfileBytes(5, TagArea(NameTag("First")), GridColors(&ProfileColor)));
    Reload();
}

void FaultTest::SetInputs(JobInputs inputs) {
    const auto write = [&](const char* name, const std::string& bytes, JobInputs without) {
        const fs::path path = installation.Write(name, bytes);
        if (inputs == without) fs::remove(path);
    };
    installation.Write("settings.inf", Settings(inputs));
    write("media.inf", kMedia, JobInputs::kNoLabels);
    write("profiles/test.zvp", TestProfile(inputs), JobInputs::kNoProfile);
    inputs_ = inputs;
}

void FaultTest::Reload() {
    watch_.reset();
    DriverSession& session = Restart(ProgramFolder() / "hpcrlib.dll");
    session.Shell().SetLanguage("ENU");
    watch_.emplace(session.Driver().Module(), Heap());
    misuses_ = complaints_ = 0;
}

bool FaultTest::Hook(const std::string& name, const std::function<bool()>& call) {
    HookRecord hook;
    hook.name = name + " " + std::to_string(++hookCalls_[name]);
    Printer().written.clear();
    watch_->Enter(hook.name);
    SetLastError(ERROR_SUCCESS);
    hook.accepted = call();
    hook.lastError = GetLastError();
    watch_->Leave();
    hook.output = Printer().written;
    hook.log = MessagesIn(LogLines());
    record_.hooks.push_back(hook);
    return hook.accepted;
}

std::unique_ptr<Device> FaultTest::MakeDevice() {
    std::unique_ptr<Device> device;
    const bool first = hookCalls_["DrvEnablePDEV"] == 0;
    const bool none = inputs_ == (first ? JobInputs::kNoFirstMode : JobInputs::kNoSecondMode);
    const std::vector<uint8_t> mode = none ? std::vector<uint8_t>() : Bytes(WithSettings(Mode()));
    Hook("DrvEnablePDEV", [&] {
        device = Session().EnablePdev(mode);
        return device->Instance() != nullptr;
    });
    EXPECT_TRUE(device->Intact());
    if (device->Instance() == nullptr) return nullptr;
    Hook("DrvCompletePDEV", [&] { return Session().CompletePdev(*device), true; });
    return device;
}

void FaultTest::CloseDevice(std::unique_ptr<Device> device) {
    if (device->Surface() != nullptr) {
        Hook("DrvDisableSurface", [&] { return Session().DisableSurface(*device), true; });
    }
    EXPECT_TRUE(device->Intact());
    Hook("DrvDisablePDEV", [&] { return Session().DisablePdev(*device), true; });
}

// Continues the job in the old device if the new one can't be made.
std::unique_ptr<Device> FaultTest::ResetDevice(std::unique_ptr<Device> old) {
    std::unique_ptr<Device> fresh = MakeDevice();
    if (fresh == nullptr) return old;
    const bool ready = Hook("DrvResetPDEV", [&] { return Session().ResetPdev(*old, *fresh); }) &&
                       Hook("DrvEnableSurface", [&] { return Session().EnableSurface(*fresh); }) &&
                       Hook("DrvStartDoc", [&] { return Session().StartDoc(*fresh, "Faults"); });
    if (!ready) std::swap(old, fresh);
    CloseDevice(std::move(old));
    return fresh;
}

void FaultTest::PrintPages(std::unique_ptr<Device>* device) {
    for (size_t page = 1; page <= kPages; ++page) {
        if (page == 2) *device = ResetDevice(std::move(*device));
        if (!Hook("DrvStartPage", [&] { return Session().StartPage(**device); })) return;
        DrawPage(*(*device)->Surface(), page);
        const bool skipped = inputs_ == kWithoutPage[page - 1];
        Hook("DrvSendPage", [&] { return skipped || Session().SendPage(**device); });
    }
}

JobRecord FaultTest::Run(size_t failingCall) {
    Printer().data = {};
    LogLines();
    record_ = {};
    hookCalls_.clear();
    watch_->Begin(failingCall);
    if (std::unique_ptr<Device> device = MakeDevice()) {
        if (Hook("DrvEnableSurface", [&] { return Session().EnableSurface(*device); }) &&
            Hook("DrvStartDoc", [&] { return Session().StartDoc(*device, "Faults"); })) {
            PrintPages(&device);
            Hook("DrvEndDoc", [&] { return Session().EndDoc(*device); });
        }
        CloseDevice(std::move(device));
    }
    record_.calls = watch_->TakeCalls();
    return std::move(record_);
}

std::vector<std::string> FaultTest::LeftBehind() {
    std::vector<std::string> left = LeftOnHeap();
    for (const std::string& name : watch_->OpenHandles()) left.push_back("open: " + name);
    const auto count = [&left](size_t number, const char* what) {
        if (number > 0) left.push_back(std::to_string(number) + " " + what);
    };
    count(PrintSpooler().OpenHandles() - 1, "printer handles");  // the job's own stays open
    const auto countNew = [&count](size_t number, size_t& told, const char* what) {
        count(number - std::exchange(told, number), what);
    };
    countNew(PrintSpooler().Misuses().size(), misuses_, "wrong uses of printer handles");
    count(Session().Graphics().LiveSurfaces(), "surfaces");
    count(Session().Graphics().LivePalettes(), "palettes");
    countNew(Session().Graphics().Complaints().size(), complaints_, "calls that no graphics engine takes");
    if (Session().Engine().Bound()) left.push_back("the print engine's library");
    if (fs::current_path() != directory_) {
        left.push_back("another current directory");
        fs::current_path(directory_);
    }
    watch_->CloseHandles();
    return left;
}

}  // namespace orvex
