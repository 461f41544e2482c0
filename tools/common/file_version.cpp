#include "tools/common/file_version.h"

#ifdef _WIN32
#include <vector>

#include "platform/windows.h"
#endif

namespace orvex::tools {

#ifdef _WIN32

std::string FileVersion(const std::filesystem::path& file) {
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), nullptr);
    std::vector<uint8_t> bytes(size);
    void* found = nullptr;
    UINT length = 0;
    if (size == 0 || !GetFileVersionInfoW(file.c_str(), 0, size, bytes.data()) ||
        !VerQueryValueW(bytes.data(), L"\\", &found, &length) || length < sizeof(VS_FIXEDFILEINFO)) {
        return {};
    }
    const auto* info = static_cast<const VS_FIXEDFILEINFO*>(found);
    return std::to_string(HIWORD(info->dwFileVersionMS)) + "." +
           std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
           std::to_string(HIWORD(info->dwFileVersionLS)) + "." +
           std::to_string(LOWORD(info->dwFileVersionLS));
}

#else

std::string FileVersion(const std::filesystem::path&) {
    return {};
}

#endif

}  // namespace orvex::tools
