#ifdef _WIN32
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "platform/windows.h"
#include "tools/common/wide_text.h"
#include "tools/host/driver_library.h"
#endif

namespace orvex::tools {

// The built files have version resources only on Windows.
#ifdef _WIN32

namespace {

namespace fs = std::filesystem;

// The version resource of a file; empty if the file has none.
class VersionResource {
  public:
    explicit VersionResource(const fs::path& file) : bytes_(GetFileVersionInfoSizeW(file.c_str(), nullptr)) {
        const auto size = static_cast<DWORD>(bytes_.size());
        if (!GetFileVersionInfoW(file.c_str(), 0, size, bytes_.data())) bytes_.clear();
    }

    bool IsThere() const { return !bytes_.empty(); }

    VS_FIXEDFILEINFO Fixed() const {
        const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(Find(L"\\"));
        return fixed == nullptr ? VS_FIXEDFILEINFO() : *fixed;
    }

    // Returns a text of the English table.
    std::string Text(const std::wstring& name) const {
        const void* text = Find(L"\\StringFileInfo\\040904B0\\" + name);
        return text == nullptr ? "none" : Utf8(static_cast<const WCHAR*>(text));
    }

  private:
    const void* Find(const std::wstring& path) const {
        void* value = nullptr;
        UINT size = 0;
        return VerQueryValueW(bytes_.data(), path.c_str(), &value, &size) && size > 0 ? value : nullptr;
    }

    std::vector<BYTE> bytes_;
};

std::string Numbers(DWORD high, DWORD low) {
    return std::to_string(HIWORD(high)) + "." + std::to_string(LOWORD(high)) + "." +
           std::to_string(HIWORD(low)) + "." + std::to_string(LOWORD(low));
}

constexpr DWORD kVersionedPrinterDriver = 0xC;  // VFT2_DRV_VERSIONED_PRINTER

struct BuiltFile {
    const char* name;
    DWORD type;
    DWORD subtype;
};

class BuiltFiles : public testing::TestWithParam<BuiltFile> {};

}  // namespace

TEST_P(BuiltFiles, NameTheirMakerAndVersion) {
    const BuiltFile& file = GetParam();
    const VersionResource resource(ProgramFolder() / file.name);
    ASSERT_TRUE(resource.IsThere());
    const VS_FIXEDFILEINFO fixed = resource.Fixed();
    EXPECT_EQ(Numbers(fixed.dwFileVersionMS, fixed.dwFileVersionLS), ORVEX_FILE_VERSION);
    EXPECT_EQ(Numbers(fixed.dwProductVersionMS, fixed.dwProductVersionLS), ORVEX_FILE_VERSION);
    EXPECT_EQ(fixed.dwFileType, file.type);
    EXPECT_EQ(fixed.dwFileSubtype, file.subtype);
    EXPECT_EQ(resource.Text(L"FileVersion"), ORVEX_FILE_VERSION);
    EXPECT_EQ(resource.Text(L"CompanyName"), "Quorvane");
    EXPECT_EQ(resource.Text(L"ProductName"), "Orvex Series");
    EXPECT_EQ(resource.Text(L"OriginalFilename"), file.name);
}

INSTANTIATE_TEST_SUITE_P(Each, BuiltFiles,
                         testing::Values(BuiltFile{"orvexgdi.dll", VFT_DRV, kVersionedPrinterDriver},
                                         BuiltFile{"hpcrlib.dll", VFT_DLL, VFT2_UNKNOWN},
                                         BuiltFile{"orvexprint.exe", VFT_APP, VFT2_UNKNOWN},
                                         BuiltFile{"orvexview.exe", VFT_APP, VFT2_UNKNOWN}),
                         [](const auto& each) {
                             const std::string name = each.param.name;
                             return name.substr(0, name.find('.'));
                         });

TEST(FileVersion, HasTheSecondNumberOfADriverInUserMode) {
    EXPECT_EQ(std::string(ORVEX_FILE_VERSION).substr(0, 4), "0.3.");
}

#endif

}  // namespace orvex::tools
