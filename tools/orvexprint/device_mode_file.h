// Device modes out of files: the bytes of one, spool files, shadow files and registry exports.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "driver/config/device_mode.h"
#include "tools/orvexprint/little_endian.h"

namespace orvex::tools::print {

// A device mode as it is stored: any bytes.
struct StoredDeviceMode {
    std::vector<uint8_t> bytes;
    std::string where;  // in the file, in words: "at offset 512"; empty if it is the whole file
};

// Returns the device modes in a file of any of these kinds, in its order. Throws SpoolError or RegistryError
// for a damaged file; its message follows the file's name.
std::vector<StoredDeviceMode> DeviceModesIn(ByteSpan file);

// Returns the file that is meant by "FILE" or by "FILE#2", which is the second device mode of a file, unless
// a file has that very name.
std::filesystem::path FileOfDeviceMode(const std::filesystem::path& given);

// Read all device modes of a file or the one of the number that is given; that one or else the only one. All
// errors are std::runtime_error and name the file.
std::vector<StoredDeviceMode> ReadDeviceModes(const std::filesystem::path& given);
StoredDeviceMode ReadDeviceMode(const std::filesystem::path& given);

// Returns a device mode of this driver: checks the number of its bytes, the sizes in the record and its
// signature. Throws std::runtime_error, which begins with the name.
DeviceMode AsDriversOwn(ByteSpan bytes, const std::string& name);

// Returns the bytes, with zeros after them if a device mode says that it has more. The driver reads that
// many, and at least those up to the sizes.
std::vector<uint8_t> WithDeclaredSize(ByteSpan bytes);

}  // namespace orvex::tools::print
