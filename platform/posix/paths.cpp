#include "platform/posix/paths.h"

#include <cstdlib>
#include <filesystem>

#include "platform/posix/unicode.h"

namespace orvex::posix {

namespace {

struct ScratchDrive {
    ScratchDrive() {
        if (const char* named = getenv("ORVEX_DRIVE_C")) {
            path = named;
            return;
        }
        std::string pattern = (std::filesystem::temp_directory_path() / "orvex-drive-c-XXXXXX").string();
        path = mkdtemp(pattern.data());
        owned = true;
    }
    ScratchDrive(const ScratchDrive&) = delete;
    ScratchDrive& operator=(const ScratchDrive&) = delete;
    ~ScratchDrive() {
        std::error_code ignored;
        if (owned) std::filesystem::remove_all(path, ignored);
    }
    std::string path;
    bool owned = false;
};

}  // namespace

const std::string& DriveC() {
    static ScratchDrive drive;
    return drive.path;
}

std::string PosixPath(const char* path) {
    std::string out = path;
    for (char& c : out) {
        if (c == '\\') c = '/';
    }
    if (out.size() >= 2 && (out[0] == 'c' || out[0] == 'C') && out[1] == ':') out = DriveC() + out.substr(2);
    return out;
}

std::string PosixPath(const WCHAR* path) {
    return PosixPath(Utf8(path).c_str());
}

std::u16string WindowsPath(const std::string& posixPath) {
    std::string out = posixPath;
    if (out.starts_with(DriveC())) out = "c:" + out.substr(DriveC().size());
    for (char& c : out) {
        if (c == '/') c = '\\';
    }
    return Utf16(out);
}

}  // namespace orvex::posix
