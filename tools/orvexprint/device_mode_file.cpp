#include "tools/orvexprint/device_mode_file.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <stdexcept>

#include "tools/common/number_text.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/metafile.h"
#include "tools/orvexprint/registry_export.h"
#include "tools/orvexprint/shadow_file.h"
#include "tools/orvexprint/spool_file.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr size_t kMostFileBytes = size_t{1} << 29;  // a registry export has the whole registry

std::vector<uint8_t> BytesOf(ByteSpan bytes) {
    return {bytes.begin(), bytes.end()};
}

// Returns every device mode of a spool file, even if it is damaged otherwise, or has no pages.
std::vector<StoredDeviceMode> InSpoolFile(ByteSpan file) {
    const size_t header = SpoolHeaderSize(file);
    std::vector<SpoolRecord> records;
    SplitSpoolRecords(file.subspan(header), header, records);
    std::vector<StoredDeviceMode> modes;
    for (const SpoolRecord& record : records) {
        if (record.id == EMRI_DEVMODE)
            modes.push_back(
                {BytesOf(record.data), "EMRI_DEVMODE at offset " + std::to_string(record.offset)});
    }
    return modes;
}

std::vector<StoredDeviceMode> InShadowFile(ByteSpan file) {
    const ByteSpan mode = ReadShadowFile(file).deviceMode;
    if (mode.empty()) return {};
    return {{BytesOf(mode), "at offset " + std::to_string(mode.data() - file.data())}};
}

std::vector<StoredDeviceMode> InRegistryExport(ByteSpan file) {
    std::vector<StoredDeviceMode> modes;
    for (RegistryValue& value : ReadDeviceModeValues(file)) {
        modes.push_back({std::move(value.bytes),
                         "\"" + value.name + "\" of " + value.key + ", line " + std::to_string(value.line)});
    }
    return modes;
}

struct GivenDeviceMode {
    fs::path file;
    std::optional<size_t> number;  // from 1
};

GivenDeviceMode Split(const fs::path& given) {
    std::error_code ignored;
    const std::string name = Utf8FromPath(given.filename());
    const size_t mark = name.rfind('#');
    if (fs::exists(given, ignored) || mark == std::string::npos) return {given, std::nullopt};
    const auto number = ParseWhole(std::string_view(name).substr(mark + 1));
    if (!number || *number < 1) return {given, std::nullopt};
    fs::path file = given;
    file.replace_filename(PathFromUtf8(name.substr(0, mark)));
    if (!fs::exists(file, ignored)) return {given, std::nullopt};
    return {file, static_cast<size_t>(*number)};
}

}  // namespace

std::vector<StoredDeviceMode> DeviceModesIn(ByteSpan file) {
    if (IsSpoolFile(file)) return InSpoolFile(file);
    if (IsShadowFile(file)) return InShadowFile(file);
    if (IsRegistryExport(file)) return InRegistryExport(file);
    if (file.empty()) return {};
    return {{BytesOf(file), ""}};
}

fs::path FileOfDeviceMode(const fs::path& given) {
    return Split(given).file;
}

std::vector<StoredDeviceMode> ReadDeviceModes(const fs::path& given) {
    const auto [file, number] = Split(given);
    const std::string name = Utf8FromPath(given);
    const std::vector<uint8_t> bytes = ReadWholeFile(file, kMostFileBytes);
    std::vector<StoredDeviceMode> modes;
    try {
        modes = DeviceModesIn(bytes);
    } catch (const SpoolError& error) {
        throw std::runtime_error(name + " " + error.what());
    } catch (const RegistryError& error) {
        throw std::runtime_error(name + " " + error.what());
    }
    if (modes.empty()) throw std::runtime_error(name + " holds no device mode");
    if (!number) return modes;
    if (*number > modes.size()) {
        throw std::runtime_error(name + " is not there: the file holds " + std::to_string(modes.size()) +
                                 (modes.size() == 1 ? " device mode" : " device modes"));
    }
    return {std::move(modes[*number - 1])};
}

StoredDeviceMode ReadDeviceMode(const fs::path& given) {
    std::vector<StoredDeviceMode> modes = ReadDeviceModes(given);
    if (modes.size() == 1) return std::move(modes.front());
    const std::string name = Utf8FromPath(given);
    throw std::runtime_error(name + " holds " + std::to_string(modes.size()) + " device modes; name one, \"" +
                             name + "#1\" to \"" + name + "#" + std::to_string(modes.size()) +
                             "\", as --show-devmode lists them");
}

DeviceMode AsDriversOwn(ByteSpan bytes, const std::string& name) {
    DeviceMode mode;
    if (bytes.size() != sizeof mode)
        throw std::runtime_error(name + " is no device mode: it does not have 916 bytes");
    memcpy(&mode, bytes.data(), sizeof mode);
    if (mode.pub.dmSize != sizeof mode.pub || mode.pub.dmDriverExtra != sizeof mode.priv ||
        mode.priv.signature != kPrivateSignature) {
        throw std::runtime_error(name + " is no device mode of this driver");
    }
    return mode;
}

std::vector<uint8_t> WithDeclaredSize(ByteSpan bytes) {
    std::vector<uint8_t> whole = BytesOf(bytes);
    whole.resize(std::max(whole.size(), kLeastDeviceMode));
    whole.resize(std::max(whole.size(), DeviceModeSize(whole)));
    return whole;
}

}  // namespace orvex::tools::print
