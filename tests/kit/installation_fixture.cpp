#include "tests/kit/installation_fixture.h"

#include <cstring>
#include <string>

#include "platform/shell.h"
#ifndef _WIN32
#include "platform/posix/paths.h"
#endif

namespace orvex {

namespace fs = std::filesystem;

namespace {

// One test runs at a time.
std::u16string commonApplicationData;

BOOL WINAPI AnswerFolder(HWND, LPWSTR path, int folder, BOOL) {
    if (folder != CSIDL_COMMON_APPDATA) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    memcpy(path, commonApplicationData.c_str(), (commonApplicationData.size() + 1) * sizeof(WCHAR));
    return TRUE;
}

std::u16string AsWindowsPath(const fs::path& path) {
#ifdef _WIN32
    return path.u16string();
#else
    return posix::WindowsPath(path.string());
#endif
}

}  // namespace

InstallationFixture::InstallationFixture(HMODULE module)
    : folder_(scratch_.Path() / "Quorvane" / "Orvex Series"),
      patch_(module, "SHGetSpecialFolderPathW", reinterpret_cast<void*>(&AnswerFolder)) {
    fs::create_directories(folder_);
    commonApplicationData = AsWindowsPath(scratch_.Path());
}

InstallationFixture::~InstallationFixture() {
    commonApplicationData.clear();
}

void InstallationFixture::Write(const fs::path& name, std::string_view bytes) const {
    const fs::path path = folder_ / name;
    fs::create_directories(path.parent_path());
    WriteBytes(path, bytes);
}

}  // namespace orvex
