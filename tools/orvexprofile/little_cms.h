// Owners of Little CMS's handles, and a CMYK printer's ICC profile opened through them.
#pragma once

#include <lcms2.h>

#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>

namespace orvex::tools::profile {

struct CloseContext {
    void operator()(std::remove_pointer_t<cmsContext>* context) const { cmsDeleteContext(context); }
};
struct CloseProfile {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct CloseTransform {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using OwnedContext = std::unique_ptr<std::remove_pointer_t<cmsContext>, CloseContext>;
using OwnedProfile = std::unique_ptr<void, CloseProfile>;
using OwnedTransform = std::unique_ptr<void, CloseTransform>;

// Uses a profile's own tables: Little CMS otherwise makes a coarser one of its own first.
constexpr cmsUInt32Number kExact = cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE;

// An open profile with the context of everything that is made from it, which must not outlive it.
class PrinterIcc {
  public:
    // Throws std::runtime_error, in words, when the file can't be read, is no ICC profile, or is not a CMYK
    // printer's.
    explicit PrinterIcc(const std::filesystem::path& path);
    PrinterIcc(const PrinterIcc&) = delete;
    PrinterIcc& operator=(const PrinterIcc&) = delete;
    ~PrinterIcc() = default;

    cmsContext Context() const { return context_.get(); }
    cmsHPROFILE Profile() const { return profile_.get(); }

    // Throws std::runtime_error with the file's name, `problem` and the last message from Little CMS.
    [[noreturn]] void Fail(const std::string& problem) const;

  private:
    std::filesystem::path path_;
    std::string message_;  // the last one from Little CMS
    OwnedContext context_;
    OwnedProfile profile_;
};

}  // namespace orvex::tools::profile
