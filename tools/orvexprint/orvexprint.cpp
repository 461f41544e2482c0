#include "tools/orvexprint/orvexprint.h"

#include <chrono>
#include <new>
#include <stdexcept>

#include "tools/common/interrupt.h"
#include "tools/common/number_text.h"
#include "tools/common/product_version.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/host/driver_session.h"
#include "tools/orvexprint/device_mode_commands.h"
#include "tools/orvexprint/device_mode_file.h"
#include "tools/orvexprint/installation_check.h"
#include "tools/orvexprint/job_files.h"
#include "tools/orvexprint/job_options.h"
#include "tools/orvexprint/job_pages.h"
#include "tools/orvexprint/job_report.h"
#include "tools/orvexprint/log_switch.h"
#include "tools/orvexprint/page_notes.h"
#include "tools/orvexprint/printer_settings.h"
#include "tools/orvexprint/progress.h"
#include "tools/orvexprint/spool_writer.h"
#include "tools/orvexprint/test_page.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr char kReadPastTheEnd[] =
    "orvexprint: the driver read past the end of the device mode, which has fewer bytes than it says\n";
constexpr char kCopyPort[] = "FILE:";  // of a spool file that is written

EngineSource FindEngine(const JobOptions& options, const PrintEnvironment& environment,
                        const fs::path& installation) {
    if (environment.engine) return *environment.engine;
    std::error_code failure;
    if (!options.engine.empty()) {
        if (fs::is_regular_file(options.engine, failure)) return options.engine;
        throw std::runtime_error("the raster library " + Utf8FromPath(options.engine) + " is not there");
    }
    return EngineFile(installation, environment.programFolder);
}

// Returns the date in UTC: "2026-11-22".
std::string Today() {
    const std::chrono::year_month_day today(
        std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now()));
    const auto twoDigits = [](unsigned number) {
        return (number < 10 ? "-0" : "-") + std::to_string(number);
    };
    return std::to_string(static_cast<int>(today.year())) + twoDigits(static_cast<unsigned>(today.month())) +
           twoDigits(static_cast<unsigned>(today.day()));
}

std::vector<uint8_t> BytesOf(const DeviceMode& mode) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(&mode);
    return {bytes, bytes + sizeof mode};
}

// One run of the command, with options that are already checked.
class PrintRun {
  public:
    PrintRun(const JobOptions& options, const PrintEnvironment& environment, const fs::path& installation)
        : options_(options),
          environment_(environment),
          installation_(installation),
          session_({.driver = environment.driver,
                    .installation = installation,
                    .engine = FindEngine(options, environment, installation),
                    .language = options.language}) {
        if (!options.printerData.empty() && fs::exists(options.printerData)) {
            session_.Printer().data = PrinterData::Load(options.printerData);
        }
    }

    void Run() {
        std::optional<FaultMessage> onFault;
        if (options_.asIs) onFault.emplace(kReadPastTheEnd);
        if (options_.logMask != 0) session_.RereadLogSwitch();
        const PrinterSettings settings(session_);
        if (!options_.printerData.empty()) session_.Printer().data.Save(options_.printerData);
        if (options_.list) PrintLists(environment_.out, settings);
        requested_ = RequestedMode(settings);
        effective_ = settings.Effective(requested_);
        for (const std::string& problem :
             FallbacksOf(effective_, installation_, session_.Shell().LentFile())) {
            if (options_.strict) throw std::runtime_error(problem);
            environment_.error << "orvexprint: " + problem + "\n";
        }
        if (!options_.saveMode.empty()) {
            WriteWholeFile(options_.saveMode, std::span<const uint8_t>(BytesOf(effective_)));
        }
        if (options_.dryRun) {
            ShowLayout();
        } else if (!options_.list && options_.HasPages()) {
            Print();
        }
    }

