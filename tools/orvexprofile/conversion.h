// Turning a profile into one of another version, and what that loses.
#pragma once

#include <filesystem>
#include <span>
#include <string_view>

#include "tools/orvexprofile/driver_colors.h"
#include "tools/orvexprofile/ink_statistics.h"
#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// Reads the profile through the driver and samples its colours as `version` stores them. Name and codes stay,
// and so do the entries of a profile that has that version already; only the driver's mark, which no profile
// may hold, becomes the ink value nearest to it.
// Throws std::runtime_error with the reader's message when the driver does not accept the file.
Profile ConvertProfile(const std::filesystem::path& path, int version);

// How one variant of a converted profile differs from the one it comes from.
struct ConversionLoss {
    InkDifference meant;  // what the first profile means against what the driver prints through the second
    InkDifference
        printed;  // what the driver prints through the first against what it prints through the second
};

// Compares at `colors`. Throws as ConvertProfile does, for either file.
ConversionLoss MeasureLoss(const std::filesystem::path& from, const std::filesystem::path& to,
                           PrintVariant variant, std::span<const uint32_t> colors);

// What a version can't keep of any profile, in words; empty when it keeps every colour.
std::string_view VersionLoss(int version);

}  // namespace orvex::tools::profile
