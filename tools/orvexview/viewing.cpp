#include "tools/orvexview/viewing.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>

#include "tools/common/number_text.h"
#include "tools/common/png_file.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/compare_command.h"
#include "tools/orvexview/comparison.h"
#include "tools/orvexview/ink_command.h"
#include "tools/orvexview/ink_verification.h"
#include "tools/orvexview/layout_picture.h"
#include "tools/orvexview/log_command.h"
#include "tools/orvexview/own_picture.h"
#include "tools/orvexview/page_pictures.h"
#include "tools/orvexview/print_file.h"
#include "tools/orvexview/proof_command.h"
#include "tools/orvexview/report.h"
#include "tools/orvexview/together.h"

namespace orvex::tools::view {

namespace {

// One picture on its way into its file.
struct PictureFile {
    PictureFile(std::string fileName, uint32_t width, uint32_t height, uint32_t channels, uint32_t scale,
                uint32_t dpi)
        : name(std::move(fileName)),
          text(name + ": " + SizeText(width, height) + " pixels" +
               (scale > 1 ? ", " + SizeText(scale, scale) + " to one" : "") + "\n"),
          writer(PathFromUtf8(name), OwnPicture(width, height, channels, dpi, scale)) {}

    std::string name;
    std::string text;
    PngWriter writer;
};

uint32_t Reduced(uint32_t pixels, uint32_t scale) {
    return (pixels + scale - 1) / scale;
}

// The names of a page's pictures.
struct PictureNames {
    explicit PictureNames(const std::string& base) : composite(base + ".png"), layout(base + "-layout.png") {
        for (int ink = 0; ink < kInks; ++ink) inks.push_back(base + "-" + kInkLetters[ink] + ".png");
    }

    std::string composite;
    std::vector<std::string> inks;
    std::string layout;
};

class Viewing {
  public:
    Viewing(const Options& options, std::ostream& out)
        : options_(options), out_(out), part_(ReadReadablePart(options.file)), model_(file_.dpi) {
        for (const uint32_t number : options.pages) {
            if (number <= file_.pages.size()) continue;
            throw std::runtime_error("--page " + std::to_string(number) + ": " + options.file + " has " +
                                     std::to_string(file_.pages.size()) +
                                     (file_.pages.size() == 1 ? " page" : " pages"));
        }
        if (!options.thumbnail.empty() && !file_.header.thumbnail) {
            throw std::runtime_error("--thumbnail: the job header of " + options.file + " has no thumbnail");
        }
        CheckOutputs();
    }

    // Shows what can be read, and then complains about the rest. Returns the exit status.
    int Show() const {
        const int status = ShowReadablePart();
        RequireSound(options_.file, part_);
        return status;
    }

  private:
    int ShowReadablePart() const {
        out_ << DescribeHeader(file_);
        if (!options_.thumbnail.empty()) WriteThumbnail();
        for (const PrintedPage& page : file_.pages) {
            if (IsShown(page)) ShowPage(page);
        }
        if (options_.verify.empty() || !part_.problem.empty()) return 0;
        return options_.profile.empty() ? Verify() : VerifyPageInks();
    }

    bool IsShown(const PrintedPage& page) const {
        const std::vector<uint32_t>& pages = options_.pages;
        return pages.empty() || std::find(pages.begin(), pages.end(), page.number) != pages.end();
    }

    bool IsDrawn(const PrintedPage& page) const { return options_.pictures && IsShown(page); }

    PictureNames NamesOf(const PrintedPage& page) const {
        const std::string prefix = options_.prefix.empty()
                                       ? Utf8FromPath(PathFromUtf8(options_.file).replace_extension())
                                       : options_.prefix;
        return PictureNames(prefix + "-page" + std::to_string(page.number));
    }

