#include "tools/orvexprofile/little_cms.h"

#include <cstdint>
#include <stdexcept>
#include <vector>

#include "tools/common/whole_file.h"

namespace orvex::tools::profile {

namespace {

void KeepMessage(cmsContext context, cmsUInt32Number, const char* text) {
    *static_cast<std::string*>(cmsGetContextUserData(context)) = text;
}

}  // namespace

void PrinterIcc::Fail(const std::string& problem) const {
    throw std::runtime_error(path_.string() + ": " + problem +
                             (message_.empty() ? "" : " (" + message_ + ")"));
}

PrinterIcc::PrinterIcc(const std::filesystem::path& path) : path_(path) {
    const std::vector<uint8_t> bytes = ReadWholeFile(path);
    context_.reset(cmsCreateContext(nullptr, &message_));
    if (context_ == nullptr) Fail("Little CMS can't start");
    cmsSetLogErrorHandlerTHR(Context(), KeepMessage);
    profile_.reset(
        cmsOpenProfileFromMemTHR(Context(), bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
    if (profile_ == nullptr) Fail("not an ICC profile");
    if (cmsGetColorSpace(Profile()) != cmsSigCmykData || cmsGetDeviceClass(Profile()) != cmsSigOutputClass) {
        Fail("not the profile of a CMYK printer");
    }
}

}  // namespace orvex::tools::profile