  private:
    // Returns the device mode that is passed to the driver: that of a spool file, and one with --as-is, as it
    // is stored.
    std::vector<uint8_t> RequestedMode(const PrinterSettings& settings) {
        const ByteSpan stored = pages_.DeviceMode();
        if (!stored.empty()) return {stored.begin(), stored.end()};
        if (options_.asIs) return ReadDeviceMode(options_.loadMode).bytes;
        if (options_.sizeOfPage && !pages_.AreSpooled()) options_.size = SizeOfFirstPage(settings);
        return BytesOf(settings.Requested(options_));
    }

    PaperSize SizeOfFirstPage(const PrinterSettings& settings) const {
        const DeviceMode mode = settings.Effective(BytesOf(settings.Requested(options_)));
        const PictureSize page = pages_.Open(0)->SizeAt(static_cast<uint32_t>(mode.pub.dmPrintQuality));
        const PixelDensity density = DensityOf(page, options_.imageDpi.value_or(mode.pub.dmPrintQuality));
        return PaperOfPage(page, density, mode.pub.dmOrientation == DMORIENT_LANDSCAPE);
    }

    PagePlacing PlacingOn(const PageRaster& bitmap) const {
        return {.pageWidth = bitmap.width,
                .pageHeight = bitmap.height,
                .dpi = static_cast<uint32_t>(bitmap.dpi),
                .untaggedDpi = static_cast<double>(options_.imageDpi.value_or(bitmap.dpi)),
                .fit = options_.fit,
                .enlarging = options_.smooth ? Enlarging::kBlend : Enlarging::kNearest,
                .turning = options_.turnToFit ? Turning::kToFit : Turning::kNever};
    }

    static PageRaster RasterOf(const Device& device) {
        const GDIINFO& capabilities = device.Capabilities();
        return {capabilities.ulHorzRes, capabilities.ulVertRes, static_cast<int>(capabilities.ulLogPixelsX)};
    }

    void ShowLayout() {
        const std::unique_ptr<Device> device = session_.EnablePdev(requested_);
        if (device->Instance() == nullptr)
            throw std::runtime_error("the driver refused the device (DrvEnablePDEV)");
        const PageRaster bitmap = RasterOf(*device);
        PrintLayout(environment_.out, effective_, bitmap);
        if (options_.pages.empty()) return;
        environment_.out << "\nPages\n";
        for (size_t page = 0; page < pages_.Count(); ++page) {
            environment_.out << "  " << pages_.NameOf(page) << ": "
                             << pages_.Open(page)->Describe(PlacingOn(bitmap)) << "\n";
        }
        pages_.SayLeftOut(environment_.error);
    }

    void Draw(size_t page, const PageBits& bits) {
        if (options_.testPage) {
            Canvas canvas(bits.pixels, static_cast<int>(bitmap_.width), static_cast<int>(bitmap_.height),
                          bits.stride);
            DrawTestPage(canvas, bitmap_.dpi,
                         {PaperLine(effective_), SettingValues(effective_),
                          std::string("orvexprint ") + kProductVersion, Today()});
            return;
        }
        pages_.Open(page)->Draw(PlacingOn(bitmap_), bits,
                                [&](const std::string& note) { notes_.Add(page + 1, note); });
    }

    // Returns the plan of the job; `copy` gets its pages and device modes as well if there is one.
    JobPlan PlanOf(std::optional<SpoolWriter>& copy) {
        return {.deviceMode = requested_,
                .title = pages_.Title(),
                .pages = pages_.Count(),
                .draw =
                    [&](size_t page, SURFOBJ& surface) {
                        auto* const pixels = static_cast<uint32_t*>(surface.pvScan0);
                        const PageBits bits = {pixels, static_cast<size_t>(surface.lDelta) / sizeof *pixels};
                        Draw(page, bits);
                        if (copy) copy->AddPage({bits, bitmap_.width, bitmap_.height, Dpi()});
                    },
                .reset =
                    [&](size_t page) {
                        const ByteSpan mode = pages_.ResetBefore(page);
                        if (copy && !mode.empty()) copy->AddDeviceMode(mode);
                        return mode;
                    },
                .onDevice =
                    [&](const Device& device) {
                        const SIZEL size = device.Surface()->sizlBitmap;
                        bitmap_ = {static_cast<uint32_t>(size.cx), static_cast<uint32_t>(size.cy),
                                   RasterOf(device).dpi};
                    }};
    }

