// Writes colour profile files that the driver reads.
#pragma once

#include <filesystem>
#include <ostream>
#include <string_view>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// Throws std::invalid_argument, in words, unless `name` is 1 to 511 printable ASCII characters, as a new
// profile's name should be. Other characters would read differently under each machine's code page; names in
// other scripts belong into profilenames.inf.
void CheckProfileName(std::string_view name);

// The size in bytes of the file that WriteProfile makes.
size_t FileSize(const Profile& profile);

// Throws std::invalid_argument when the driver would not accept the profile: a name too long, neither name
// nor codes (the driver's reader always takes at least one tag), a variant of another size than the
// version's, or an entry with the driver's "not computed" mark.
void WriteProfile(const Profile& profile, std::ostream& out);

// Writes beside `path` first and then moves the whole file there, so that no half-written profile ever stands
// under the name. Throws std::runtime_error when that fails, and what WriteProfile throws.
void WriteProfileFile(const Profile& profile, const std::filesystem::path& path);

}  // namespace orvex::tools::profile
