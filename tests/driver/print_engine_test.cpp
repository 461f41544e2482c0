// The print engine's library, which a job loads at its start and unloads at its end, and the current
// directory, which is the installation folder in between.

#include <filesystem>

#include "driver/device_instance.h"
#include "tests/driver/driver_fixture.h"

namespace orvex {

using namespace tools;
namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class PrintEngineBinding : public DriverTest {
  protected:
    PrintEngineBinding() : directoryBefore_(fs::current_path()) {}
    ~PrintEngineBinding() override { EXPECT_EQ(fs::current_path(), directoryBefore_); }

    bool InInstallationFolder() const { return fs::equivalent(fs::current_path(), installation.Path()); }
    bool Start(const std::unique_ptr<Device>& device) { return Session().StartDoc(*device, "title"); }

  private:
    fs::path directoryBefore_;
};

}  // namespace

TEST_F(PrintEngineBinding, BindsTheEngineForItsTimeOnly) {
    const auto device = Enable(Mode());
    EXPECT_FALSE(Session().Engine().Bound());
    ASSERT_TRUE(Start(device));
    EXPECT_TRUE(Session().Engine().Bound());
    EXPECT_TRUE(InInstallationFolder());
    EXPECT_EQ(InstanceOf(*device).flags, PDEV_IN_JOB);
    ASSERT_TRUE(Session().EndDoc(*device));
    EXPECT_FALSE(Session().Engine().Bound());
    EXPECT_FALSE(InInstallationFolder());
    EXPECT_EQ(InstanceOf(*device).flags, 0u);
    EXPECT_THAT(engine.calls, ElementsAre("JobStart 0 0", "JobEnd"));
}

TEST_F(PrintEngineBinding, FailsWithoutAnInstallationFolder) {
    mask = 3;
    const auto device = Enable(Mode());
    Session().Shell().FailFolder(ERROR_ACCESS_DENIED);
    LogLines();
    EXPECT_FALSE(Start(device));
    EXPECT_THAT(LogLines(),
                AllOf(Contains("[Error] Error: could get app path"), Contains("[Trace] Return: FALSE")));
    EXPECT_FALSE(Session().Engine().Bound());
}

TEST_F(PrintEngineBinding, FailsWithoutTheEnginesLibrary) {
    const auto device = Enable(Mode());
    Session().Engine().FailLoading(true);
    LogLines();
    EXPECT_FALSE(Start(device));
    EXPECT_THAT(LogLines(), AllOf(Contains("[Error] Error: could not load hpcrlib.DLL"),
                                  Not(Contains(HasSubstr("could not get")))));  // looks for nothing in it
}

TEST_F(PrintEngineBinding, LoadsTheLibraryFromElsewhereWhenTheInstallationFolderCannotBeEntered) {
    const auto device = Enable(Mode());
    const fs::path before = fs::current_path();
    fs::remove_all(installation.Path());
    LogLines();
    ASSERT_TRUE(Start(device));
    // The profile's path is relative, so the profile is missing where the job now looks for it.
    EXPECT_THAT(LogLines(), AllOf(Contains("[Error] Error: could not open file [profiles\\test.zvp]"),
                                  Not(Contains("[Error] Error: could not load hpcrlib.DLL"))));
    EXPECT_TRUE(Session().Engine().Bound());
    EXPECT_EQ(fs::current_path(), before);
    EXPECT_EQ(engine.Output("page"), 1);
    EXPECT_TRUE(Session().EndDoc(*device));
    EXPECT_EQ(Printer().written, "page");
    EXPECT_EQ(fs::current_path(), before);
}

TEST_F(PrintEngineBinding, FailsWhenNoOtherPlaceHasTheLibraryEither) {
    const auto device = Enable(Mode());
    const fs::path before = fs::current_path();
    fs::remove_all(installation.Path());
    Session().Engine().FailLoading(true);
    LogLines();
    SetLastError(0);
    EXPECT_FALSE(Start(device));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
    EXPECT_THAT(LogLines(), Contains("[Error] Error: could not load hpcrlib.DLL"));
    EXPECT_EQ(fs::current_path(), before);
}

TEST_F(PrintEngineBinding, FailsForEachMissingEntryPoint) {
    for (const PrintEngineExport& missing : kPrintEngineExports) {
        PrintEngine entries = engine.Entries();
        *missing.In(entries) = nullptr;
        Restart(entries);
        const auto device = Enable(Mode());
        LogLines();
        EXPECT_FALSE(Start(device));
        EXPECT_THAT(LogLines(),
                    Contains("[Error] Error: could not get \"" + std::string(missing.name) + "\" address"));
        EXPECT_EQ(Session().Engine().Books().loads, 1u);
        EXPECT_FALSE(Session().Engine().Bound());
        EXPECT_FALSE(InInstallationFolder());
    }
}

TEST_F(PrintEngineBinding, NamesTheFirstMissingEntryPointOnly) {
    Restart(PrintEngine{});
    const auto device = Enable(Mode());
    LogLines();
    EXPECT_FALSE(Start(device));
    EXPECT_THAT(LogLines(), AllOf(Contains("[Error] Error: could not get \"HPCRLIB_JobStart\" address"),
                                  Not(Contains("[Error] Error: could not get \"HPCRLIB_JobEnd\" address"))));
}

namespace {

int directoryChanges = 0;

// Goes nowhere, and says so from the second time on.
BOOL WINAPI ChangeDirectoryOnce(LPCWSTR) {
    if (++directoryChanges == 1) return TRUE;
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

}  // namespace

TEST_F(PrintEngineBinding, LeavesTheErrorOfTheEnginesLibraryThoughTheDirectoryCannotBeRestored) {
    for (const DWORD code : {ERROR_MOD_NOT_FOUND, ERROR_PROC_NOT_FOUND}) {
        Restart(PrintEngine{});
        const auto device = Enable(Mode());
        Session().Engine().FailLoading(code == ERROR_MOD_NOT_FOUND);
        const ImportPatch patch(Session().Driver().Module(), "SetCurrentDirectoryW",
                                reinterpret_cast<void*>(&ChangeDirectoryOnce));
        directoryChanges = 0;
        EXPECT_FALSE(Start(device));
        EXPECT_EQ(GetLastError(), code);
        EXPECT_EQ(directoryChanges, 2);
    }
}

TEST_F(PrintEngineBinding, StaysWhereItIsWhenTheCurrentDirectoryCannotBeTold) {
    const auto device = Enable(Mode());
    ASSERT_TRUE(Start(device));  // leaves a directory to go back to
    ASSERT_TRUE(Session().EndDoc(*device));
    const fs::path before = fs::current_path();
    {
        const ImportPatch patch(Session().Driver().Module(), "GetCurrentDirectoryW",
                                reinterpret_cast<void*>(+[](DWORD, LPWSTR) WINAPI -> DWORD { return 0; }));
        ASSERT_TRUE(Start(device));
        ASSERT_TRUE(Session().EndDoc(*device));
    }
    EXPECT_TRUE(InInstallationFolder());
    fs::current_path(before);
}

}  // namespace orvex