    // Refuses an output that is another file of this run, before anything is written.
    void CheckOutputs() const {
        struct NamedFile {
            std::string name;
            const char* role;
        };
        std::vector<NamedFile> others = {{options_.file, "the print file"}};
        if (!options_.verify.empty()) others.push_back({options_.verify, "the picture to verify"});
        const auto check = [&](const std::string& output) {
            for (const NamedFile& other : others) {
                if (!IsSameFile(PathFromUtf8(output), PathFromUtf8(other.name))) continue;
                throw std::runtime_error(output + " is also " + other.role + "; nothing was written");
            }
        };
        if (!options_.thumbnail.empty()) {
            check(options_.thumbnail);
            others.push_back({options_.thumbnail, "the thumbnail"});
        }
        const auto checkPicture = [&](const std::string& picture) {
            std::error_code ignored;
            // Most pictures of a long job are new, and a new name can clash with the thumbnail's alone.
            if (options_.thumbnail.empty() && !std::filesystem::exists(PathFromUtf8(picture), ignored))
                return;
            check(picture);
            if (!options_.force) RefuseReplacing(picture);
        };
        for (const PrintedPage& page : file_.pages) {
            if (!IsDrawn(page)) continue;
            const PictureNames names = NamesOf(page);
            checkPicture(names.composite);
            for (int ink = 0; options_.inks && ink < kInks; ++ink) checkPicture(names.inks[ink]);
            if (options_.layout) checkPicture(names.layout);
        }
    }

    Drawing DrawingOf(const PrintedPage& page, const PagePlacement& placement) const {
        Drawing drawing;
        drawing.area = options_.raw ? WholeBlock(page) : ImageArea(placement);
        if (!IsDrawn(page)) return drawing;
        drawing.composite = true;
        drawing.inks = options_.inks;
        drawing.turned = !options_.raw && placement.orientation == Orientation::kPortrait;
        drawing.scale = options_.scale > 0
                            ? options_.scale
                            : PreviewScale(drawing.area.width, drawing.area.rows, placement.headRows);
        if (options_.layout) {
            drawing.blockScale = std::max(
                options_.scale, PreviewScale(page.rowWidth, LayoutRows(page, placement), placement.headRows));
        }
        return drawing;
    }

    using Files = std::vector<std::unique_ptr<PictureFile>>;

    // Opens the files of the composite and, after it, the inks.
    Files OpenFiles(const PictureNames& names, const Drawing& drawing) const {
        uint32_t width = Reduced(drawing.area.width, drawing.scale);
        uint32_t height = Reduced(drawing.area.rows, drawing.scale);
        if (drawing.turned) std::swap(width, height);
        Files files;
        const auto open = [&](const std::string& name, uint32_t channels) {
            files.push_back(
                std::make_unique<PictureFile>(name, width, height, channels, drawing.scale, file_.dpi));
        };
        if (drawing.composite) open(names.composite, 3);
        for (int ink = 0; drawing.inks && ink < kInks; ++ink) open(names.inks[ink], 1);
        return files;
    }

    std::unique_ptr<PictureFile> WriteLayout(const PrintedPage& page, const PagePlacement& placement,
                                             const Drawing& drawing, Picture block) const {
        const Picture layout = DrawLayout(file_, page, placement, std::move(block),
                                          {.scale = drawing.blockScale, .turned = drawing.turned});
        auto written = std::make_unique<PictureFile>(NamesOf(page).layout, layout.width, layout.height, 3,
                                                     drawing.blockScale, file_.dpi);
        written->writer.WriteRows(layout);
        return written;
    }

    // Shows the page's table and writes its pictures. Small ones take one pass over the rows.
    void ShowPage(const PrintedPage& page) const {
        const PagePlacement placement = PlacePage(file_, page, options_.orientation);
        Drawing drawing = DrawingOf(page, placement);
        const Files files = OpenFiles(NamesOf(page), drawing);
        std::unique_ptr<PictureFile> layout;
        const std::vector<BlockArea> bands = Bands(drawing, options_.bandBytes);
        for (size_t band = 0; band < bands.size(); ++band) {
            drawing.area = bands[band];
            PagePictures pictures = DrawPage(model_, page, placement, drawing);
            if (band == 0) out_ << "\n" << DescribePage(file_, page, placement, pictures.means);
            std::vector<std::function<void()>> tasks;
            if (drawing.blockScale > 0) {
                tasks.push_back(
                    [&] { layout = WriteLayout(page, placement, drawing, std::move(pictures.block)); });
            }
            for (size_t i = 0; i < files.size(); ++i) {
                const Picture& picture = i == 0 ? pictures.composite : pictures.inks[i - 1];
                tasks.push_back([&, i] { files[i]->writer.WriteRows(picture); });
            }
            RunTogether(tasks);
            drawing.blockScale = 0;
        }
        for (const std::unique_ptr<PictureFile>& file : files) Complete(*file);
        if (layout) Complete(*layout);
    }

