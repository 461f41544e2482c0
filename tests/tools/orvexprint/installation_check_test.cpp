#include "tools/orvexprint/installation_check.h"

#include <nlohmann/json.hpp>

#include "tests/kit/installation_fixture.h"
#include "tests/tools/orvexprint/orvexprint_fixture.h"
#include "tools/common/whole_file.h"
#include "tools/orvexprint/folder_rights.h"

namespace orvex::tools::print {
namespace {

using testing::AllOf;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

class InstallationCheckTest : public OrvexPrintTest {
  protected:
    int Check(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), "--check");
        return Run(arguments);
    }

    // Checks a settings file of this text; the finding must be the only one, and not good.
    Finding SettingsFinding(const std::string& text) {
        return Only(CheckSettings(Write("settings.inf", text)));
    }
    Finding MediaFinding(const std::string& text) { return Only(CheckMedia(Write("media.inf", text))); }

    std::filesystem::path Write(const char* name, const std::string& text) {
        scratch.Write(name, text);
        return Path(name);
    }

    static Finding Only(const std::vector<Finding>& findings) {
        EXPECT_EQ(findings.size(), 1u);
        return findings.empty() ? Finding() : findings[0];
    }
};

TEST_F(InstallationCheckTest, FindsASoundInstallationGood) {
    std::filesystem::copy(ProgramFolder() / kInstallationFolder, Path("sound"),
                          std::filesystem::copy_options::recursive);
    ASSERT_EQ(RunPlain({"--check", "--install", Text("sound")}), kExitPrinted) << out << error;
    EXPECT_THAT(out, HasSubstr("with every entry point\n"));
    EXPECT_THAT(out, HasSubstr("every setting is known and can be read\n"));
    EXPECT_THAT(out, HasSubstr("neutral.zvp: \"Neutral\"\n"));
    EXPECT_THAT(out, HasSubstr("37 labels for a printer that has none\n"));
    EXPECT_THAT(out, Not(HasSubstr("!!")));
}

TEST_F(InstallationCheckTest, NamesWhatIsBrokenAndFails) {
    scratch.Write("install/profiles/cut.zvp", "short");
    EXPECT_EQ(Check(), kExitFailed);
    EXPECT_THAT(out, HasSubstr("!! " + Text("install/profiles/cut.zvp")));
    EXPECT_THAT(out, HasSubstr("it is damaged, or no profile; install it again"));
}

TEST_F(InstallationCheckTest, NamesAnInstallationThatIsNotThere) {
    EXPECT_EQ(RunPlain({"--check", "--install", Text("none")}), kExitFailed);
    EXPECT_THAT(out, HasSubstr("!! " + Text("none") + ": the installation folder is not there"));
}

TEST_F(InstallationCheckTest, NamesALibraryThatCantBeLoaded) {
    scratch.Write("install/hpcrlib.dll", "no library");
    EXPECT_EQ(Check(), kExitFailed);
    EXPECT_THAT(out, HasSubstr("hpcrlib.dll: the print engine's library can't be loaded"));
}

TEST_F(InstallationCheckTest, NamesEntryPointsThatAreMissing) {
#ifdef _WIN32
    const std::filesystem::path other = "C:\\windows\\system32\\version.dll";
#else
    const std::filesystem::path other = "/lib/x86_64-linux-gnu/libz.so.1";
#endif
    EXPECT_EQ(Check({"--engine", Utf8FromPath(other)}), kExitFailed);
    EXPECT_THAT(out, HasSubstr("lacks HPCRLIB_JobStart, HPCRLIB_JobEnd"));
}

TEST_F(InstallationCheckTest, WritesJson) {
    EXPECT_EQ(Check({"--json"}), kExitPrinted);
    const auto json = nlohmann::json::parse(out);
    ASSERT_FALSE(json.empty());
    EXPECT_EQ(json[0]["verdict"], "good");
    EXPECT_THAT(json[0]["text"].get<std::string>(), HasSubstr("the driver, version "));
}

TEST_F(InstallationCheckTest, RefusesAPage) {
    EXPECT_EQ(Check({"page.png"}), kExitUsage);
    EXPECT_THAT(error, HasSubstr("--check --help"));
}

TEST_F(InstallationCheckTest, NamesUnknownSettingsWithTheNearestOne) {
    const Finding finding = SettingsFinding("[UI]\r\nShow_Chuncked=1\r\n");
    EXPECT_THAT(finding.thing, HasSubstr("settings.inf, line 2"));
    EXPECT_EQ(finding.text, "the driver knows no Show_Chuncked in [UI]");
    EXPECT_THAT(finding.advice, HasSubstr("the nearest is \"Show_Chunked\""));
}

