#include "tools/orvexprint/orvexprint.h"

#include <chrono>
#include <new>
#include <stdexcept>

#include "tools/common/number_text.h"
#include "tools/common/png_file.h"
#include "tools/common/product_version.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/host/driver_session.h"
#include "tools/orvexprint/art_colors.h"
#include "tools/orvexprint/installation_check.h"
#include "tools/orvexprint/job_files.h"
#include "tools/orvexprint/job_options.h"
#include "tools/orvexprint/job_report.h"
#include "tools/orvexprint/log_switch.h"
#include "tools/orvexprint/page_notes.h"
#include "tools/orvexprint/page_placement.h"
#include "tools/orvexprint/printer_settings.h"
#include "tools/orvexprint/progress.h"
#include "tools/orvexprint/test_page.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr char kEngineFile[] = "hpcrlib.dll";
constexpr char kTestPageTitle[] = "Test page";
constexpr char kInputTitle[] = "Standard input";

fs::path FindInstallation(const JobOptions& options, const PrintEnvironment& environment) {
    fs::path folder =
        options.installation.empty() ? environment.programFolder / kInstallationFolder : options.installation;
    std::error_code failure;
    if (fs::is_directory(folder, failure)) return folder;
    throw std::runtime_error("the installation folder " + Utf8FromPath(folder) + " is not there");
}

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

std::string JobTitle(const JobOptions& options) {
    if (!options.title.empty()) return options.title;
    if (options.testPage) return kTestPageTitle;
    const fs::path& first = options.pages.front();
    return IsStandardInput(first) ? kInputTitle : Utf8FromPath(first.filename());
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

std::span<const uint8_t> BytesOf(const DeviceMode& mode) {
    return {reinterpret_cast<const uint8_t*>(&mode), sizeof mode};
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
        if (options_.logMask != 0) session_.RereadLogSwitch();
        const PrinterSettings settings(session_);
        if (!options_.printerData.empty()) session_.Printer().data.Save(options_.printerData);
        if (options_.list) PrintLists(environment_.out, settings);
        if (options_.sizeOfPage) options_.size = SizeOfFirstPage(settings);
        const DeviceMode requested = settings.Requested(options_);
        effective_ = settings.Effective(requested);
        for (const std::string& problem :
             FallbacksOf(effective_, installation_, session_.Shell().LentFile())) {
            if (options_.strict) throw std::runtime_error(problem);
            environment_.error << "orvexprint: " + problem + "\n";
        }
        if (!options_.saveMode.empty()) {
            WriteWholeFile(options_.saveMode, BytesOf(effective_));
        }
        if (options_.dryRun) {
            ShowLayout(requested);
        } else if (!options_.list && options_.HasPages()) {
            Print(requested);
        }
    }

  private:
    size_t PageCount() const { return options_.testPage ? 1 : options_.pages.size(); }

    PaperSize SizeOfFirstPage(const PrinterSettings& settings) const {
        const DeviceMode mode = settings.Effective(settings.Requested(options_));
        const PictureSize page = OpenPng(options_.pages.front()).Size();
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

    void ShowLayout(const DeviceMode& requested) {
        const std::unique_ptr<Device> device = session_.EnablePdev(BytesOf(requested));
        if (device->Instance() == nullptr)
            throw std::runtime_error("the driver refused the device (DrvEnablePDEV)");
        const GDIINFO& capabilities = device->Capabilities();
        const PageRaster bitmap = {capabilities.ulHorzRes, capabilities.ulVertRes,
                                   static_cast<int>(capabilities.ulLogPixelsX)};
        PrintLayout(environment_.out, effective_, bitmap);
        if (options_.pages.empty()) return;
        environment_.out << "\nPages\n";
        for (const fs::path& path : options_.pages) {
            const PictureSize size = OpenPng(path).Size();
            const PagePlace place = PlaceOf(path, size, PlacingOn(bitmap));
            const std::string resampling = ResamplingText(size, PlacingOn(bitmap), place);
            environment_.out << "  " << Utf8FromPath(path.filename()) << ": " << place.Width() << " x "
                             << place.Height() << " pixels, " << place.left << " from the left, " << place.top
                             << " from the top" << (place.turned ? ", turned by a quarter" : "")
                             << (resampling.empty() ? "" : ", ") << resampling << "\n";
        }
    }

    static PagePlace PlaceOf(const fs::path& path, const PictureSize& page, const PagePlacing& placing) {
        try {
            return FindPlace(page, placing);
        } catch (const PageError& error) {
            throw PageError(Utf8FromPath(path) + " " + error.what());
        }
    }

    void Draw(size_t page, SURFOBJ& surface) {
        const PageRaster bitmap = {static_cast<uint32_t>(surface.sizlBitmap.cx),
                                   static_cast<uint32_t>(surface.sizlBitmap.cy),
                                   effective_.pub.dmPrintQuality};
        auto* const pixels = static_cast<uint32_t*>(surface.pvScan0);
        const size_t stride = static_cast<size_t>(surface.lDelta) / sizeof *pixels;
        if (options_.testPage) {
            Canvas canvas(pixels, static_cast<int>(bitmap.width), static_cast<int>(bitmap.height), stride);
            DrawTestPage(canvas, bitmap.dpi,
                         {PaperLine(effective_), SettingValues(effective_),
                          std::string("orvexprint ") + kProductVersion, Today()});
            return;
        }
        const fs::path& path = options_.pages[page];
        PngReader reader = OpenPng(path);
        const PagePlacing placing = PlacingOn(bitmap);
        const PagePlace place = PlaceOf(path, reader.Size(), placing);
        const std::string resampling = ResamplingText(reader.Size(), placing, place);
        if (!resampling.empty()) notes_.Add(page + 1, "is " + resampling);
        const ArtColors colors = ColorsOf(reader.Colors());
        notes_.Add(page + 1, colors.note);
        reader.ConvertColors(colors.toSrgb);
        DrawPage(reader, placing, pixels, stride);
    }

    void Print(const DeviceMode& requested) {
        const auto begin = std::chrono::steady_clock::now();
        OutputFile output(options_.output);
        session_.SetSink([&](std::string_view bytes) { return output.Write(bytes); });
        Progress progress(environment_.error, environment_.terminal, PageCount());
        session_.Engine().OnRow([&](const EnginePage& page, uint64_t number) {
            progress.Show(number, page.rowsTaken, page.blockRows);
        });
        const JobOutcome outcome =
            session_.RunJob({.deviceMode = BytesOf(requested),
                             .title = JobTitle(options_),
                             .pages = PageCount(),
                             .draw = [&](size_t page, SURFOBJ& surface) { Draw(page, surface); }});
        progress.Clear();
        output.CheckWrites();
        if (!outcome.Printed()) throw std::runtime_error("the job did not print: " + outcome.failure);
        output.Complete();
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
    DriverSession session_;
    DeviceMode effective_ = {};
    PageNotes notes_;
};

}  // namespace

fs::path EngineFile(const fs::path& installation, const fs::path& programFolder) {
    std::error_code failure;
    const fs::path installed = installation / kEngineFile;
    return fs::is_regular_file(installed, failure) ? installed : programFolder / kEngineFile;
}

int RunOrvexPrint(const std::vector<std::string>& arguments, const PrintEnvironment& environment) {
    const auto complain = [&](const std::exception& error, int status) {
        environment.error << "orvexprint: " << error.what() << "\n";
        return status;
    };
    try {
        if (IsCheckCommand(arguments)) return RunCheckCommand(arguments, environment);
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
            PrintRun(*options, environment, FindInstallation(*options, environment)).Run();
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
