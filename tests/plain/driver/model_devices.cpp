// The hooks of devices: their settings, their size, and what a reset carries over.

#include <algorithm>
#include <cstdlib>

#include "tests/plain/device_mode.h"
#include "tests/plain/driver/driver_model.h"
#include "tests/plain/driver/profile_list.h"
#include "tests/plain/driver/settings_text.h"
#include "tests/plain/layout_input.h"

namespace orvex::plain {

namespace {

constexpr int kInJob = 0x4, kReset = 0x100000;

template <typename Character, size_t N>
void SetText(Character (&field)[N], const std::string& text) {
    std::fill(std::begin(field), std::end(field), Character{0});
    for (size_t i = 0; i < std::min(text.size(), N - 1); ++i) field[i] = static_cast<Character>(text[i]);
}

std::vector<ListedLabel> Listed(const std::vector<Label>& labels) {
    std::vector<ListedLabel> listed;
    for (const Label& label : labels) {
        listed.push_back({static_cast<int16_t>(label.number), label.name.c_str(),
                          LabelLength(label.width, label.units), LabelLength(label.length, label.units)});
    }
    return listed;
}

}  // namespace

uint32_t PixelsOf(int16_t dpi, uint32_t tenthsMm) {
    const uint32_t dotsPerMeter = dpi == 600 ? 23622 : 11811;
    return (5000 + dotsPerMeter * tenthsMm) / 10000;
}

void DriverModel::LoadMask() {
    char* end = nullptr;
    const long long number = strtoll(installation.mask.c_str(), &end, 10);
    log.mask = end == installation.mask.c_str() ? 0 : static_cast<uint32_t>(number);
}

void DriverModel::SetUpDefaults(DeviceMode& mode) {
    LoadMask();
    if (installation.found) {
        ImportMedia(installation, labels, log);
    } else {
        log.Error("Error: could get app path");
    }
    mode = DefaultDeviceMode();
    SetText(mode.pub.dmDeviceName, printerName);
    const std::string wanted = SettingText(installation, "[UI]", "Default_Media=", 254, log);
    const std::vector<Label> list = wanted.empty() ? std::vector<Label>() : ReadLabels(labels, log);
    for (const Label& label : list) {
        if (label.name != Trimmed(wanted)) continue;
        SetText(mode.priv.labelName, label.name);
        SetText(mode.priv.width_string, label.width);
        SetText(mode.priv.length_string, label.length);
        mode.priv.units = label.units;
        mode.priv.dmPaperSize = static_cast<int16_t>(label.number);
        break;
    }
    if (mode.priv.dmPaperSize != 257) {
        mode.pub.dmPaperSize = mode.priv.dmPaperSize;
        mode.pub.dmPaperWidth = LabelLength(mode.priv.width_string, mode.priv.units);
        mode.pub.dmPaperLength = LabelLength(mode.priv.length_string, mode.priv.units);
    }
    SetText(mode.priv.colorProfile, DefaultProfile(installation, log));
}

void DriverModel::Merge(DeviceMode& mode, Record* record) {
    if (record == nullptr) return log.Error("pdmSrc NULL");
    const bool taken = IsTaken(*record);
    // The record is dumped once before it is converted, and before and after the conversion.
    const bool known = (*record)[68] == 220 && (*record)[69] == 0;
    for (int dumps = taken ? 3 : 2; !known && dumps > 0; --dumps)
        log.Info("DevMode is invalid. The values of sizeof(DEVMODE) and dmSize do not match.");
    const DeviceMode printers = mode;
    const Record given = *record;
    *record = GivenBack(printers, given);
    if (!taken) return;
    mode = Merged(printers, given, {});
    if (mode.pub.dmPaperSize < 257 || mode.pub.dmPaperSize == mode.priv.dmPaperSize) return;
    const std::vector<Label> list = ReadLabels(labels, log);
    mode = Merged(printers, given, Listed(list));
}

// Takes the size of the last label of that number, whatever it is.
void DriverModel::TakeLabelSize(DeviceMode& mode) {
    const int number = mode.pub.dmPaperSize;
    if (number < 257 || number == mode.priv.dmPaperSize) return;
    for (const Label& label : ReadLabels(labels, log)) {
        if (label.number != number) continue;
        mode.pub.dmPaperWidth = LabelLength(label.width, label.units);
        mode.pub.dmPaperLength = LabelLength(label.length, label.units);
    }
}

int DriverModel::EnablePdev(Record* record) {
    ModelDevice device;
    SetUpDefaults(device.mode);
    Merge(device.mode, record);
    TakeLabelSize(device.mode);
    const auto width = static_cast<uint32_t>(device.mode.pub.dmPaperWidth);
    const auto length = static_cast<uint32_t>(device.mode.pub.dmPaperLength);
    device.orientation = device.mode.pub.dmOrientation;
    device.pageWidth = device.orientation == 1 ? width : length;
    device.pageLength = device.orientation == 1 ? length : width;
    if (!makesPalettes) return kNoDevice;
    devices_.push_back(device);
    return static_cast<int>(devices_.size()) - 1;
}

bool DriverModel::EnableSurface(int device) {
    ModelDevice& at = At(device);
    const int16_t dpi = Resolution(at.mode);
    at.surfaceWidth = static_cast<int32_t>(PixelsOf(dpi, at.pageWidth));
    at.surfaceHeight = static_cast<int32_t>(PixelsOf(dpi, at.pageLength));
    log.Info("Surface %dx%d at %ddpi 32BPP", at.surfaceWidth, at.surfaceHeight, int{dpi});
    if (!makesBitmaps) log.Error("Could not create surface.");
    return makesBitmaps && associates;
}

bool DriverModel::ResetPdev(int old, int fresh) {
    if (old == kNoDevice || fresh == kNoDevice) return false;
    const ModelDevice& from = At(old);
    ModelDevice& to = At(fresh);
    const auto carry = [this](const char* line, auto before, auto& value) {
        if (before == value) return;
        log.Info(line, static_cast<int>(before), static_cast<int>(value));
        value = before;
    };
    carry("dwPageWidth %d<-%d", from.pageWidth, to.pageWidth);
    carry("dwPageLength %d<-%d", from.pageLength, to.pageLength);
    carry("orientation %d<-%d", from.orientation, to.orientation);
    carry("pageCount %d<-%d", from.pageCount, to.pageCount);
    if (from.mode.pub.dmCopies != to.mode.pub.dmCopies)
        log.Info("dmCopies %d -> %d", int{from.mode.pub.dmCopies}, int{to.mode.pub.dmCopies});
    to.reset = true;
    to.inJob = to.inJob || from.inJob;
    return true;
}

void DriverModel::DisablePdev(int device) {
    At(device).enabled = false;
    if (current_ == device) current_ = kNoDevice;
}

bool DriverModel::StartDoc(int device, int32_t width, int32_t height, const std::string& title, int jobId) {
    LoadMask();
    if (device == kNoDevice) return false;
    ModelDevice& at = At(device);
    log.Info("JobId:%d docname:%s %d %d", jobId, title.c_str(), at.reset ? kReset : 0, at.inJob ? kInJob : 0);
    if (!at.reset || !at.inJob) return StartJob(device, width, height, title);
    if (current_ != device) log.Info("pdev: ");
    current_ = device;
    return true;
}

}  // namespace orvex::plain
