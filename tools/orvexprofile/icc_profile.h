// A printer's ICC profile as a source of inks, through Little CMS.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// Numbered as in ICC profiles.
enum class RenderingIntent : uint32_t {
    kPerceptual,
    kRelativeColorimetric,
    kSaturation,
    kAbsoluteColorimetric
};

// A conversion from sRGB colors to the inks of a CMYK printer. Each color is computed on its own, without a
// table in between.
class IccProfile {
  public:
    // Throws std::runtime_error, in words, when the file can't be read, is no ICC profile, is not a CMYK
    // printer's, or has no conversion for the intent.
    IccProfile(const std::filesystem::path& path, RenderingIntent intent, bool blackPointCompensation);
    ~IccProfile();
    IccProfile(const IccProfile&) = delete;
    IccProfile& operator=(const IccProfile&) = delete;

    // Computes the inks at 100 %, without limit.
    void Convert(std::span<const uint32_t> colors, std::span<uint32_t> inks) const;
    InkSource Source() const;

    // Returns the profile's own description, in English if it has one.
    std::string Description() const;

  private:
    struct Handles;
    std::unique_ptr<Handles> handles_;
};

}  // namespace orvex::tools::profile