    void Complete(PictureFile& file) const {
        file.writer.Complete();
        out_ << file.text;
    }

    void WriteThumbnail() const {
        OutputFile file(PathFromUtf8(options_.thumbnail));
        ReadThumbnail(file_, [&](std::span<const uint8_t> bytes) {
            file.Write({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
            file.CheckWrites();
        });
        const uint64_t size = file.Size();
        file.Complete();
        out_ << "\n" << options_.thumbnail << ": " << size << " bytes\n";
    }

    // Returns the page that is verified: the first one shown.
    const PrintedPage& VerifiedPage() const {
        const std::vector<uint32_t>& pages = options_.pages;
        return file_.pages[pages.empty() ? 0 : *std::min_element(pages.begin(), pages.end()) - 1];
    }

    // Returns the exit status: a picture of typical inks is never the art, so any difference is fine.
    int Verify() const {
        const PrintedPage& page = VerifiedPage();
        const PagePlacement placement = PlacePage(file_, page, options_.orientation);
        Drawing drawing{.area = ImageArea(placement), .composite = true};
        drawing.turned = placement.orientation == Orientation::kPortrait;
        PngReader art = OpenPng(PathFromUtf8(options_.verify));
        Comparer comparer(drawing.turned ? drawing.area.rows : drawing.area.width,
                          drawing.turned ? drawing.area.width : drawing.area.rows, art);
        for (const BlockArea& band : Bands(drawing, options_.bandBytes)) {
            drawing.area = band;
            comparer.TakeLines(DrawPage(model_, page, placement, drawing).composite);
        }
        out_ << "\nPage " << page.number << " against " << options_.verify << ":\n"
             << DescribeComparison(comparer.Result());
        return 0;
    }

    // Returns the exit status: 1 if an ink is not what the profile gives for the art.
    int VerifyPageInks() const {
        const PrintedPage& page = VerifiedPage();
        const PagePlacement placement = PlacePage(file_, page, options_.orientation);
        LoadProfileForPrint(PathFromUtf8(options_.profile), file_);
        PngReader art = OpenPng(PathFromUtf8(options_.verify));
        const InkDifference difference = VerifyInks(file_, page, placement, art, options_.bandBytes);
        out_ << "\nPage " << page.number << " against " << options_.verify << " through " << options_.profile
             << ":\n"
             << DescribeVerification(difference, placement);
        return difference.different == 0 ? 0 : 1;
    }

    const Options& options_;
    std::ostream& out_;
    ReadablePart part_;
    const PrintFile& file_ = part_.file;
    InkModel model_;
};

}  // namespace

int ShowPrintFile(const Options& options, std::ostream& out) {
    try {
        return Viewing(options, out).Show();
    } catch (const PrintFileError& error) {
        throw std::runtime_error(options.file + " is no sound print file: " + error.what());
    }
}

namespace {

// A command with options of its own.
struct Command {
    bool (*isAsked)(const std::vector<std::string>& arguments);
    int (*run)(const std::vector<std::string>& arguments, std::ostream& out);
    int failure;  // exit status when something can't be done
};

// The first one that is asked for is carried out.
constexpr Command kCommands[] = {
    {IsLogCommand, RunLogCommand, 1},
    {IsCompareCommand, RunCompareCommand, 2},
    {IsProofCommand, RunProofCommand, 1},
    {IsInkCommand, RunInkCommand, 1},
};

}  // namespace

int RunOrvexView(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& error) {
    const Command* const command =
        std::find_if(std::begin(kCommands), std::end(kCommands),
                     [&](const Command& asked) { return asked.isAsked(arguments); });
    const bool hasCommand = command != std::end(kCommands);
    try {
        int status = 0;
        if (hasCommand) {
            status = command->run(arguments, out);
        } else if (const std::optional<Options> options = ReadOptions(arguments, out)) {
            status = ShowPrintFile(*options, out);
        }
        out.flush();
        if (!out) throw std::runtime_error("standard output can't be written");
        return status;
    } catch (const OptionError& wrong) {
        error << "orvexview: " << wrong.what() << "\n";
        return 2;
    } catch (const std::bad_alloc&) {
        error << "orvexview: out of memory\n";
    } catch (const std::exception& failure) {
        error << "orvexview: " << failure.what() << "\n";
    }
    return hasCommand ? command->failure : 1;
}

}  // namespace orvex::tools::view
