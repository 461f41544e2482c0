#include "driver/support/installation.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "driver/support/handle.h"
#include "driver/support/text.h"
#include "platform/shell.h"
#include "tests/kit/allocation_failure.h"
#include "tests/kit/installation_fixture.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
namespace {

// What the replaced functions answer; one test runs at a time.
struct {
    const WCHAR* folder;
    DWORD folderError;
    int appendCalls;
    int failingAppend;
} shell;

BOOL WINAPI AnswerFolder(HWND, LPWSTR path, int folder, BOOL create) {
    EXPECT_EQ(folder, CSIDL_COMMON_APPDATA);
    EXPECT_FALSE(create) << "the folder is not made";
    if (shell.folder == nullptr) {
        SetLastError(shell.folderError);
        return FALSE;
    }
    memcpy(path, shell.folder, (TextLength(shell.folder) + 1) * sizeof(WCHAR));
    return TRUE;
}

BOOL WINAPI FailToAppend(LPWSTR path, LPCWSTR more) {
    if (++shell.appendCalls == shell.failingAppend) return FALSE;
    CopyText(path + TextLength(path), 30, {L"|", 1});
    CopyText(path + TextLength(path), 30, {more, TextLength(more)});
    return TRUE;
}

class InstallationFolder : public testing::Test {
  protected:
    InstallationFolder() { shell = {L"c:\\ProgramData", 0, 0, 0}; }

    std::u16string Folder() {
        const HeapArray<WCHAR> folder = GetInstallationFolder();
        return folder ? reinterpret_cast<const char16_t*>(folder.get()) : u"(none)";
    }

    ImportPatch patch_{nullptr, "SHGetSpecialFolderPathW", reinterpret_cast<void*>(&AnswerFolder)};
};

struct {
    DWORD needed;
    BOOL result;
    const WCHAR* name;
    int calls;
} driver;

BOOL WINAPI AnswerDriver(HANDLE printer, LPWSTR environment, DWORD level, LPBYTE buffer, DWORD size,
                         LPDWORD needed) {
    EXPECT_EQ(printer, reinterpret_cast<HANDLE>(0x1234));
    EXPECT_EQ(environment, nullptr);
    EXPECT_EQ(level, 3u);
    *needed = driver.needed;
    if (driver.calls++ == 0) {
        EXPECT_EQ(buffer, nullptr);
        EXPECT_EQ(size, 0u);
        return FALSE;
    }
    EXPECT_EQ(size, driver.needed);
    DRIVER_INFO_3W info = {};
    info.pName = const_cast<WCHAR*>(driver.name);
    memcpy(buffer, &info, sizeof info);
    return driver.result;
}

class PrinterDriverName : public testing::Test {
  protected:
    PrinterDriverName() { driver = {kInfoBytes, TRUE, L"Orvex Series", 0}; }

    static constexpr DWORD kInfoBytes = sizeof(DRIVER_INFO_3W) + 72;

    std::u16string Name() {
        const HeapArray<WCHAR> name = GetPrinterDriverName(reinterpret_cast<HANDLE>(0x1234));
        return name ? reinterpret_cast<const char16_t*>(name.get()) : u"(none)";
    }

    ImportPatch patch_{nullptr, "GetPrinterDriverW", reinterpret_cast<void*>(&AnswerDriver)};
};

}  // namespace

TEST_F(InstallationFolder, LiesUnderTheCommonApplicationDataAndClearsTheLastError) {
    SetLastError(ERROR_GEN_FAILURE);
    EXPECT_EQ(Folder(), u"c:\\ProgramData\\Quorvane\\Orvex Series");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
}

TEST_F(InstallationFolder, TakesPathsOf129Characters) {
    const std::u16string common = u"c:\\" + std::u16string(129 - 3 - 22, u'p');
    shell.folder = reinterpret_cast<const WCHAR*>(common.c_str());
    EXPECT_EQ(Folder(), common + u"\\Quorvane\\Orvex Series");
    EXPECT_EQ(Folder().size(), 129u);
}

TEST_F(InstallationFolder, AnUnknownCommonFolderLeavesTheSystemsCode) {
    shell.folder = nullptr;
    shell.folderError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(Folder(), u"(none)");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    shell.folderError = ERROR_SUCCESS;
    EXPECT_EQ(Folder(), u"(none)") << "whatever the code";
}

