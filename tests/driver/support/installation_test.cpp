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

// The answers of the replaced functions; one test runs at a time.
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

TEST_F(InstallationFolder, RunningOutOfMemoryIs0x20010001) {
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

}  // namespace orvex
