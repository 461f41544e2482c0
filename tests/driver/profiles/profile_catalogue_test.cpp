#include "driver/profiles/profile_catalogue.h"

#include "tests/driver/profiles/catalogue_fixture.h"
#include "tests/kit/allocation_failure.h"

namespace orvex {

using namespace tools;

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

BOOL WINAPI AppendsNothing(LPWSTR, LPCWSTR) {
    return FALSE;
}

// Called when the search for profiles starts for the second time; the search fails if it returns false.
bool (*beforeSecondSearch)();
int searches;
decltype(&FindFirstFileW) originalSearch;

HANDLE WINAPI SearchTwice(LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
    if (++searches == 2 && !beforeSecondSearch()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return originalSearch(pattern, data);
}

class SecondSearch {
  public:
    explicit SecondSearch(bool (*before)()) {
        beforeSecondSearch = before;
        searches = 0;
        originalSearch = reinterpret_cast<decltype(&FindFirstFileW)>(patch_.Original());
    }

  private:
    ImportPatch patch_{nullptr, "FindFirstFileW", reinterpret_cast<void*>(&SearchTwice)};
};

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

    ScanResult Scan(HeapArray<WCHAR>* files) {
        const HeapArray<WCHAR> folder = GetInstallationFolder();
        const FileWatch watch;
        const ScanResult result = QRV_ScanDirectoryWithPattern(folder.get(), L"*.txt", files);
        EXPECT_EQ(watch.Open(), 0u);
        return result;
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
    const ImportPatch patch(nullptr, "SHGetSpecialFolderPathW", reinterpret_cast<void*>(&FindNoFolder));
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

TEST_F(ProfileCatalogue, FailsWhenTheSecondSearchCanNotBeOpened) {
    WriteProfile("film.zvp", NameTag("Film"));
    const SecondSearch fails(+[] { return false; });
    LogCapture log;
    HeapArray<WCHAR> files, names;
    EXPECT_EQ(ListProfiles(nullptr, &files, &names), 0);
    EXPECT_THAT(ListedTexts(files.get()), IsEmpty());
    EXPECT_EQ(names, nullptr);
    const std::vector<std::string> lines = log.TakeLines();
    EXPECT_EQ(lines[1], "[Trace] Return: 0x2");
    EXPECT_EQ(lines[2], "[Trace] </QRV_ScanDirectoryWithPattern>");
}

TEST_F(ProfileCatalogue, LeavesOutNamesThatAppearBetweenTheSearchesAndDoNotFit) {
    WriteProfile("film.zvp", NameTag("Film"));
    static std::filesystem::path folder;
    folder = installation_.Folder() / "profiles";
    const SecondSearch grows(+[] {
        WriteBytes(folder / "a new and longer one.zvp", "");
        WriteBytes(folder / "z new and longer one.zvp", "");
        return true;
    });
    HeapArray<WCHAR> files;
    EXPECT_EQ(Scan(&files), kScanned);
    EXPECT_THAT(ListedTexts(files.get()), ElementsAre(u"film.zvp"));
}

TEST_F(ProfileCatalogue, LeavesOutANameThatIsACharacterTooLong) {
    WriteProfile("film.zvp", NameTag("Film"));
    static std::filesystem::path film;
    film = installation_.Folder() / "profiles" / "film.zvp";
    const SecondSearch renamed(+[] {
        std::filesystem::rename(film, film.parent_path() / "films.zvp");
        return true;
    });
    HeapArray<WCHAR> files;
    EXPECT_EQ(Scan(&files), kScanned);
    EXPECT_THAT(ListedTexts(files.get()), IsEmpty());
}

TEST_F(ProfileCatalogue, ListsNoMoreNamesThanFit) {
    for (const char* file : {"b.zvp", "c.zvp", "d.zvp", "e.zvp"}) WriteProfile(file, NameTag("Name"));
    static std::filesystem::path folder;
    folder = installation_.Folder() / "profiles";
    const SecondSearch grows(+[] {
        for (const char* file : {"a.zvp", "f.zvp"}) WriteBytes(folder / file, "");
        return true;
    });
    HeapArray<WCHAR> files;
    EXPECT_EQ(Scan(&files), kScanned);
    EXPECT_EQ(ListedTexts(files.get()).size(), 4u);
}

TEST_F(ProfileCatalogue, ListsTheFilesThatAreLeftAtTheSecondSearch) {
    WriteProfile("film.zvp", NameTag("Film"));
    WriteProfile("paper.zvp", NameTag("Paper"));
    static std::filesystem::path gone;
    gone = installation_.Folder() / "profiles" / "paper.zvp";
    const SecondSearch shrinks(+[] { return std::filesystem::remove(gone); });
    HeapArray<WCHAR> files;
    EXPECT_EQ(Scan(&files), kScanned);
    EXPECT_THAT(ListedTexts(files.get()), ElementsAre(u"film.zvp"));
}

TEST_F(ProfileCatalogue, LeavesTheListAloneWhenNothingIsFound) {
    HeapArray<WCHAR> files = AllocateZeroedArray<WCHAR>(4);
    const WCHAR* const before = files.get();
    EXPECT_EQ(Scan(&files), kScanned);
    EXPECT_EQ(files.get(), before);
}

TEST_F(ProfileCatalogue, FailsWhenThePathIsTooLong) {
    LogCapture log;
    HeapArray<WCHAR> files;
    HeapArray<WCHAR> folder = AllocateArray<WCHAR>(301);
    std::fill_n(folder.get(), 300, L'x');
    for (const size_t length : {300u, 260u, 259u, 255u, 247u}) {
        folder[length] = 0;
        EXPECT_EQ(QRV_ScanDirectoryWithPattern(folder.get(), L"", &files), kNoSearchPath) << length;
        EXPECT_THAT(log.TakeLines(),
                    ElementsAre("[Trace] <QRV_ScanDirectoryWithPattern>", "[Trace] Return: 0x1",
                                "[Trace] </QRV_ScanDirectoryWithPattern>"));
    }
    const ImportPatch patch(nullptr, "PathAppendW", reinterpret_cast<void*>(&AppendsNothing));
    folder[3] = 0;
    EXPECT_EQ(QRV_ScanDirectoryWithPattern(folder.get(), L"", &files), kNoSearchPath);
    EXPECT_EQ(files, nullptr);
}

TEST_F(ProfileCatalogue, FailsWhenOutOfMemory) {
    WriteProfile("film.zvp", NameTag("Film"));
    HeapArray<WCHAR> files;
    const AllocationFailure failure(2 * (8 + 1 + 1));
    EXPECT_EQ(Scan(&files), kSearchFailed);
    EXPECT_EQ(files, nullptr);
    EXPECT_EQ(failure.Count(), 1);
}

namespace {

class DisplayName : public CatalogueFixture {
  protected:
    // Returns the display name of a profile.
    std::u16string NameOf(const WCHAR* file) {
        const HeapArray<WCHAR> folder = GetInstallationFolder();
        HeapArray<WCHAR> names;
        size_t bytes = 0;
        EXPECT_EQ(GetQRVProfileName(file, &names, &bytes, folder.get(), L"[DEU]"), 1);
        const std::vector<std::u16string> texts = ListedTexts(names.get());
        EXPECT_EQ(texts.size(), 1u);
        EXPECT_EQ(bytes, 2 * (texts.front().size() + 1));
        return texts.front();
    }
};

}  // namespace

TEST_F(DisplayName, KeepsTheListWhenOutOfMemory) {
    WriteProfile("film.zvp", NameTag("Film"));
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    HeapArray<WCHAR> names;
    size_t bytes = 0;
    EXPECT_EQ(GetQRVProfileName(L"film.zvp", &names, &bytes, folder.get(), L"[DEU]"), 1);
    const AllocationFailure failure(2 * (5 + 5 + 1));
    EXPECT_EQ(GetQRVProfileName(L"film.zvp", &names, &bytes, folder.get(), L"[DEU]"), 0);
    EXPECT_EQ(failure.Count(), 1);
    EXPECT_EQ(bytes, 10u);
    EXPECT_THAT(ListedTexts(names.get()), ElementsAre(u"Film"));
}

TEST_F(DisplayName, IsAppendedToTheList) {
    WriteProfile("film.zvp", NameTag("Film"));
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    HeapArray<WCHAR> names;
    size_t bytes = 0;
    GetQRVProfileName(L"film.zvp", &names, &bytes, folder.get(), L"[DEU]");
    EXPECT_EQ(bytes, 2u * 5);
    GetQRVProfileName(L"none.zvp", &names, &bytes, folder.get(), L"[DEU]");
    EXPECT_EQ(bytes, 2u * (5 + 9));
    EXPECT_THAT(ListedTexts(names.get()), ElementsAre(u"Film", u"none.zvp"));
}

TEST_F(DisplayName, CanBeASingleLetter) {
    WriteNames(u"[DEU]\r\nfilm.zvp=F\r\n");
    EXPECT_EQ(NameOf(L"film.zvp"), u"F");
}

TEST_F(DisplayName, IsTheFilesNameWhenTheProfileIsInvalid) {
    installation_.Write("profiles/empty.zvp", "");
    installation_.Write("profiles/other.zvp", "PK\3\4 something else");
    std::string wrongSize = ProfileBytes(5, TagArea(NameTag("Name")), "") + "!";
    installation_.Write("profiles/size.zvp", wrongSize);
    EXPECT_EQ(NameOf(L"empty.zvp"), u"empty.zvp");
    EXPECT_EQ(NameOf(L"other.zvp"), u"other.zvp");
    EXPECT_EQ(NameOf(L"size.zvp"), u"size.zvp");
    EXPECT_EQ(NameOf(L"missing.zvp"), u"missing.zvp");
}

TEST_F(DisplayName, LogsProblemsOfAProfileAsInformation) {
    installation_.Write("profiles/short.zvp", "ZVC");
    installation_.Write("profiles/other.zvp", "abcdefghijklmnop");
    LogCapture log(1);
    NameOf(L"none.zvp");
    NameOf(L"short.zvp");
    NameOf(L"other.zvp");
    const std::string none = ProfilePath("none.zvp"), cut = ProfilePath("short.zvp"),
                      other = ProfilePath("other.zvp");
    EXPECT_THAT(log.TakeLines(),
                ElementsAre("[Error] GetQRVProfileName [none.zvp] [" + none + "]",
                            "[Info]  Error: could not open file [" + none + "]",
                            "[Error] GetQRVProfileName [short.zvp] [" + cut + "]",
                            "[Info]  error reading file " + cut + " 3",
                            "[Error] GetQRVProfileName [other.zvp] [" + other + "]",
                            "[Info]  invalid profile file " + other + " abc 1751606885<>16"));
}

TEST_F(DisplayName, IsAHeaderNameOfUpTo99Bytes) {
    WriteProfile("long.zvp", NameTag(std::string(99, 'n')));
    EXPECT_EQ(NameOf(L"long.zvp"), std::u16string(99, u'n'));
    WriteProfile("long.zvp", NameTag(std::string(100, 'n')));
    LogCapture log;
    EXPECT_EQ(NameOf(L"long.zvp"), u"long.zvp");
    EXPECT_THAT(log.TakeLines(),
                ElementsAre("[Error] GetQRVProfileName [long.zvp] [" + ProfilePath("long.zvp") + "]",
                            "[Info]  Profile version:5", "[Info]  not enough space to store profile name"));
    WriteNames(u"[DEU]\r\nlong.zvp=Kurz\r\n");
    EXPECT_EQ(NameOf(L"long.zvp"), u"Kurz");
}

TEST_F(DisplayName, IsTheLastNameBeforeABrokenTag) {
    WriteProfile("a.zvp", NameTag("First") + Tag(9, "") + NameTag("Second"));
    WriteProfile("b.zvp", Tag(2, "123") + NameTag("Name"));
    WriteProfile("c.zvp", NameTag("First") + ResolutionTag(1, 2) + NameTag("Second"));
    EXPECT_EQ(NameOf(L"a.zvp"), u"First");
    EXPECT_EQ(NameOf(L"b.zvp"), u"b.zvp");
    EXPECT_EQ(NameOf(L"c.zvp"), u"Second");
}

TEST_F(DisplayName, IsTheFilesNameWhenTheHeadersIsEmpty) {
    WriteProfile("a.zvp", NameTag(""));
    EXPECT_EQ(NameOf(L"a.zvp"), u"a.zvp");
}

TEST_F(DisplayName, IsTheFirstPartOfANameThatTheFileCutsShort) {
    installation_.Write("profiles/cut.zvp", ProfileBytes(5, TagArea(std::string("\1\x0A\0Half", 7), 16), ""));
    EXPECT_EQ(NameOf(L"cut.zvp"), u"Half");
}

TEST_F(DisplayName, IsReadFromAPathWhosePartsAreCutAt511Bytes) {
    const std::u16string folder(512, u'd'), file(512, u'f');
    LogCapture log(1);
    HeapArray<WCHAR> names;
    size_t bytes = 0;
    EXPECT_EQ(GetQRVProfileName(AsWchar(file), &names, &bytes, AsWchar(folder), L"[DEU]"), 1);
    EXPECT_EQ(log.TakeLines()[0], "[Error] GetQRVProfileName [" + std::string(512, 'f') + "] [" +
                                      std::string(511, 'd') + "\\profiles\\" + std::string(511, 'f') + "]");
}

}  // namespace orvex