TEST_F(InstallationFolder, AFolderThatCannotBeAppendedIs0x20010009) {
    const ImportPatch append(nullptr, "PathAppendW", reinterpret_cast<void*>(&FailToAppend));
    for (const int failing : {1, 2}) {
        shell.appendCalls = 0;
        shell.failingAppend = failing;
        EXPECT_EQ(Folder(), u"(none)");
        EXPECT_EQ(GetLastError(), 0x20010009u);
        EXPECT_EQ(shell.appendCalls, failing);
    }
    shell.appendCalls = 0;
    shell.failingAppend = 0;
    EXPECT_EQ(Folder(), u"c:\\ProgramData|Quorvane|Orvex Series");
}

TEST_F(InstallationFolder, ShortMemoryIs0x20010001) {
    const AllocationFailure memory(MAX_PATH * sizeof(WCHAR));
    EXPECT_EQ(Folder(), u"(none)");
    EXPECT_EQ(GetLastError(), 0x20010001u);
    EXPECT_EQ(memory.Count(), 1);
}

TEST(InstallationFile, OpensForSharedReadingOnlyWhatExists) {
    const InstallationFixture installation;
    installation.Write("media.inf", "[Media]");
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    ASSERT_TRUE(folder);
    const OwnedHandle first(OpenInstallationFile(folder.get(), L"media.inf"));
    const OwnedHandle second(OpenInstallationFile(folder.get(), L"media.inf"));
    EXPECT_TRUE(first);
    EXPECT_TRUE(second);
    EXPECT_EQ(OpenInstallationFile(folder.get(), L"absent.inf"), INVALID_HANDLE_VALUE);
}

TEST(InstallationFile, IsNotLookedForWithoutAFolder) {
    static bool looked;
    looked = false;
    const ImportPatch open(nullptr, "CreateFileW",
                           reinterpret_cast<void*>(+[](LPCWSTR, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD,
                                                       DWORD, HANDLE) WINAPI -> HANDLE {
                               looked = true;
                               return INVALID_HANDLE_VALUE;
                           }));
    EXPECT_EQ(OpenInstallationFile(nullptr, L"media.inf"), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(looked);
}

TEST_F(PrinterDriverName, IsCopiedFromTheDriversRecord) {
    EXPECT_EQ(Name(), u"Orvex Series");
    EXPECT_EQ(driver.calls, 2);
}

TEST_F(PrinterDriverName, IsUnknownWhenTheFillingCallFails) {
    driver.result = FALSE;
    EXPECT_EQ(Name(), u"(none)");
}

TEST_F(PrinterDriverName, IsUnknownWhenTheFillingCallAnswers1797) {
    driver.result = 1797;
    EXPECT_EQ(Name(), u"(none)");
    driver.calls = 0;
    driver.result = 1796;
    EXPECT_EQ(Name(), u"Orvex Series") << "any other result is a success";
}

TEST_F(PrinterDriverName, IsUnknownWhenTheSpoolerNeedsNoRoomForIt) {
    driver.needed = 0;
    EXPECT_EQ(Name(), u"(none)");
    EXPECT_EQ(driver.calls, 1);
}

TEST_F(PrinterDriverName, MayLieOutsideTheRecord) {
    driver.needed = sizeof(DRIVER_INFO_3W);
    EXPECT_EQ(Name(), u"Orvex Series");
    driver.calls = 0;
    driver.needed = sizeof(DRIVER_INFO_3W) - 1;
    EXPECT_EQ(Name(), u"(none)");
}

TEST_F(PrinterDriverName, IsUnknownWhenTheRecordHasNone) {
    driver.name = nullptr;
    EXPECT_EQ(Name(), u"(none)");
}

TEST_F(PrinterDriverName, IsUnknownWhenMemoryIsShort) {
    {
        const AllocationFailure memory(kInfoBytes);
        EXPECT_EQ(Name(), u"(none)");
        EXPECT_EQ(memory.Count(), 1);
    }
    driver.calls = 0;
    const AllocationFailure memory(sizeof u"Orvex Series");
    EXPECT_EQ(Name(), u"(none)");
    EXPECT_EQ(memory.Count(), 1);
}

}  // namespace orvex
