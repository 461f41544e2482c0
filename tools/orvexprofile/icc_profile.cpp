#include "tools/orvexprofile/icc_profile.h"

#include "tools/orvexprofile/little_cms.h"

namespace orvex::tools::profile {

namespace {

// Byte orders as the driver has them: pixels are blue, green, red and a spare byte, ink values K, C, M, Y.
constexpr cmsUInt32Number kPixels = TYPE_BGRA_8;
constexpr cmsUInt32Number kInkValues = TYPE_KCMY_8;

}  // namespace

struct IccProfile::Handles {
    PrinterIcc printer;
    OwnedProfile screen;
    OwnedTransform transform;
};

IccProfile::IccProfile(const std::filesystem::path& path, RenderingIntent intent, bool blackPointCompensation)
    : handles_(new Handles{.printer = PrinterIcc(path), .screen = nullptr, .transform = nullptr}) {
    const PrinterIcc& printer = handles_->printer;
    handles_->screen.reset(cmsCreate_sRGBProfileTHR(printer.Context()));
    const cmsUInt32Number flags = kExact | (blackPointCompensation ? cmsFLAGS_BLACKPOINTCOMPENSATION : 0);
    handles_->transform.reset(cmsCreateTransformTHR(printer.Context(), handles_->screen.get(), kPixels,
                                                    printer.Profile(), kInkValues,
                                                    static_cast<cmsUInt32Number>(intent), flags));
    if (handles_->transform == nullptr) printer.Fail("no conversion from sRGB with this intent");
}

IccProfile::~IccProfile() = default;

void IccProfile::Convert(std::span<const uint32_t> colors, std::span<uint32_t> inks) const {
    cmsDoTransform(handles_->transform.get(), colors.data(), inks.data(),
                   static_cast<cmsUInt32Number>(colors.size()));
}

InkSource IccProfile::Source() const {
    return [this](std::span<const uint32_t> colors, std::span<uint32_t> inks) { Convert(colors, inks); };
}

std::string IccProfile::Description() const {
    const cmsHPROFILE printer = handles_->printer.Profile();
    std::string text(cmsGetProfileInfoASCII(printer, cmsInfoDescription, "en", "US", nullptr, 0), '\0');
    if (text.empty()) return "";
    cmsGetProfileInfoASCII(printer, cmsInfoDescription, "en", "US", text.data(),
                           static_cast<cmsUInt32Number>(text.size()));
    return text.substr(0, text.find('\0'));
}

}  // namespace orvex::tools::profile
