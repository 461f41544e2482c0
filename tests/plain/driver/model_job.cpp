// The hooks of a job and its pages, and the print engine's part in them.

#include <cstdlib>

#include "tests/plain/driver/driver_model.h"
#include "tests/plain/driver/settings_text.h"
#include "tests/plain/driver/thumbnail.h"
#include "tests/plain/layout_input.h"
#include "tests/plain/printed_rows.h"

namespace orvex::plain {

namespace {

std::string Number(int64_t number) {
    return " " + std::to_string(number);
}

}  // namespace

uint32_t DriverModel::CallEngine(const std::string& name, const std::string& event) {
    events.push_back(event);
    const EngineReply reply = engine.Next(name);
    uint32_t status = reply.status;
    for (const std::string& chunk : reply.chunks) {
        const bool taken = TakeOutput(chunk);
        events.push_back(taken ? "output taken" : "output refused");
        if (!taken) status = 0;
    }
    return status;
}

bool DriverModel::TakeOutput(const std::string& chunk) {
    if (current_ == kNoDevice) return false;
    const auto showsChunks = [this] { return SettingFlag(installation, "[UI]", "Show_Chunked=", log) != 0; };
    const auto write = [this](const std::string& bytes) {
        events.push_back("write " + bytes);
        return !refusedWrites.contains(++writes);
    };
    return output_.Take(chunk, At(current_).mode, showsChunks, write);
}

bool DriverModel::StartJob(int device, int32_t width, int32_t height, const std::string& title) {
    EndEngineJob();  // of a job that was not ended
    ModelDevice& at = At(device);
    at.pageCount = 0;
    at.inJob = true;
    page_ = 0;
    output_.commandPending = output_.commandQueued = false;
    output_.jobName = title.substr(0, 511);
    if (!installation.found || !libraryLoads) {
        log.Error(installation.found ? "Error: could not load hpcrlib.DLL" : "Error: could get app path");
        return false;
    }
    const bool at600Dpi = Resolution(at.mode) == 600;
    current_ = device;
    output_.widthPx = width;
    output_.heightPx = height;
    if (CallEngine("JobStart", at600Dpi ? "JobStart 1 0" : "JobStart 0 0") == 0) {
        log.Error("Error: could not start a job");
        current_ = kNoDevice;
        return false;
    }
    bound_ = true;
    job_ = engine.Job();
    output_.firstChunk = output_.headerPending = true;
    colors_ = LoadJobColors(installation, at.mode.priv, at600Dpi, 0x30, log);
    output_.resolutionCode = colors_->resolutionCode;
    output_.profileName = colors_->profileName;
    return true;
}

void DriverModel::EndEngineJob() {
    if (!bound_) return;
    const uint32_t result = CallEngine("JobEnd", "JobEnd" + Number(static_cast<int64_t>(job_)));
    if (result != 1) log.Error("Error: could not end the job %x %x", result, static_cast<uint32_t>(job_));
    bound_ = false;
    current_ = kNoDevice;
}

bool DriverModel::StartPage(int device) {
    ++page_;
    log.Info("Page: %d", static_cast<int>(page_));
    if (device == kNoDevice) return false;
    output_.commandPending = false;
    return true;
}

bool DriverModel::EndDoc(int device) {
    EndEngineJob();
    if (device == kNoDevice) return false;
    At(device).reset = At(device).inJob = false;
    return true;
}

void DriverModel::BeginFirstPage(const ModelDevice& device, const PageBits& page, const Layout& layout) {
    const PrivateDevMode& settings = device.mode.priv;
    log.Info("surfobj dpi:%d sizlBitmap:%dx%d cjBits:%d lDelta:%d bform:%d", int{Resolution(device.mode)},
             page.width, page.height, static_cast<int>(page.bytes.size()),
             page.upward ? -page.stride : page.stride, page.pixelBytes == 3 ? 5 : 6);
    log.Info(
        "dmOrient:%d kws:%d kwsfull:%d fw:%d, purgeBar:%d  purgeGap:%d  purgeDots:%d  overspray:%d "
        "phoffset:%d",
        int{device.mode.pub.dmOrientation}, settings.kws, settings.kws_fullwidth, layout.fullWidth ? 1 : 0,
        int{settings.purgeBar}, int{settings.purgeGap}, int{settings.purgeDots}, int{settings.overspray},
        layout.phOffsetPx);
}

void DriverModel::LogLayout(const ModelDevice& device, const Layout& layout) {
    const PrivateDevMode& settings = device.mode.priv;
    const int16_t dpi = Resolution(device.mode);
    const int unit = 7200 / dpi;
    if (layout.fullWidth) {
        const int fill = (dpi == 600 ? 7020 : 3510) - layout.rows;
        log.Info("Fullphwidth:  %d %d %d", fill / 2, layout.rows, fill - fill / 2);
    }
    if (settings.purgeBar > 0) {
        log.Info("purgebar: lead:%d %d %d %d", layout.purgeLead, int{settings.purgeDots}, layout.purgeLen,
                 layout.rowWidth);
    }
    log.Info("PageStart: page:%dx%d  image:%dx%d  align=%d", layout.pageW, layout.pageH,
             unit * layout.rowWidth, unit * layout.rows, int{settings.alignment});
}

void DriverModel::LogOffset(const ModelDevice& device, const PageBits& page, const Layout& layout) {
    const int offset = layout.phOffsetPx, alignment = device.mode.priv.alignment;
    if (offset == 0) return;
    PageLayoutInput centered = LayoutInput(device.mode, page.width, page.height);
    centered.phHOffset = 0;
    const Layout before = ComputeLayout(centered);
    log.Info("phOffset:%d topOff:%d fullTopFillPx:%d fullBottomFillPx:%d", offset, before.topOff,
             before.fullTop, before.fullBottom);
    if (alignment == 0 && offset < 0) {
        layout.fullWidth ? log.Info("phOffset: fw ar=%d", before.fullTop - layout.fullTop)
                         : log.Info("phOffset: ar=%d topOff=%d", offset, layout.topOff);
    } else if (alignment == 2 && offset > 0) {
        layout.fullWidth ? log.Info("phOffset: fw al=%d", layout.fullTop - before.fullTop)
                         : log.Info("phOffset: al=%d topOff=%d", offset, layout.topOff);
    } else if (alignment == 1) {
        layout.fullWidth ? log.Info("phOffset: fw c=%d", offset)
                         : log.Info("phOffset: ph=%d c=%d", layout.pageLength - before.pageLength, offset);
    }
}

void DriverModel::AskForResolution(bool at600Dpi) {
    if (output_.resolutionCode == 0x30) {
        output_.resolutionCode = at600Dpi ? 0 : -1;
        return;
    }
    if (output_.commandQueued)
        log.Error("Error: page %d res missed!!!!!!!!!!!!!!!!!!!", static_cast<int>(page_));
    output_.command = at600Dpi ? "\x1B*o0M" : "\x1B*o-1M";
    output_.commandPending = output_.commandQueued = true;
}

bool DriverModel::SendPage(int device, const PageBits& page) {
    if (device == kNoDevice) return false;
    ModelDevice& at = At(device);
    const Layout layout = ComputeLayout(LayoutInput(at.mode, page.width, page.height));
    if (page_ == 1) BeginFirstPage(at, page, layout);
    LogLayout(at, layout);
    if (page_ == 1) {
        output_.thumbnail.reset();
        const bool wanted = SettingFlag(installation, "[Driver]", "Add_Thumb=", log) != 0;
        if (wanted && page.pixelBytes == 4) output_.thumbnail = Thumbnail(installation, page, log);
    }
    LogOffset(at, page, layout);
    AskForResolution(Resolution(at.mode) == 600);
    if (bound_) SendToEngine(at, page, layout);
    ++at.pageCount;
    if (output_.thumbnail) log.Info("Clearing thumbnail as not used!");
    output_.thumbnail.reset();
    return true;
}

void DriverModel::SendToEngine(const ModelDevice& device, const PageBits& page, const Layout& layout) {
    const std::string job = Number(static_cast<int64_t>(job_));
    const auto call = [&](const char* name, const std::string& arguments, const char* refusal) {
        if (CallEngine(name, name + job + arguments) == 1) return true;
        log.Error(refusal);
        return false;
    };
    if (!call("PageStart", Number(layout.pageW) + Number(layout.pageLength), "Error: could not start a page"))
        return;
    log.Info("RasterBlockStart: 0, %u, %u, %u", static_cast<unsigned>(layout.topOff),
             static_cast<unsigned>(layout.rowWidth), static_cast<unsigned>(layout.headRows));
    if (!call("RasterBlockStart",
              Number(0) + Number(layout.topOff) + Number(layout.rowWidth) + Number(layout.headRows),
              "Error: could not start a raster block"))
        return;
    if (!SendRows(device, page, layout)) return;
    if (!call("RasterBlockEnd", "", "Error: could not end a raster block")) return;
    if (!call("PageEnd", "", "Error: could not end the page")) return;
    log.Info("Finished sending page");
}

bool DriverModel::SendRows(const ModelDevice& device, const PageBits& page, const Layout& layout) {
    const PrivateDevMode& settings = device.mode.priv;
    log.Info("Start render loop %d pixels rot=%d mir=%d luti=%d [%s]", layout.rows * layout.imageWidth,
             settings.rotate180, settings.mirrorImage, colors_->loadedKind, output_.jobName.c_str());
    log.Info("ln32: %d %d", 4 * layout.rowWidth, 4 * layout.rowWidth);
    PrintedRows rows(device.mode, page_, page,
                     [this](uint32_t color) { return colors_->table.InkOf(color); });
    const std::string job = Number(static_cast<int64_t>(job_));
    for (int64_t number = 0; number < rows.Count(); ++number) {
        const std::vector<uint32_t>& row = rows.Next();
        const std::string inks(reinterpret_cast<const char*>(row.data()), row.size() * sizeof row[0]);
        if (CallEngine("RasterRow", "RasterRow" + job + " " + inks) == 1) continue;
        // Fill rows that are fewer than none do not count in front of the image, but do in its numbers.
        const int64_t top = layout.fullTop < 0 ? int64_t{layout.fullTop} : 0;
        log.Error("Error: could not send raster row %d", static_cast<int>(number + top));
        return false;
    }
    return true;
}

}  // namespace orvex::plain
