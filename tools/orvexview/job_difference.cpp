#include "tools/orvexview/job_difference.h"

#include <algorithm>
#include <cstdlib>

#include "tools/orvexview/page_pictures.h"

namespace orvex::tools::view {

namespace {

constexpr const char* kNone = "-";

void AddIfDifferent(std::vector<ValueDifference>& differences, std::string name, std::string first,
                    std::string second) {
    if (first != second) differences.push_back({std::move(name), std::move(first), std::move(second)});
}

void AddNumbers(std::vector<ValueDifference>& differences, const char* name, uint64_t first,
                uint64_t second) {
    AddIfDifferent(differences, name, std::to_string(first), std::to_string(second));
}

std::string ValueIn(const PjlHeader& header, const std::string& name) {
    const std::string* value = header.Find(name);
    return value == nullptr ? kNone : *value;
}

std::string ThumbnailText(const PjlHeader& header) {
    if (!header.thumbnail) return kNone;
    return std::to_string(header.thumbnail->size) + " characters, checksum " +
           std::to_string(header.thumbnail->checksum);
}

const char* OrientationName(const PagePlacement& placement) {
    return placement.orientation == Orientation::kPortrait ? "portrait" : "landscape";
}

uint32_t LargestChange(uint32_t first, uint32_t second) {
    uint32_t most = 0;
    for (int ink = 0; ink < kInks; ++ink) {
        const int change = static_cast<int>(InkAmount(first, ink)) - static_cast<int>(InkAmount(second, ink));
        most = std::max(most, static_cast<uint32_t>(std::abs(change)));
    }
    return most;
}

bool HaveSameSize(const BlockArea& first, const BlockArea& second) {
    return first.width == second.width && first.rows == second.rows;
}

// The parts of two blocks whose inks are compared.
struct ComparedAreas {
    ComparedPart part;
    BlockArea first;
    BlockArea second;
};

ComparedAreas AreasToCompare(const PrintedPage& first, const PagePlacement& firstPlace,
                             const PrintedPage& second, const PagePlacement& secondPlace) {
    const BlockArea firstBlock = WholeBlock(first), secondBlock = WholeBlock(second);
    const BlockArea firstLabel = ImageArea(firstPlace), secondLabel = ImageArea(secondPlace);
    const bool sameLabel = HaveSameSize(firstLabel, secondLabel);
    if (HaveSameSize(firstBlock, secondBlock) && (firstLabel == secondLabel || !sameLabel)) {
        return {ComparedPart::kBlock, firstBlock, secondBlock};
    }
    if (sameLabel && firstPlace.orientation == secondPlace.orientation) {
        return {ComparedPart::kLabel, firstLabel, secondLabel};
    }
    return {ComparedPart::kNothing, {}, {}};
}

// A page's rows from the first one of an area, cut to it.
class AreaReader {
  public:
    AreaReader(const PrintedPage& page, const BlockArea& area) : reader_(page), area_(area) {
        for (uint32_t row = 0; row < area.top; ++row) reader_.Next();
    }

    std::span<const uint32_t> Next() { return reader_.Next().subspan(area_.left, area_.width); }

  private:
    RowReader reader_;
    BlockArea area_;
};

}  // namespace

std::vector<ValueDifference> CompareHeaders(const PrintFile& first, const PrintFile& second) {
    std::vector<ValueDifference> differences;
    for (const HeaderVariable& variable : first.header.variables) {
        AddIfDifferent(differences, variable.name, variable.value, ValueIn(second.header, variable.name));
    }
    for (const HeaderVariable& variable : second.header.variables) {
        if (first.header.Find(variable.name) != nullptr) continue;
        differences.push_back({variable.name, kNone, variable.value});
    }
    AddIfDifferent(differences, "thumbnail", ThumbnailText(first.header), ThumbnailText(second.header));
    AddIfDifferent(differences, "engine", first.header.comment, second.header.comment);
    AddNumbers(differences, "resolution in dpi", first.dpi, second.dpi);
    AddNumbers(differences, "pages", first.pages.size(), second.pages.size());
    return differences;
}

DifferencePicture::DifferencePicture(const PrintedPage& page, uint32_t scale)
    : scale_(scale), picture_((page.rowWidth + scale - 1) / scale, (page.rows + scale - 1) / scale, 3) {
    std::fill(picture_.samples.begin(), picture_.samples.end(), uint8_t{255});
}

void DifferencePicture::TakePixel(uint32_t row, uint32_t x, uint32_t first, uint32_t second) {
    constexpr uint32_t kPalest = 208;  // gray of full ink
    uint8_t* pixel = picture_.At(x / scale_, row / scale_);
    const bool red = pixel[0] != pixel[1];
    if (first != second) {
        const auto light = static_cast<uint8_t>(160 - 160 * LargestChange(first, second) / 255);
        const uint8_t rest = red ? std::min(pixel[1], light) : light;
        StoreColor(pixel, {230, rest, rest});
    } else if (!red) {
        uint32_t most = 0;
        for (int ink = 0; ink < kInks; ++ink) most = std::max(most, InkAmount(first, ink));
        const auto gray = static_cast<uint8_t>(255 - most * (255 - kPalest) / 255);
        const uint8_t darker = std::min(pixel[0], gray);
        StoreColor(pixel, {darker, darker, darker});
    }
}

PageDifference ComparePages(const PrintFile& firstFile, const PrintedPage& first, const PrintFile& secondFile,
                            const PrintedPage& second, DifferencePicture* picture) {
    PageDifference difference;
    difference.number = first.number;
    const PagePlacement a = PlacePage(firstFile, first);
    const PagePlacement b = PlacePage(secondFile, second);
    const auto add = [&](const char* name, uint64_t left, uint64_t right) {
        AddNumbers(difference.geometry, name, left, right);
    };
    AddIfDifferent(difference.geometry, "orientation", OrientationName(a), OrientationName(b));
    add("rows", first.rows, second.rows);
    add("pixels in a row", first.rowWidth, second.rowWidth);
    add("announced rows", first.announcedRows, second.announcedRows);
    add("top offset of the block", first.top, second.top);
    add("fill rows in front", a.imageTop, b.imageTop);
    add("fill rows behind", a.fillBottom, b.fillBottom);
    add("purge bar", a.purgeWidth, b.purgeWidth);
    add("page width in units", first.width, second.width);
    add("page length in units", first.length, second.length);
    AddIfDifferent(difference.geometry, "resolution code", std::to_string(first.resolutionCode),
                   std::to_string(second.resolutionCode));
    const ComparedAreas areas = AreasToCompare(first, a, second, b);
    difference.part = areas.part;
    if (areas.part == ComparedPart::kNothing) return difference;

    AreaReader firstReader(first, areas.first);
    AreaReader secondReader(second, areas.second);
    for (uint32_t i = 0; i < areas.first.rows; ++i) {
        const std::span<const uint32_t> left = firstReader.Next();
        const std::span<const uint32_t> right = secondReader.Next();
        if (picture == nullptr && std::equal(left.begin(), left.end(), right.begin())) {
            difference.inks.pixels += left.size();
            continue;
        }
        const uint32_t row = areas.first.top + i;
        for (uint32_t k = 0; k < left.size(); ++k) {
            const uint32_t x = areas.first.left + k;
            difference.inks.TakePixel(row, x, left[k], right[k]);
            if (picture != nullptr) picture->TakePixel(row, x, left[k], right[k]);
        }
    }
    return difference;
}

}  // namespace orvex::tools::view