    uint32_t Dpi() const { return static_cast<uint32_t>(bitmap_.dpi); }

    void CreateCopy(std::optional<SpoolWriter>& copy) const {
        if (options_.saveSpool.empty()) return;
        copy.emplace(options_.saveSpool, pages_.Title(), kCopyPort);
        copy->AddDeviceMode(requested_);
    }

    void Print() {
        const auto begin = std::chrono::steady_clock::now();
        pages_.LoadFonts();
        OutputFile output(options_.output);
        std::optional<SpoolWriter> copy;
        CreateCopy(copy);
        session_.SetSink([&](std::string_view bytes) { return output.Write(bytes); });
        Progress progress(environment_.error, environment_.terminal, pages_.Count());
        session_.Engine().OnRow([&](const EnginePage& page, uint64_t number) {
            progress.Show(number, page.rowsTaken, page.blockRows);
        });
        const JobOutcome outcome = session_.RunJob(PlanOf(copy));
        progress.Clear();
        output.CheckWrites();
        if (!outcome.Printed()) throw std::runtime_error("the job did not print: " + outcome.failure);
        output.Complete();
        if (copy) copy->Complete();
        pages_.SayLeftOut(environment_.error);
        notes_.Write(environment_.error);
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
        std::ostream& report = IsStandardOutput(options_.output) ? environment_.error : environment_.out;
        report << Utf8FromPath(options_.output) << ": " << outcome.pagesPrinted
               << (outcome.pagesPrinted == 1 ? " page, " : " pages, ") << session_.Engine().Books().rowsTaken
               << " rows, " << output.Size() << " bytes, " << DecimalText(seconds.count(), 2) << " seconds\n";
    }

    JobOptions options_;
    const PrintEnvironment& environment_;
    const fs::path installation_;
    JobPages pages_{options_};
    DriverSession session_;
    std::vector<uint8_t> requested_;  // the device mode as the driver gets it
    DeviceMode effective_ = {};       // the same as the driver has it
    PageRaster bitmap_ = {};          // of the device that pages are drawn for
    PageNotes notes_;
};

}  // namespace

int RunOrvexPrint(const std::vector<std::string>& arguments, const PrintEnvironment& environment) {
    const auto complain = [&](const std::exception& error, int status) {
        environment.error << "orvexprint: " << error.what() << "\n";
        return status;
    };
    try {
        if (IsCheckCommand(arguments)) return RunCheckCommand(arguments, environment);
        if (IsDeviceModeCommand(arguments)) return RunDeviceModeCommand(arguments, environment);
        std::optional<JobOptions> options = ParseJobOptions(arguments, environment.out);
        if (!options) return kExitPrinted;
        MakeAbsolute(*options);
        CheckOutputs(*options);
        const DriverLibrary driver(environment.driver);
        std::optional<LogTail> tail;
        std::optional<LogSwitch> log;
        if (options->logMask != 0) {
            if (options->logTree) tail.emplace(driver);
            log.emplace(driver, options->logMask);
            environment.error << "the driver's log: " + Utf8FromPath(driver.LogPath()) + "\n";
        } else if (const std::string warning = LogLeftOn(driver); !warning.empty()) {
            environment.error << "orvexprint: " + warning + "\n";
        }
        const auto showTree = [&] {
            if (tail)
                tail->WriteTree(IsStandardOutput(options->output) ? environment.error : environment.out);
        };
        try {
            PrintRun(*options, environment, FindInstallation(options->installation, environment)).Run();
        } catch (const std::exception&) {
            showTree();  // most of all after a failure
            throw;
        }
        showTree();
        return kExitPrinted;
    } catch (const OptionError& error) {
        return complain(error, kExitUsage);
    } catch (const FileClash& error) {
        return complain(error, kExitUsage);
    } catch (const std::bad_alloc&) {
        return complain(std::runtime_error("there is not enough memory for this job"), kExitFailed);
    } catch (const std::exception& error) {
        return complain(error, kExitFailed);
    }
}

}  // namespace orvex::tools::print
