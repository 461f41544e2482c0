// Writes color profile files that the driver reads.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// Throws std::invalid_argument, in words, unless `name` is 1 to 511 printable ASCII characters, as a new
// profile's name should be. Other characters would read differently under each machine's code page; names in
// other scripts belong in profilenames.inf.
void CheckProfileName(std::string_view name);

// Returns the size in bytes of a profile's file.
size_t FileSize(const Profile& profile);

// Returns the bytes of a profile's file. Throws std::invalid_argument when the driver would not accept the
// profile: a name too long, neither name nor codes (the driver's reader always takes at least one tag), a
// variant of another size than the version's, or an entry with the driver's "not computed" mark.
std::string EncodeProfile(const Profile& profile);

// Writes a profile's file whole or not at all. Throws std::runtime_error when that fails, and as
// EncodeProfile does.
void WriteProfileFile(const Profile& profile, const std::filesystem::path& path);

}  // namespace orvex::tools::profile