TEST_F(InstallationCheckTest, NamesValuesThatTheDriverCantRead) {
    EXPECT_THAT(SettingsFinding("[Driver]\nAdd_Thumb=yes\n"),
                AllOf(Field(&Finding::text, "Add_Thumb: the driver can't read \"yes\""),
                      Field(&Finding::advice, "give 0 or 1")));
    EXPECT_EQ(SettingsFinding("[Color]\ncyan_scale=much\n").advice, "give a number");
    EXPECT_EQ(SettingsFinding("[UI]\nLanguage=English\n").advice,
              "give one of ENG, ENU, DEU, FRA, ES, CH, JPN");
}

TEST_F(InstallationCheckTest, NamesLinesThatAreNoSettings) {
    EXPECT_EQ(SettingsFinding("[Paper]\nA=1\n").text, "the driver knows no section [Paper]");
    EXPECT_EQ(SettingsFinding("[UI]\n[Driver]\n[UI]\n").text,
              "[UI] is there twice; the driver reads the first one alone");
    EXPECT_EQ(SettingsFinding("[UI]\nfree text\n").text, "\"free text\" is no setting");
    EXPECT_EQ(SettingsFinding("Language=ENG\n").text, "Language comes before the first section");
    EXPECT_THAT(SettingsFinding("[UI]\nDefault_Media=" + std::string(300, 'x') + "\n").text,
                HasSubstr("has 314 bytes"));
}

TEST_F(InstallationCheckTest, KnowsEverySettingThatIsInstalled) {
    std::string text = ReadWholeText(ProgramFolder() / kInstallationFolder / "settings.inf");
    // The settings that are off are in the file as comments without a blank.
    for (size_t at = 0; (at = text.find("\n;", at)) != std::string::npos; ++at) {
        if (at + 2 < text.size() && text[at + 2] != ' ' && text[at + 2] != '\n' && text[at + 2] != '\r')
            text.erase(at + 1, 1);
    }
    ASSERT_THAT(text, HasSubstr("\nmagenta_scale="));
    EXPECT_EQ(Only(CheckSettings(Write("all.inf", text))).verdict, Verdict::kGood);
}

TEST_F(InstallationCheckTest, NamesTheLineThatEndsTheImport) {
    const Finding finding = MediaFinding(
        "; labels\n[Media]\n\"A\", \"1\", \"2\", 1\n; more\n\"B\", \"1\", \"2\", 1\n\"C\", \"1\", \"2\", "
        "1\n");
    EXPECT_THAT(finding.thing, HasSubstr("media.inf, line 4"));
    EXPECT_EQ(finding.text, "\"; more\" ends the import; 2 labels are skipped after it");
    EXPECT_EQ(MediaFinding("\"A\", \"1\", \"2\", 1\n").text, "has no line [Media] in its first 4,095 bytes");
    EXPECT_THAT(MediaFinding("[Media]\n\"A\", \"1\", \"2\", 1\n" + std::string(5000, ' ')).text,
                HasSubstr("the driver reads the first 4,095"));
    EXPECT_EQ(MediaFinding("[Media]\n\"A\", \"1\", \"2\", 1\n").verdict, Verdict::kGood);
}

TEST_F(InstallationCheckTest, TellsWhoMayWriteIntoAFolder) {
    std::filesystem::create_directory(Path("open"));
    std::filesystem::permissions(Path("open"), std::filesystem::perms::all);
    EXPECT_THAT(WritersOf(Path("open")), testing::Not(IsEmpty()));
#ifndef _WIN32
    // Wine's access control lists are made of the same permissions, but std::filesystem can't set them there.
    EXPECT_THAT(WritersOf(Path("open")), testing::Contains("everybody"));
    std::filesystem::permissions(Path("open"), std::filesystem::perms::owner_all);
    EXPECT_EQ(WritersOf(Path("open")).size(), 1u);
    EXPECT_FALSE(IsEverybody(WritersOf(Path("open"))[0]));
    EXPECT_TRUE(IsEverybody("everybody"));
#else
    EXPECT_TRUE(IsEverybody("Everyone (S-1-1-0)"));
    EXPECT_FALSE(IsEverybody("root (S-1-5-21-0-0-0-1000)"));
#endif
    EXPECT_THAT(WritersOf(Path("none")), IsEmpty());
}

}  // namespace
}  // namespace orvex::tools::print
