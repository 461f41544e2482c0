#include <spng.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "bench/suites.h"
#include "driver/render/pixel_reduction.h"
#include "driver/support/log.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/scratch_folder.h"
#include "tests/plain/plain_reduction.h"
#include "tools/common/png_file.h"
#include "tools/common/png_writer.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"

namespace orvex::bench {

namespace {

constexpr double kThumbnailWidth = 800;
constexpr double kThumbnailHeight = 600;

void MeasureThumbnail(Bench& bench) {
    constexpr char kTitle[] = "thumbnail's scaling, A4 600 dpi, photo";
    if (!bench.Wants(kTitle)) return;
    const BenchPage page = DrawPage(PageArt::kPhoto, kA4At600, false);
    const int32_t scale = ThumbnailScale(page.width, page.height, kThumbnailWidth, kThumbnailHeight);
    std::vector<uint32_t> reduced(static_cast<size_t>(page.width >> scale) *
                                  static_cast<size_t>(page.height >> scale));
    std::vector<uint32_t> copy(page.pixels.size());
    const auto reduce = [&] {
        ReducePixels(page.pixels.data(), page.width, page.height, scale, reduced.data());
    };
    bench.Hold({kTitle,
                {"ReducePixels", reduce},
                {"memcpy", [&] { memcpy(copy.data(), page.pixels.data(), page.Bytes()); }},
                AimKind::kAtMost,
                1.3,
                [&] {
                    reduce();
                    if (reduced != plain::Reduced(page.pixels, page.width, page.height, scale)) {
                        throw CheckFailure("the thumbnail is wrong");
                    }
                }});
}

// Returns the number of log lines of a page with everything on, which is its number of log calls.
size_t LogLinesOf(PageJob& job) {
    LogCapture log;
    job.Send();
    return log.TakeLines().size();
}

void MeasureSilentLog(Bench& bench, const BenchSetting& setting) {
    constexpr char kTitle[] = "log call sites of a page, log off, against the page";
    if (!bench.Wants(kTitle)) return;
    const BenchPage page = DrawPage(PageArt::kLabel, kRollLabel, true);
    PageJob job(setting.driver, page, kRollLabel, {{true, false, false}});
    const size_t lines = LogLinesOf(job);
    bench.Note("log lines of a page with everything on: " + std::to_string(lines));
    bench.Hold({kTitle,
                {"LogInfo",
                 [lines] {
                     for (size_t i = 0; i < lines; ++i) LogInfo("Page Time elapsed : %ldms\n", i);
                 }},
                {"DrvSendPage", [&] { job.Send(); }},
                AimKind::kAtMost,
                0.001,
                nullptr});
}

tools::Picture PictureOf(const BenchPage& page) {
    tools::Picture picture(static_cast<uint32_t>(page.width), static_cast<uint32_t>(page.height), 3);
    uint8_t* sample = picture.samples.data();
    for (const uint32_t pixel : page.pixels) {
        for (const int shift : {16, 8, 0}) *sample++ = static_cast<uint8_t>(pixel >> shift);
    }
    return picture;
}

// Decodes a PNG into a picture of its own, as programs do.
void DecodeWithLibspng(const std::vector<uint8_t>& file) {
    const std::unique_ptr<spng_ctx, void (*)(spng_ctx*)> png(spng_ctx_new(0), &spng_ctx_free);
    spng_set_png_buffer(png.get(), file.data(), file.size());
    size_t size = 0;
    spng_decoded_image_size(png.get(), SPNG_FMT_RGBA8, &size);
    const std::unique_ptr<uint8_t[]> picture(new uint8_t[size]);
    if (spng_decode_image(png.get(), picture.get(), size, SPNG_FMT_RGBA8, 0) != SPNG_OK)
        throw CheckFailure("libspng can't decode the page");
}

// Draws a page of A4 at 600 dpi and encodes it as a PNG.
std::vector<uint8_t> EncodedPage(PageArt art) {
    return tools::EncodePng(PictureOf(DrawPage(art, kA4At600, false)), kA4At600.dpi);
}

std::string Program(const char* name) {
    return tools::Utf8FromPath(tools::ProgramFolder() / name);
}

void RunCommand(const std::string& command) {
    if (std::system((command + " >/dev/null").c_str()) != 0) throw CheckFailure("this failed: " + command);
}

void MeasureWholeJob(Bench& bench) {
    constexpr char kTitle[] = "orvexprint, 10 pages, A4 600 dpi, label";
    constexpr int kPages = 10;
    if (!bench.Wants(kTitle)) return;
    const ScratchFolder scratch;
    const std::vector<uint8_t> file = EncodedPage(PageArt::kLabel);
    const std::string page = tools::Utf8FromPath(scratch.Path() / "page.png");
    tools::WriteWholeFile(scratch.Path() / "page.png", file);
    std::string command = Program("orvexprint") + " --dpi 600 --size page -o " +
                          tools::Utf8FromPath(scratch.Path() / "job.prn");
    for (int i = 0; i < kPages; ++i) command += " " + page;
    const auto print = [&] { RunCommand(command); };
    const auto decode = [&] {
        for (int i = 0; i < kPages; ++i) DecodeWithLibspng(file);
    };
    bench.Hold({kTitle, {"orvexprint", print}, {"libspng", decode}, AimKind::kAtMost, 3, print});
}

// Loads a picture of orvexview: of one ink with 1 channel, any other with 3.
tools::Picture LoadPicture(const std::filesystem::path& path, bool ink) {
    const tools::RasterImage image = tools::LoadPng(path);
    tools::Picture picture(image.width, image.height, ink ? 1 : 3);
    uint8_t* sample = picture.samples.data();
    for (size_t i = 0; i < size_t{image.width} * image.height; ++i) {
        for (const int shift : {16, 8, 0}) {
            if (!ink || shift == 0) *sample++ = static_cast<uint8_t>(image.pixels.get()[i] >> shift);
        }
    }
    return picture;
}

void MeasureViewer(Bench& bench, PageArt art) {
    const std::string title = "orvexview --inks --layout, A4 600 dpi, " + std::string(NameOf(art));
    if (!bench.Wants(title)) return;
    const ScratchFolder scratch;
    const std::string base = tools::Utf8FromPath(scratch.Path() / "job");
    tools::WriteWholeFile(scratch.Path() / "page.png", EncodedPage(art));
    RunCommand(Program("orvexprint") + " --dpi 600 --size page -o " + base + ".prn " +
               tools::Utf8FromPath(scratch.Path() / "page.png"));
    const auto view = [&] { RunCommand(Program("orvexview") + " " + base + ".prn --inks --layout"); };
    view();
    std::vector<tools::Picture> pictures;
    for (const char* name : {"", "-layout", "-K", "-C", "-M", "-Y"}) {
        const bool ink = std::string_view(name).size() == 2;
        pictures.push_back(LoadPicture(base + "-page1" + name + ".png", ink));
    }
    const auto encode = [&] {
        for (const tools::Picture& picture : pictures) {
            tools::PngWriter writer(scratch.Path() / "encoded.png", {.width = picture.width,
                                                                     .height = picture.height,
                                                                     .channels = picture.channels,
                                                                     .pixelsPerInch = kA4At600.dpi});
            writer.WriteRows(picture);
            writer.Complete();
        }
    };
    bench.Hold({title, {"orvexview", view}, {"encoding its pictures", encode}, AimKind::kAtMost, 4, nullptr});
}

}  // namespace

void MeasureExtras(Bench& bench, const BenchSetting& setting) {
    MeasureThumbnail(bench);
    MeasureSilentLog(bench, setting);
    MeasureWholeJob(bench);
    for (const PageArt art : {PageArt::kLabel, PageArt::kPhoto}) MeasureViewer(bench, art);
}

}  // namespace orvex::bench
