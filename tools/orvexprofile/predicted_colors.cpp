#include "tools/orvexprofile/predicted_colors.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "tools/orvexprofile/little_cms.h"
#include "tools/orvexprofile/print_pictures.h"

namespace orvex::tools::profile {

namespace {

// Percents of the profile's full ink, in Little CMS's order of the inks.
struct InkPercents {
    std::array<float, kInks> cmyk;
};
constexpr cmsUInt32Number kInkPercents = TYPE_CMYK_FLT;
constexpr cmsUInt32Number kLabColors = TYPE_Lab_DBL;
static_assert(sizeof(LabColor) == sizeof(cmsCIELab));

// Keeps the last color, since labels have large areas of one.
constexpr cmsUInt32Number kExactWithCache = kExact & ~static_cast<cmsUInt32Number>(cmsFLAGS_NOCACHE);

constexpr size_t kChunk = 4096;  // colors computed together, to bound the memory of their percents

cmsCIELab AsLab(const LabColor& color) {
    return {color.lightness, color.a, color.b};
}

}  // namespace

struct PredictedColors::Handles {
    PrinterIcc printer;
    OwnedTransform toLab;
    OwnedTransform toSrgb;
    std::array<float, 256> percent;  // of full ink, by amount
    uint32_t leastFull = 0;          // the least amount that is full ink

    OwnedTransform TransformTo(OwnedProfile colors, cmsUInt32Number format, PaperColor paper) const {
        const cmsUInt32Number intent =
            paper == PaperColor::kOwn ? INTENT_ABSOLUTE_COLORIMETRIC : INTENT_RELATIVE_COLORIMETRIC;
        OwnedTransform transform(cmsCreateTransformTHR(printer.Context(), printer.Profile(), kInkPercents,
                                                       colors.get(), format, intent, kExactWithCache));
        if (transform == nullptr) printer.Fail("no conversion from inks to colours");
        return transform;
    }

    // Computes the colors of all ink values into `colors`, which takes `size` bytes for each.
    void Predict(const OwnedTransform& transform, std::span<const InkValue> inks, void* colors,
                 size_t size) const {
        std::vector<InkPercents> percents(std::min(inks.size(), kChunk));
        auto* place = static_cast<uint8_t*>(colors);
        while (!inks.empty()) {
            const size_t count = std::min(inks.size(), kChunk);
            std::transform(inks.begin(), inks.begin() + static_cast<std::ptrdiff_t>(count), percents.begin(),
                           [this](InkValue value) { return PercentsOf(value); });
            cmsDoTransform(transform.get(), percents.data(), place, static_cast<cmsUInt32Number>(count));
            place += count * size;
            inks = inks.subspan(count);
        }
    }

    InkPercents PercentsOf(InkValue inks) const {
        return {{percent[InkAmount(inks, kCyanInk)], percent[InkAmount(inks, kMagentaInk)],
                 percent[InkAmount(inks, kYellowInk)], percent[InkAmount(inks, kBlackInk)]}};
    }
};

PredictedColors::PredictedColors(const std::filesystem::path& path, PrintVariant variant, PaperColor paper)
    : handles_(new Handles{
          .printer = PrinterIcc(path), .toLab = nullptr, .toSrgb = nullptr, .percent = {}, .leastFull = 0}) {
    const cmsContext context = handles_->printer.Context();
    handles_->toLab =
        handles_->TransformTo(OwnedProfile(cmsCreateLab4ProfileTHR(context, nullptr)), kLabColors, paper);
    handles_->toSrgb =
        handles_->TransformTo(OwnedProfile(cmsCreate_sRGBProfileTHR(context)), TYPE_RGB_8, paper);
    const InkModel model = InkModelOf(variant);
    for (uint32_t amount = 0; amount < handles_->percent.size(); ++amount)
        handles_->percent[amount] = 100 * model.Share(amount);
    while (model.Share(handles_->leastFull) < 1) ++handles_->leastFull;
}

PredictedColors::~PredictedColors() = default;

std::vector<LabColor> PredictedColors::Lab(std::span<const InkValue> inks) const {
    std::vector<LabColor> colors(inks.size());
    handles_->Predict(handles_->toLab, inks, colors.data(), sizeof(LabColor));
    return colors;
}

void PredictedColors::Srgb(std::span<const InkValue> inks, std::span<uint8_t> samples) const {
    handles_->Predict(handles_->toSrgb, inks, samples.data(), 3);
}

bool PredictedColors::IsBeyondFull(InkValue inks) const {
    for (int ink = 0; ink < kInks; ++ink) {
        if (InkAmount(inks, ink) > handles_->leastFull) return true;
    }
    return false;
}

double DifferenceOf(const LabColor& a, const LabColor& b) {
    const cmsCIELab first = AsLab(a), second = AsLab(b);
    return cmsCIE2000DeltaE(&first, &second, 1, 1, 1);
}

ColorDifference CompareColors(std::span<const LabColor> expected, std::span<const LabColor> found) {
    std::vector<double> differences(expected.size());
    std::transform(expected.begin(), expected.end(), found.begin(), differences.begin(), DifferenceOf);
    const auto largest = std::max_element(differences.begin(), differences.end());
    ColorDifference difference;
    difference.largest = *largest;
    difference.largestAt = static_cast<size_t>(largest - differences.begin());
    difference.mean = std::accumulate(differences.begin(), differences.end(), 0.0) /
                      static_cast<double>(differences.size());
    const auto at95 =
        differences.begin() + static_cast<std::ptrdiff_t>((differences.size() * 95 + 99) / 100 - 1);
    std::nth_element(differences.begin(), at95, differences.end());
    difference.most95 = *at95;
    return difference;
}

}  // namespace orvex::tools::profile
