#include "tools/orvexview/ink_verification.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "driver/color/row_conversion.h"
#include "tools/common/number_text.h"
#include "tools/orvexprofile/loaded_profile.h"
#include "tools/orvexview/ink_use.h"

namespace orvex::tools::view {

namespace {

constexpr uint32_t kFirstPixelMarker = 2;  // that the driver puts at the start of a page that begins blank
constexpr size_t kBandStep = 8;            // lines; the pattern of blank pixels has the same phase in each

bool Is600Dpi(const PrintFile& file) {
    return file.dpi == 600;
}

class InkVerifier {
  public:
    InkVerifier(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                PngReader& art)
        : page_(page),
          placement_(placement),
          art_(art),
          portrait_(placement.orientation == Orientation::kPortrait),
          width_(portrait_ ? placement.imageRows : placement.imageWidth),
          height_(portrait_ ? placement.imageWidth : placement.imageRows),
          withPattern_(HasPattern(file.header)),
          is600_(Is600Dpi(file)),
          colorMode_(static_cast<uint32_t>(file.header.FindNumber("COLORMODE").value_or(0))),
          artLine_(width_) {
        const PictureSize size = art.Size();
        if (width_ == size.width && height_ == size.height) return;
        throw std::runtime_error("the page is " + SizeText(width_, height_) + " pixels, the picture " +
                                 SizeText(size.width, size.height) + "; they can't be compared");
    }

    InkDifference Compare(size_t bandBytes) {
        if (portrait_) {
            const size_t lines = bandBytes / sizeof(uint32_t) / width_ / kBandStep * kBandStep;
            const auto most = static_cast<uint32_t>(std::min<size_t>(std::max(lines, kBandStep), height_));
            for (uint32_t top = 0; top < height_; top += most) {
                CompareTurned(top, std::min(most, height_ - top));
            }
        } else {
            CompareStraight();
        }
        return difference_;
    }

  private:
    // Compares a part of a row with its art, which `inks` is room for.
    void CompareRow(uint32_t row, uint32_t left, std::span<const uint32_t> printed,
                    std::span<const uint32_t> pixels, std::vector<uint32_t>& inks) {
        inks.resize(pixels.size());
        ConvertRow(inks.data(), pixels.data(), static_cast<uint32_t>(pixels.size()), 0, withPattern_, is600_,
                   colorMode_);
        if (row == placement_.imageTop && left == 0 && inks[0] == 0) inks[0] = kFirstPixelMarker;
        for (uint32_t i = 0; i < inks.size(); ++i) {
            difference_.TakePixel(row, left + i, printed[left + i], inks[i]);
        }
    }

    void CompareStraight() {
        RowReader reader(page_);
        std::vector<uint32_t> inks;
        for (uint32_t row = 0; row < placement_.imageTop + placement_.imageRows; ++row) {
            const std::span<const uint32_t> printed = reader.Next();
            if (row < placement_.imageTop) continue;
            art_.ReadRow(artLine_.data());
            CompareRow(row, placement_.imageLeft, printed, artLine_, inks);
        }
    }

    // Compares a band of the art's lines, each a column of the block. The rows begin with the art's right
    // edge.
    void CompareTurned(uint32_t top, uint32_t lines) {
        std::vector<uint32_t> columns(size_t{width_} * lines);
        for (uint32_t y = 0; y < lines; ++y) {
            art_.ReadRow(artLine_.data());
            for (uint32_t x = 0; x < width_; ++x) columns[size_t{x} * lines + y] = artLine_[x];
        }
        RowReader reader(page_);
        std::vector<uint32_t> inks;
        for (uint32_t row = 0; row < placement_.imageTop + placement_.imageRows; ++row) {
            const std::span<const uint32_t> printed = reader.Next();
            if (row < placement_.imageTop) continue;
            const uint32_t x = width_ - 1 - (row - placement_.imageTop);
            CompareRow(row, placement_.imageLeft + top, printed, {&columns[size_t{x} * lines], lines}, inks);
        }
    }

    const PrintedPage& page_;
    const PagePlacement& placement_;
    PngReader& art_;
    bool portrait_;
    uint32_t width_;   // of the label as it reads
    uint32_t height_;  // of the label as it reads
    bool withPattern_;
    bool is600_;
    uint32_t colorMode_;
    std::vector<uint32_t> artLine_;
    InkDifference difference_;
};

}  // namespace

void LoadProfileForPrint(const std::filesystem::path& path, const PrintFile& file) {
    profile::LoadAccepted(path,
                          Is600Dpi(file) ? profile::PrintVariant::kAt600 : profile::PrintVariant::kOther);
}

InkDifference VerifyInks(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                         PngReader& art, size_t bandBytes) {
    return InkVerifier(file, page, placement, art).Compare(bandBytes);
}

std::string DescribeVerification(const InkDifference& difference, const PagePlacement& placement) {
    if (difference.different == 0) {
        return "The print is right: all " + GroupedNumber(difference.pixels) +
               " pixels have the inks of the art.\n";
    }
    return "The print is wrong: " + GroupedNumber(difference.different) + " of " +
           GroupedNumber(difference.pixels) + " pixels have other inks than the art, at most by " +
           LargestText(difference) + ".\nThe first is at " + PlaceText(placement, difference.place) + ": " +
           InksText(difference.place.first) + " printed, " + InksText(difference.place.second) +
           " expected.\n";
}

}  // namespace orvex::tools::view
