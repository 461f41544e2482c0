#include "tools/orvexview/proof.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "tools/common/number_text.h"
#include "tools/common/png_file.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/label_list.h"
#include "tools/orvexview/proof_page.h"

namespace orvex::tools::view {

namespace {

constexpr double kMostPixels = 2'500'000;  // of a sheet's picture: a browser on a phone has to paint it
constexpr double kUsualBytes = 0.05;       // that a sample of an ink's picture takes
constexpr double kFullSheets = 150;        // of the longest job whose first picture has the most pixels
constexpr uint64_t kFirstPart = 20;        // the first picture may take this part of all bytes
constexpr uint32_t kLeastSide = 64;        // below which no picture gets smaller

// Puts the pictures of the inks below each other.
Picture Stacked(const std::array<Picture, kInks>& inks) {
    Picture stack(inks[0].width, kInks * inks[0].height, 1);
    stack.samples.clear();
    for (const Picture& ink : inks) {
        stack.samples.insert(stack.samples.end(), ink.samples.begin(), ink.samples.end());
    }
    return stack;
}

Picture Halved(const Picture& picture) {
    Reducer reducer(picture.width, picture.height, picture.channels, 2);
    for (uint32_t y = 0; y < picture.height; ++y) {
        std::copy_n(picture.At(0, y), reducer.Line().size(), reducer.Line().data());
        reducer.TakeLine();
    }
    return reducer.Finish();
}

// Pages are equal if all of this is.
using PageKey = std::tuple<uint64_t, uint64_t, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t>;

PageKey KeyOf(const PrintedPage& page) {
    return {page.fingerprint, page.encodedSize,   page.width, page.length,
            page.top,         page.announcedRows, page.rows,  page.rowWidth};
}

std::vector<ProofSheet> SheetsOf(const PrintFile& file) {
    std::vector<ProofSheet> sheets;
    std::map<PageKey, size_t> known;
    for (const PrintedPage& page : file.pages) {
        const auto [entry, added] = known.try_emplace(KeyOf(page), sheets.size());
        if (added) {
            ProofSheet& sheet = sheets.emplace_back();
            sheet.page = &page;
            sheet.placement = PlacePage(file, page);
        }
        sheets[entry->second].pages.push_back(page.number);
    }
    return sheets;
}

class ProofMaker {
  public:
    ProofMaker(const ProofOptions& options, const ReadablePart& part)
        : options_(options),
          part_(part),
          file_(part.file),
          model_(part.file.dpi),
          labels_(options.labels.empty() ? ListedLabels() : ListedLabels(PathFromUtf8(options.labels))),
          sheets_(SheetsOf(part.file)),
          bytesLeft_(options.pictureBytes),
          output_(PathFromUtf8(options.html)) {}

    uint64_t Write() {
        Put(ProofBeginning(file_, Utf8FromPath(PathFromUtf8(options_.file).filename())));
        for (size_t i = 0; i < sheets_.size(); ++i) WriteSheet(i);
        Put(ProofEnd(file_, sheets_, options_.limit, part_.problem));
        output_.CheckWrites();
        output_.Complete();
        return output_.Size();
    }

    size_t SheetCount() const { return sheets_.size(); }

  private:
    void Put(std::string_view text) {
        output_.Write(text);
        output_.CheckWrites();
    }

    // Returns the bytes that a picture of the sheet may have: an equal part of those left. The first one
    // gets more, since others are made of it.
    uint64_t Allowance(size_t sheet) const {
        const uint64_t part = bytesLeft_ / (sheets_.size() - sheet);
        return sheet == 0 ? std::max(part, bytesLeft_ / kFirstPart) : part;
    }

    // Returns whether the sheet's picture can be the differences from the first one's.
    bool IsLikeFirst(size_t number) const {
        const PagePlacement& first = sheets_[0].placement;
        const PagePlacement& other = sheets_[number].placement;
        return number > 0 && sheets_[0].hasPicture && first.orientation == other.orientation &&
               first.imageWidth == other.imageWidth && first.imageRows == other.imageRows;
    }

    uint32_t ScaleOf(size_t number, const BlockArea& area, uint64_t allowance) const {
        if (IsLikeFirst(number)) return firstScale_;
        const double share = number == 0 ? kFullSheets / static_cast<double>(sheets_.size()) : 1;
        const double pixels = std::min(kMostPixels * std::min(share, 1.0),
                                       static_cast<double>(allowance) / kInks / kUsualBytes);
        const double scale = std::sqrt(static_cast<double>(area.width) * area.rows / (pixels + 1));
        return std::max(static_cast<uint32_t>(std::ceil(scale)), 1u);
    }

    void WriteSheet(size_t number) {
        ProofSheet& sheet = sheets_[number];
        const uint64_t allowance = Allowance(number);
        const BlockArea area = ImageArea(sheet.placement);
        PageCheck check(model_, area, options_.limit / 100, LeastThinLine(file_.dpi));
        const uint32_t scale = ScaleOf(number, area, allowance);
        Drawing drawing{.area = area, .scale = scale, .inks = true, .users = {&check}};
        drawing.turned = sheet.placement.orientation == Orientation::kPortrait;
        PagePictures pictures = DrawPage(model_, *sheet.page, sheet.placement, drawing);
        sheet.means = pictures.means;
        sheet.facts = check.Finish();
        AddWarnings(sheet);
        if (IsLikeFirst(number) && WriteDifference(number, Stacked(pictures.inks), allowance)) return;
        if (number == 0) firstScale_ = scale;
        WritePicture(number, std::move(pictures.inks), allowance);
    }

