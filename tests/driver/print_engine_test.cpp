// The print engine's library, which a job loads at its start and unloads at its end, and the current
// directory, which is the installation folder in between.

#include "driver/device_instance.h"
#include "tests/driver/print_job_fixture.h"

namespace orvex {

using namespace tools;
namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class PrintEngineBinding : public PrintJobTest {
  protected:
    bool InInstallationFolder() const { return fs::equivalent(fs::current_path(), installation.Path()); }
};

}  // namespace

TEST_F(PrintEngineBinding, LastsForTheJobOnly) {
    const auto device = Enable(Mode());
    EXPECT_FALSE(Session().Engine().Bound());
    ASSERT_TRUE(Start(*device));
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
    EXPECT_FALSE(Start(*device));
    EXPECT_THAT(LogLines(),
                AllOf(Contains("[Error] Error: could get app path"), Contains("[Trace] Return: FALSE")));
    EXPECT_FALSE(Session().Engine().Bound());
}

TEST_F(PrintEngineBinding, FailsWithoutTheEnginesLibrary) {
    const auto device = Enable(Mode());
    Session().Engine().FailLoading(true);
    LogLines();
    EXPECT_FALSE(Start(*device));
    EXPECT_THAT(LogLines(), AllOf(Contains("[Error] Error: could not load hpcrlib.DLL"),
                                  Not(Contains(HasSubstr("could not get")))));  // an entry point
}

TEST_F(PrintEngineBinding, LoadsTheLibraryFromElsewhereWhenTheInstallationFolderCannotBeEntered) {
    const auto device = Enable(Mode());
    const fs::path before = fs::current_path();
    fs::remove_all(installation.Path());
    LogLines();
    ASSERT_TRUE(Start(*device));
    // The profile's path is relative, so the job looks for the profile in the folder where it is not.
    EXPECT_THAT(LogLines(), AllOf(Contains("[Error] Error: could not open file [profiles\\test.zvp]"),
                                  Not(Contains("[Error] Error: could not load hpcrlib.DLL"))));
    EXPECT_TRUE(Session().Engine().Bound());
    EXPECT_EQ(fs::current_path(), before);
    EXPECT_EQ(engine.Output("page"), 1);
    EXPECT_TRUE(Session().EndDoc(*device));
    EXPECT_EQ(Printer().written, "page");
    EXPECT_EQ(fs::current_path(), before);
}

TEST_F(PrintEngineBinding, FailsWhenTheLibraryIsNowhereElseEither) {
    const auto device = Enable(Mode());
    const fs::path before = fs::current_path();
    fs::remove_all(installation.Path());
    Session().Engine().FailLoading(true);
    LogLines();
    SetLastError(0);
    EXPECT_FALSE(Start(*device));
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
        EXPECT_FALSE(Start(*device));
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
    EXPECT_FALSE(Start(*device));
    EXPECT_THAT(LogLines(), AllOf(Contains("[Error] Error: could not get \"HPCRLIB_JobStart\" address"),
                                  Not(Contains("[Error] Error: could not get \"HPCRLIB_JobEnd\" address"))));
}

namespace {

int directoryChanges = 0;

// Pretends to change the directory once, and fails from the second call on.
BOOL WINAPI ChangeDirectoryOnce(LPCWSTR) {
    if (++directoryChanges == 1) return TRUE;
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

}  // namespace

TEST_F(PrintEngineBinding, LeavesTheLibrarysErrorEvenIfTheDirectoryCannotBeRestored) {
    for (const DWORD code : {ERROR_MOD_NOT_FOUND, ERROR_PROC_NOT_FOUND}) {
        Restart(PrintEngine{});
        const auto device = Enable(Mode());
        Session().Engine().FailLoading(code == ERROR_MOD_NOT_FOUND);
        const ImportPatch patch(Session().Driver().Module(), "SetCurrentDirectoryW",
                                reinterpret_cast<void*>(&ChangeDirectoryOnce));
        directoryChanges = 0;
        EXPECT_FALSE(Start(*device));
        EXPECT_EQ(GetLastError(), code);
        EXPECT_EQ(directoryChanges, 2);
    }
}

TEST_F(PrintEngineBinding, LeavesTheDirectoryIfItDidNotLearnTheOneBefore) {
    const auto device = Enable(Mode());
    ASSERT_TRUE(Start(*device));  // remembers a directory
    ASSERT_TRUE(Session().EndDoc(*device));
    const fs::path before = fs::current_path();
    {
        const ImportPatch patch(Session().Driver().Module(), "GetCurrentDirectoryW",
                                reinterpret_cast<void*>(+[](DWORD, LPWSTR) WINAPI -> DWORD { return 0; }));
        ASSERT_TRUE(Start(*device));
        ASSERT_TRUE(Session().EndDoc(*device));
    }
    EXPECT_TRUE(InInstallationFolder());
    fs::current_path(before);
}

}  // namespace orvex
