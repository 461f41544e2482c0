#include "tools/orvexview/viewing.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "tools/common/number_text.h"
#include "tools/common/png_file.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/base64_decoder.h"
#include "tools/orvexview/comparison.h"
#include "tools/orvexview/page_pictures.h"
#include "tools/orvexview/print_file.h"
#include "tools/orvexview/report.h"

namespace orvex::tools::view {

namespace {

class Viewing {
  public:
    Viewing(const Options& options, std::ostream& out)
        : options_(options), out_(out), file_(ReadPrintFile(PathFromUtf8(options.file))) {
        for (const PrintedPage& page : file_.pages) {
            placements_.push_back(PlacePage(file_, page, options.orientation));
        }
        for (const uint32_t number : options.pages) {
            if (number <= file_.pages.size()) continue;
            throw std::runtime_error("there is no page " + std::to_string(number) + "; the job has " +
                                     std::to_string(file_.pages.size()));
        }
    }

    void Show() const {
        out_ << DescribeHeader(file_) << "\n" << DescribePages(file_, placements_);
        if (!options_.thumbnail.empty()) WriteThumbnail();
        for (size_t index = 0; options_.pictures && index < file_.pages.size(); ++index) {
            if (IsChosen(index)) WritePictures(index);
        }
        if (!options_.verify.empty()) Verify();
    }

  private:
    bool IsChosen(size_t index) const {
        const std::vector<uint32_t>& pages = options_.pages;
        return pages.empty() || std::find(pages.begin(), pages.end(), index + 1) != pages.end();
    }

    uint32_t Scale(uint32_t longerSide) const {
        return options_.scale > 0 ? options_.scale : ScaleToFit(longerSide, kPreviewSize);
    }

    void WritePicture(const Picture& picture, uint32_t scale, const std::string& name) const {
        SavePng(picture, static_cast<double>(file_.dpi) / scale, PathFromUtf8(name));
        out_ << name << ": " << SizeText(picture.width, picture.height) << " pixels";
        if (scale > 1) out_ << ", " << SizeText(scale, scale) << " to one";
        out_ << "\n";
    }

    void WritePictures(size_t index) const {
        const PrintedPage& page = file_.pages[index];
        const PagePlacement& placement = placements_[index];
        const BlockArea area = options_.raw ? WholeBlock(page) : ImageArea(placement);
        const uint32_t scale = Scale(std::max(area.width, area.rows));
        const auto turned = [&](Picture picture) {
            return options_.raw ? picture : Upright(std::move(picture), placement);
        };
        const std::string name = Prefix() + "-page" + std::to_string(page.number);
        WritePicture(turned(DrawComposite(file_, page, area, scale)), scale, name + ".png");
        for (int ink = 0; options_.inks && ink < kInks; ++ink) {
            WritePicture(turned(DrawInk(file_, page, area, scale, ink)), scale,
                         name + "-" + kInkLetters[ink] + ".png");
        }
        if (!options_.layout) return;
        const uint32_t layoutScale = Scale(LayoutLength(page, placement));
        WritePicture(turned(DrawLayout(file_, page, placement, layoutScale)), layoutScale,
                     name + "-layout.png");
    }

    std::string Prefix() const {
        if (!options_.prefix.empty()) return options_.prefix;
        return Utf8FromPath(PathFromUtf8(options_.file).replace_extension());
    }

    void WriteThumbnail() const {
        if (!file_.header.thumbnail) throw std::runtime_error("the job header has no thumbnail");
        const std::vector<uint8_t> png = DecodeBase64(*file_.header.thumbnail);
        WriteWholeFile(PathFromUtf8(options_.thumbnail), png);
        out_ << options_.thumbnail << ": " << png.size() << " bytes\n";
    }

    void Verify() const {
        const std::vector<uint32_t>& pages = options_.pages;
        const size_t index = pages.empty() ? 0 : *std::min_element(pages.begin(), pages.end()) - 1;
        const PagePlacement& placement = placements_[index];
        const RasterImage image = LoadPng(PathFromUtf8(options_.verify));
        const Picture composite =
            Upright(DrawComposite(file_, file_.pages[index], ImageArea(placement), 1), placement);
        out_ << "\nPage " << index + 1 << " against " << options_.verify << ":\n"
             << DescribeComparison(Compare(composite, image));
    }

    const Options& options_;
    std::ostream& out_;
    PrintFile file_;
    std::vector<PagePlacement> placements_;
};

}  // namespace

void ShowPrintFile(const Options& options, std::ostream& out) {
    Viewing(options, out).Show();
}

}  // namespace orvex::tools::view
