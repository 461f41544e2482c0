#include "platform/posix/paths.h"

#include <sys/stat.h>
#include <unistd.h>

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

// Returns the user's cache folder; empty if there is none.
std::filesystem::path CacheFolder() {
    const char* const named = getenv("XDG_CACHE_HOME");
    if (named != nullptr && *named == '/') return named;
    const char* const home = getenv("HOME");
    return home != nullptr && *home == '/' ? std::filesystem::path(home) / ".cache" : std::filesystem::path();
}

// Returns whether the folder, no link, is this user's and nobody else can enter it.
bool IsPrivate(const std::filesystem::path& folder) {
    struct stat status = {};
    return lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

}  // namespace

const std::string& DriveC() {
    static ScratchDrive drive;
    return drive.path;
}

void KeepDriveC() {
    const std::filesystem::path cache = CacheFolder();
    if (cache.empty()) return;
    const std::filesystem::path folder = cache / "orvex-drive-c";
    std::error_code ignored;
    std::filesystem::create_directories(cache, ignored);
    mkdir(folder.c_str(), S_IRWXU);
    if (IsPrivate(folder)) setenv("ORVEX_DRIVE_C", folder.c_str(), 0);
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
