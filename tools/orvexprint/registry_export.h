// Registry exports of Windows (.reg files), as far as they hold device modes: those of printers
// ("Default DevMode"), and those of users and applications (values of the keys "DevModePerUser",
// "DevModes2").
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "tools/orvexprint/little_endian.h"

namespace orvex::tools::print {

struct RegistryValue {
    std::string key;  // UTF-8
    std::string name;
    size_t line;  // of the file, from 1
    std::vector<uint8_t> bytes;
};

// A registry export that is damaged; the message says where.
class RegistryError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Returns whether the bytes begin as a registry export does: UTF-16, UTF-8 or the narrow code page.
bool IsRegistryExport(ByteSpan bytes);

// Returns the binary values that have bytes and "DevMode", in any case, in their name or in their key's.
// Throws RegistryError for one whose bytes can't be read.
std::vector<RegistryValue> ReadDeviceModeValues(ByteSpan bytes);

}  // namespace orvex::tools::print
