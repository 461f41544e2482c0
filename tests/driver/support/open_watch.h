// A record of the files that the code under test opens.
#pragma once

#include <string>
#include <vector>

#include "tools/host/import_patch.h"

namespace orvex {

// Records how CreateFileA is called for as long as it lives. Only one may live at a time.
class OpenWatch {
  public:
    struct Opening {
        std::string path;
        DWORD access, share, flags;
        bool operator==(const Opening&) const = default;
    };

    OpenWatch() : patch_(nullptr, "CreateFileA", reinterpret_cast<void*>(&Open)) {
        openings.clear();
        original_ = reinterpret_cast<decltype(&CreateFileA)>(patch_.Original());
    }

    static inline std::vector<Opening> openings;

  private:
    static HANDLE WINAPI Open(LPCSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                              DWORD disposition, DWORD flags, HANDLE templateFile) {
        openings.push_back({path, access, share, flags});
        return original_(path, access, share, security, disposition, flags, templateFile);
    }

    static inline decltype(&CreateFileA) original_ = nullptr;
    tools::ImportPatch patch_;
};

}  // namespace orvex
