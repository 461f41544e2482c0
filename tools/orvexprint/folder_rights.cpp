#include "tools/orvexprint/folder_rights.h"

#ifdef _WIN32
#include "platform/windows.h"
// After the Windows headers.
#include <aclapi.h>
#include <sddl.h>
#else
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#endif

#include <algorithm>
#include <memory>

#include "tools/common/wide_text.h"

namespace orvex::tools::print {

#ifdef _WIN32

namespace {

struct FreeLocal {
    void operator()(void* memory) const { LocalFree(memory); }
};

constexpr char kEveryone[] = "S-1-1-0";
constexpr char kAuthenticated[] = "S-1-5-11";
constexpr char kUsers[] = "S-1-5-32-545";

// Returns the account's name and, for those that stand for everybody, its identifier, which no language
// changes.
std::string NameOf(PSID account) {
    LPSTR text = nullptr;
    if (!ConvertSidToStringSidA(account, &text)) return "an unknown account";
    const std::unique_ptr<char, FreeLocal> owner(text);
    const std::string identifier = text;
    WCHAR name[256], domain[256];
    DWORD nameSize = 256, domainSize = 256;
    SID_NAME_USE use;
    if (!LookupAccountSidW(nullptr, account, name, &nameSize, domain, &domainSize, &use)) return identifier;
    return Utf8(name) + " (" + identifier + ")";
}

}  // namespace

std::vector<std::string> WritersOf(const std::filesystem::path& folder) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    std::wstring name = folder.wstring();
    if (GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                              nullptr, &descriptor) != ERROR_SUCCESS) {
        return {};
    }
    const std::unique_ptr<void, FreeLocal> owner(descriptor);
    if (list == nullptr) return {kEveryone};  // no list allows everything
    std::vector<std::string> writers;
    for (DWORD i = 0; i < list->AceCount; ++i) {
        void* entry = nullptr;
        if (!GetAce(list, i, &entry)) continue;
        auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        const bool applies = (allowed->Header.AceFlags & INHERIT_ONLY_ACE) == 0;
        const bool writes = (allowed->Mask & (FILE_ADD_FILE | GENERIC_WRITE | GENERIC_ALL)) != 0;
        if (allowed->Header.AceType != ACCESS_ALLOWED_ACE_TYPE || !applies || !writes) continue;
        std::string writer = NameOf(&allowed->SidStart);
        if (std::find(writers.begin(), writers.end(), writer) == writers.end())
            writers.push_back(std::move(writer));
    }
    return writers;
}

bool IsEverybody(const std::string& account) {
    for (const char* identifier : {kEveryone, kAuthenticated, kUsers}) {
        if (account == identifier || account.ends_with("(" + std::string(identifier) + ")")) return true;
    }
    return false;
}

#else

namespace {

constexpr char kEveryone[] = "everybody";

}  // namespace

std::vector<std::string> WritersOf(const std::filesystem::path& folder) {
    struct stat status = {};
    if (stat(folder.c_str(), &status) != 0) return {};
    std::vector<std::string> writers;
    if ((status.st_mode & S_IWUSR) != 0) {
        const passwd* owner = getpwuid(status.st_uid);
        writers.push_back(owner == nullptr ? "user " + std::to_string(status.st_uid) : owner->pw_name);
    }
    if ((status.st_mode & S_IWGRP) != 0) {
        const group* owner = getgrgid(status.st_gid);
        writers.push_back("group " + (owner == nullptr ? std::to_string(status.st_gid) : owner->gr_name));
    }
    if ((status.st_mode & S_IWOTH) != 0) writers.push_back(kEveryone);
    return writers;
}

bool IsEverybody(const std::string& account) {
    return account == kEveryone;
}

#endif

}  // namespace orvex::tools::print
