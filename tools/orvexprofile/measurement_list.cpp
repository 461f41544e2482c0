#include "tools/orvexprofile/measurement_list.h"

#include <array>
#include <new>

#include "tools/common/number_text.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/little_cms.h"

namespace orvex::tools::profile {

namespace {

constexpr int kDecimals = 4;
constexpr int kListedInks[] = {kCyanInk, kMagentaInk, kYellowInk, kBlackInk};

// Turns a pixel into XYZ.
class ScreenColors {
  public:
    ScreenColors() {
        const OwnedProfile screen(cmsCreate_sRGBProfile()), xyz(cmsCreateXYZProfile());
        transform_.reset(cmsCreateTransform(screen.get(), TYPE_BGRA_8, xyz.get(), TYPE_XYZ_DBL,
                                            INTENT_RELATIVE_COLORIMETRIC, kExact));
        if (transform_ == nullptr) throw std::bad_alloc();
    }
    cmsCIEXYZ Xyz(uint32_t color) const {
        cmsCIEXYZ xyz;
        cmsDoTransform(transform_.get(), &color, &xyz, 1);
        return xyz;
    }

  private:
    OwnedTransform transform_;
};

std::string Keyword(const std::string& name, const std::string& value) {
    return name + " \"" + value + "\"\n";
}

std::string Head(const TargetLayout& layout, size_t patches, double limitPercent) {
    return "CTI2\n\n" + Keyword("DESCRIPTOR", "Measurement target") + Keyword("ORIGINATOR", "orvexprofile") +
           Keyword("COLOR_REP", "CMYK") + Keyword("TOTAL_INK_LIMIT", DecimalText(limitPercent, 1)) +
           Keyword("STEPS_IN_PASS", std::to_string(layout.Columns())) +
           Keyword("PASSES_IN_STRIPS2", std::to_string((patches + layout.Columns() - 1) / layout.Columns())) +
           Keyword("STRIP_INDEX_PATTERN", "A-Z, A-Z") + Keyword("PATCH_INDEX_PATTERN", "0-9,@-9,@-9;1-999") +
           Keyword("INDEX_ORDER", "STRIP_THEN_PATCH") +
           "\nNUMBER_OF_FIELDS 9\nBEGIN_DATA_FORMAT\n"
           "SAMPLE_ID SAMPLE_LOC CMYK_C CMYK_M CMYK_Y CMYK_K XYZ_X XYZ_Y XYZ_Z\n"
           "END_DATA_FORMAT\n\nNUMBER_OF_SETS " +
           std::to_string(patches) + "\nBEGIN_DATA\n";
}

}  // namespace

std::string MeasurementList(std::span<const TargetPatch> patches, const TargetLayout& layout,
                            double limitPercent) {
    const ScreenColors screen;
    std::string text = Head(layout, patches.size(), limitPercent);
    for (size_t i = 0; i < patches.size(); ++i) {
        text += std::to_string(i + 1) + " \"" + layout.LocationOf(i) + '"';
        for (int ink : kListedInks)
            text += ' ' + DecimalText(InkAmount(patches[i].inks, ink) * 100 / kFullAmount, kDecimals);
        const cmsCIEXYZ xyz = screen.Xyz(patches[i].color);
        for (double value : {xyz.X, xyz.Y, xyz.Z}) text += ' ' + DecimalText(100 * value, kDecimals);
        text += '\n';
    }
    return text + "END_DATA\n";
}

}  // namespace orvex::tools::profile
