#include "driver/profiles/profile_catalogue.h"

#include "tests/driver/profiles/catalogue_fixture.h"

namespace orvex {

using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

BOOL WINAPI KnowsNoFolder(HWND, LPWSTR, int, BOOL) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return FALSE;
}

class ProfileCatalogue : public CatalogueFixture {
  protected:
    // Returns the profiles as pairs of file name and display name.
    std::vector<std::pair<std::u16string, std::u16string>> List() {
        HeapArray<WCHAR> files, names;
        const FileWatch watch;
        EXPECT_EQ(ListProfiles(nullptr, &files, &names), 1);
        EXPECT_EQ(watch.Open(), 0u);
        const auto fileTexts = ListedTexts(files.get()), nameTexts = ListedTexts(names.get());
        EXPECT_EQ(fileTexts.size(), nameTexts.size());
        std::vector<std::pair<std::u16string, std::u16string>> pairs;
        for (size_t i = 0; i < std::min(fileTexts.size(), nameTexts.size()); ++i) {
            pairs.emplace_back(fileTexts[i], nameTexts[i]);
        }
        return pairs;
    }
};

}  // namespace

TEST_F(ProfileCatalogue, ListsFilesAndDisplayNamesInTheSameOrder) {
    WriteProfile("coated.zvp", NameTag("Coated paper"));
    WriteProfile("film.zvp", NameTag("Film"));
    WriteProfile("plain.zvp", ResolutionTag(1, 2));
    installation_.Write("profiles/readme.txt", "no profile");
    WriteNames(u"[ENU]\r\nfilm.zvp=Film, clear\r\n[DEU]\r\nfilm.zvp=Folie\r\n");
    EXPECT_THAT(List(), UnorderedElementsAre(Pair(u"coated.zvp", u"Coated paper"),
                                             Pair(u"film.zvp", u"Folie"), Pair(u"plain.zvp", u"plain.zvp")));
}

TEST_F(ProfileCatalogue, OfAMissingOrEmptyFolderIsEmptyAndSucceeds) {
    HeapArray<WCHAR> files = AllocateZeroedArray<WCHAR>(1), names = AllocateZeroedArray<WCHAR>(1);
    EXPECT_EQ(ListProfiles(nullptr, &files, &names), 1);
    EXPECT_EQ(files, nullptr);
    EXPECT_EQ(names, nullptr);
    std::filesystem::create_directory(installation_.Folder() / "profiles");
    EXPECT_EQ(ListProfiles(nullptr, &files, &names), 1);
    EXPECT_EQ(files, nullptr);
    EXPECT_EQ(names, nullptr);
}

TEST_F(ProfileCatalogue, WithoutAnInstallationFolderFails) {
    const ImportPatch patch(nullptr, "SHGetSpecialFolderPathW", reinterpret_cast<void*>(&KnowsNoFolder));
    LogCapture log;
    HeapArray<WCHAR> files, names;
    EXPECT_EQ(ListProfiles(nullptr, &files, &names), 0);
    EXPECT_EQ(files, nullptr);
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] Error: could get app path"));
}

TEST_F(ProfileCatalogue, LogsItsWork) {
    WriteProfile("film.zvp", NameTag("Film") + ResolutionTag(1, 2));
    WriteNames(u"[DEU]\r\nfilm.zvp=Folie\r\n");
    LogCapture log;
    List();
    EXPECT_THAT(log.TakeLines(),
                ElementsAre("[Trace] <QRV_ScanDirectoryWithPattern>", "[Trace] findfile: film.zvp",
                            "[Trace] Return: 0x0", "[Trace] </QRV_ScanDirectoryWithPattern>",
                            "[Trace] <QRV_Get_Locale>", "[Info]  settings lang:DEU\r", "",
                            "[Trace] </QRV_Get_Locale>",
                            "[Error] GetQRVProfileName [film.zvp] [" + ProfilePath("film.zvp") + "]",
                            "[Info]  Profile version:5", "[Info]  Profile name:Film",
                            "[Error] QRV_GetProfileFieldW [film.zvp] [Folie]"));
}

TEST_F(ProfileCatalogue, CutsFileNamesAt99Bytes) {
    const std::string file = std::string(150, 'f') + ".zvp";
    WriteProfile(file, ResolutionTag(1, 2));
    EXPECT_THAT(List(), ElementsAre(Pair(std::u16string(150, u'f') + u".zvp", std::u16string(99, u'f'))));
}

}  // namespace orvex
