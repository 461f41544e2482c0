#include "tools/host/shell_answers.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "driver/support/handle.h"
#include "platform/shell.h"
#include "tests/kit/scratch_folder.h"
#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace {

class ShellAnswersTest : public testing::Test {
  protected:
    ShellAnswersTest() { shell_.Attach(nullptr); }

    const ScratchFolder scratch_;
    ShellAnswers shell_{scratch_.Path()};
};

// Asks for the installation folder like the driver; returns an empty text if an answer fails.
std::string AskForFolder() {
    WCHAR path[MAX_PATH];
    if (!SHGetSpecialFolderPathW(nullptr, path, CSIDL_COMMON_APPDATA, FALSE)) return {};
    if (!PathAppendW(path, L"Quorvane") || !PathAppendW(path, L"Orvex Series")) return {};
    return Utf8(path);
}

}  // namespace

TEST_F(ShellAnswersTest, AcceptAnyFolderAsTheInstallation) {
    EXPECT_EQ(AskForFolder(), Utf8(WindowsPath(scratch_.Path())));
}

TEST(ShellAnswers, LeavePathsBelowTheFolderAlone) {
    const ScratchFolder scratch;
    ShellAnswers shell(scratch.Path() / "Etiketten \xC3\xA4\xC3\xB6");
    shell.Attach(nullptr);
    std::u16string path = Wide(AskForFolder());
    const std::u16string folder = path;
    path.resize(MAX_PATH);
    ASSERT_TRUE(PathAppendW(AsWchar(path), L"profiles\\*.zvp"));
    EXPECT_EQ(Utf8(AsWchar(path)), Utf8(folder) + "\\profiles\\*.zvp");
    ASSERT_TRUE(PathAppendW(AsWchar(path), L"Quorvane"));
    EXPECT_EQ(Utf8(AsWchar(path)), Utf8(folder) + "\\profiles\\*.zvp\\Quorvane");
}

TEST(ShellAnswers, DropATrailingSeparator) {
    const ScratchFolder scratch;
    ShellAnswers shell(scratch.Path() / "install" / "");
    shell.Attach(nullptr);
    EXPECT_EQ(AskForFolder(), Utf8(WindowsPath(scratch.Path() / "install")));
}

TEST_F(ShellAnswersTest, LendAFileUnderAnotherName) {
    constexpr char kName[] = "profiles\\lent.zvp";
    const auto open = [](const char* name) {
        const OwnedHandle file(CreateFileA(name, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        char bytes[10] = {};
        return std::string(bytes, file ? file.Read(bytes, sizeof bytes) : 0);
    };
    EXPECT_EQ(open(kName), "");
    shell_.LendFile(kName, scratch_.Write(PathFromUtf8("first \xC3\xA4.zvp"), "first"));
    EXPECT_EQ(open(kName), "first");
    shell_.LendFile(kName, scratch_.Write("second.zvp", "second"));
    EXPECT_EQ(open(kName), "second");
    EXPECT_EQ(open("profiles\\other.zvp"), "");
}

TEST_F(ShellAnswersTest, FailOnRequest) {
    shell_.FailFolder(ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(AskForFolder(), "");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    shell_.FailFolder(0);
    EXPECT_NE(AskForFolder(), "");
}

TEST_F(ShellAnswersTest, NameTheChosenLanguage) {
    shell_.SetLanguage("DEU");
    WCHAR language[10] = {};
    EXPECT_EQ(GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, language, 10), 4);
    EXPECT_EQ(Utf8(language), "DEU");
    EXPECT_EQ(GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, language, 0), 4);
    EXPECT_EQ(GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, language, 3), 0);
    shell_.SetLanguage(std::nullopt);
    EXPECT_GT(GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, language, 10), 0);
}

TEST(ShellAnswers, RefuseAFolderThatTheDriverHasNoRoomFor) {
    EXPECT_THROW(ShellAnswers(std::filesystem::path(std::string(230, 'x'))), std::runtime_error);
}

}  // namespace orvex::tools
