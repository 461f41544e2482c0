// A printer's ICC profile as a source of inks, through Little CMS.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

enum class RenderingIntent { kPerceptual, kRelativeColorimetric, kSaturation, kAbsoluteColorimetric };

// From sRGB colours to the inks of a CMYK printer, each colour computed on its own, without a table in
// between.
class IccProfile {
  public:
    // Throws std::runtime_error, in words, when the file can't be read, is no ICC profile, is not of a CMYK
    // printer, or has no conversion for the intent.
    IccProfile(const std::filesystem::path& path, RenderingIntent intent, bool blackPointCompensation);
    ~IccProfile();
    IccProfile(const IccProfile&) = delete;
    IccProfile& operator=(const IccProfile&) = delete;

    // The inks at 100 %, without limit.
    void Convert(std::span<const uint32_t> colors, std::span<uint32_t> inks) const;
    InkSource Source() const;

    // The profile's own description, in English where it has one.
    std::string Description() const;

  private:
    struct Handles;
    std::unique_ptr<Handles> handles_;
};

}  // namespace orvex::tools::profile