    // Writes the differences from the first sheet's picture. Returns false if they take too much.
    bool WriteDifference(size_t number, Picture stack, uint64_t allowance) {
        if (stack.samples.size() != first_.samples.size()) return false;
        for (size_t i = 0; i < stack.samples.size(); ++i) {
            stack.samples[i] = static_cast<uint8_t>(stack.samples[i] - first_.samples[i]);
        }
        sheets_[number].fromFirst = TakePng(number, EncodePng(stack, file_.dpi), allowance);
        return sheets_[number].fromFirst;
    }

    // Makes the pictures smaller until they fit.
    void WritePicture(size_t number, std::array<Picture, kInks> inks, uint64_t allowance) {
        for (;;) {
            Picture stack = Stacked(inks);
            if (TakePng(number, EncodePng(stack, file_.dpi), allowance)) {
                if (number == 0) first_ = std::move(stack);
                return;
            }
            if (std::max(inks[0].width, inks[0].height) <= kLeastSide) return;
            if (number == 0) firstScale_ *= 2;
            for (Picture& ink : inks) ink = Halved(ink);
        }
    }

    bool TakePng(size_t number, const std::vector<uint8_t>& png, uint64_t allowance) {
        if (png.size() > allowance) return false;
        bytesLeft_ -= png.size();
        sheets_[number].hasPicture = true;
        Put(ProofPicture(number, png));
        return true;
    }

    void AddWarnings(ProofSheet& sheet) const {
        const PagePlacement& placement = sheet.placement;
        const uint32_t end = placement.headTop + placement.imageTop + placement.imageRows;
        if (end > placement.headRows) {
            sheet.warnings.push_back(
                "the label is larger than the print head: " + MmText(end - placement.headRows, file_.dpi) +
                " mm are beyond its right end");
        }
        const PageFacts& facts = sheet.facts;
        if (facts.overLimit > 0) {
            const double pixels = static_cast<double>(placement.imageWidth) * placement.imageRows;
            sheet.warnings.push_back(DecimalText(100 * static_cast<double>(facts.overLimit) / pixels, 2) +
                                     " % of the pixels get more ink than the limit of " +
                                     DecimalText(options_.limit, 0) + " %; the most is " +
                                     DecimalText(100 * facts.mostInk, 0) + " %");
        }
        if (facts.thinLines > 0) {
            sheet.warnings.push_back(std::to_string(facts.thinLines) +
                                     (facts.thinLines == 1 ? " line is" : " lines are") +
                                     " one pixel thin; two are the least that prints evenly");
        }
        if (facts.enlarged > 1) {
            const std::string times = std::to_string(facts.enlarged);
            sheet.warnings.push_back("every detail is made of " + times + " x " + times +
                                     " pixels: the art was enlarged " + times + " times");
        }
        if (sheet.page->missingRows > 0) {
            sheet.warnings.push_back("the file breaks off, and the last " +
                                     std::to_string(sheet.page->missingRows) + " rows are missing");
        }
        if (!options_.labels.empty()) CheckLabel(sheet);
    }

    void CheckLabel(ProofSheet& sheet) const {
        const PagePlacement& placement = sheet.placement;
        const double mm = kMmPerInch / file_.dpi;
        const double width = placement.imageRows * mm;  // across the paper feed, however the label reads
        const double length = placement.imageWidth * mm;
        if (labels_.Has(width, length)) return;
        sheet.warnings.push_back("a label of " + DecimalText(width, 1) + " x " + DecimalText(length, 1) +
                                 " mm is not in the printer's list");
    }

    const ProofOptions& options_;
    const ReadablePart& part_;
    const PrintFile& file_;
    InkModel model_;
    ListedLabels labels_;
    std::vector<ProofSheet> sheets_;
    uint64_t bytesLeft_;
    Picture first_;            // the first sheet's inks below each other, as they were written
    uint32_t firstScale_ = 1;  // of it
    OutputFile output_;
};

}  // namespace

void WriteProof(const ProofOptions& options, std::ostream& out) {
    const NamedFile proof{"--html", PathFromUtf8(options.html)};
    const NamedFile inputs[] = {{"the print file", PathFromUtf8(options.file)},
                                {"--labels", PathFromUtf8(options.labels)}};
    RefuseSharedFiles({&proof, 1}, inputs);
    const ReadablePart part = ReadReadablePart(options.file);
    ProofMaker maker(options, part);
    const uint64_t size = maker.Write();
    const size_t pages = part.file.pages.size();
    out << options.html << ": " << pages << (pages == 1 ? " page, " : " pages, ");
    if (pages > 1) out << maker.SheetCount() << " different, ";
    out << GroupedNumber(size) << " bytes\n";
    RequireSound(options.file, part);
}

}  // namespace orvex::tools::view
