// The conversion of a profile to another version, and the loss in it.
#pragma once

#include <filesystem>
#include <span>
#include <string_view>

#include "tools/orvexprofile/ink_statistics.h"
#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// Reads the profile through the driver and samples its colors as `version` stores them. Name and codes stay,
// and so do the entries of a profile that has that version already; only the driver's "not computed" mark
// becomes the ink value nearest to it. Throws std::runtime_error with the reader's message when the driver
// does not accept the file.
Profile ConvertProfile(const std::filesystem::path& path, int version);

// The difference between one variant of a converted profile and the one it comes from.
struct ConversionLoss {
    int fromVersion;
    // The inks that the driver prints through the second profile, against those that the first one means, and
    // against those that the driver prints through the first.
    InkDifference meant;
    InkDifference printed;
};

// Compares two profiles at `colors`. Throws as ConvertProfile does, for either file.
ConversionLoss MeasureLoss(const std::filesystem::path& from, const std::filesystem::path& to,
                           PrintVariant variant, std::span<const uint32_t> colors);

// Says what a version can't keep of any profile, in words; returns an empty text when it keeps every color.
std::string_view VersionLoss(int version);

}  // namespace orvex::tools::profile
