#include "tools/orvexprofile/icc_profile.h"

#include <lcms2.h>

#include <stdexcept>
#include <type_traits>

#include "tools/common/whole_file.h"

namespace orvex::tools::profile {

namespace {

// Byte orders as the driver has them: pixels are blue, green, red and a spare byte, ink values K, C, M, Y.
constexpr cmsUInt32Number kPixels = TYPE_BGRA_8;
constexpr cmsUInt32Number kInkValues = TYPE_KCMY_8;

// Uses the profile's own tables: Little CMS otherwise makes a coarser one of its own first.
constexpr cmsUInt32Number kExact = cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE;

struct CloseContext {
    void operator()(std::remove_pointer_t<cmsContext>* context) const { cmsDeleteContext(context); }
};
struct CloseProfile {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct CloseTransform {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};

void KeepMessage(cmsContext context, cmsUInt32Number, const char* text) {
    *static_cast<std::string*>(cmsGetContextUserData(context)) = text;
}

}  // namespace

// Handles of Little CMS. They are closed from the last to the first: the context after everything in it.
struct IccProfile::Handles {
    std::string message;  // the last one from Little CMS
    std::unique_ptr<std::remove_pointer_t<cmsContext>, CloseContext> context;
    std::unique_ptr<void, CloseProfile> printer;
    std::unique_ptr<void, CloseProfile> screen;
    std::unique_ptr<void, CloseTransform> transform;

    [[noreturn]] void Fail(const std::filesystem::path& path, const std::string& what) const {
        throw std::runtime_error(path.string() + ": " + what + (message.empty() ? "" : " (" + message + ")"));
    }
};

IccProfile::IccProfile(const std::filesystem::path& path, RenderingIntent intent, bool blackPointCompensation)
    : handles_(std::make_unique<Handles>()) {
    const std::vector<uint8_t> bytes = ReadWholeFile(path);
    handles_->context.reset(cmsCreateContext(nullptr, &handles_->message));
    const cmsContext context = handles_->context.get();
    if (context == nullptr) handles_->Fail(path, "Little CMS can't start");
    cmsSetLogErrorHandlerTHR(context, KeepMessage);
    handles_->printer.reset(
        cmsOpenProfileFromMemTHR(context, bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
    const cmsHPROFILE printer = handles_->printer.get();
    if (printer == nullptr) handles_->Fail(path, "not an ICC profile");
    if (cmsGetColorSpace(printer) != cmsSigCmykData || cmsGetDeviceClass(printer) != cmsSigOutputClass) {
        handles_->Fail(path, "not the profile of a CMYK printer");
    }
    handles_->screen.reset(cmsCreate_sRGBProfileTHR(context));
    const cmsUInt32Number flags = kExact | (blackPointCompensation ? cmsFLAGS_BLACKPOINTCOMPENSATION : 0);
    handles_->transform.reset(cmsCreateTransformTHR(context, handles_->screen.get(), kPixels, printer,
                                                    kInkValues, static_cast<cmsUInt32Number>(intent), flags));
    if (handles_->transform == nullptr) handles_->Fail(path, "no conversion from sRGB with this intent");
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
    const cmsHPROFILE printer = handles_->printer.get();
    std::string text(cmsGetProfileInfoASCII(printer, cmsInfoDescription, "en", "US", nullptr, 0), '\0');
    if (text.empty()) return "";
    cmsGetProfileInfoASCII(printer, cmsInfoDescription, "en", "US", text.data(),
                           static_cast<cmsUInt32Number>(text.size()));
    return text.substr(0, text.find('\0'));
}

}  // namespace orvex::tools::profile
