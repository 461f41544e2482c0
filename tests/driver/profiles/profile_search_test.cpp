#include "driver/profiles/profile_search.h"

#include "driver/profiles/profile_catalogue.h"
#include "tests/driver/profiles/catalogue_fixture.h"
#include "tests/kit/allocation_failure.h"

namespace orvex {

using testing::ElementsAre;
using testing::IsEmpty;

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

class ProfileSearch : public CatalogueFixture {
  protected:
    ScanResult Scan(HeapArray<WCHAR>* files) {
        const HeapArray<WCHAR> folder = GetInstallationFolder();
        const FileWatch watch;
        const ScanResult result = QRV_ScanDirectoryWithPattern(folder.get(), L"*.txt", files);
        EXPECT_EQ(watch.Open(), 0u);
        return result;
    }
};

}  // namespace

TEST_F(ProfileSearch, FailsWhenTheSecondSearchCanNotBeOpened) {
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

TEST_F(ProfileSearch, LeavesOutNamesThatAppearBetweenTheSearchesAndDoNotFit) {
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

TEST_F(ProfileSearch, LeavesOutANameThatIsACharacterTooLong) {
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

TEST_F(ProfileSearch, ListsNoMoreNamesThanFit) {
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

TEST_F(ProfileSearch, ListsTheFilesThatAreLeftAtTheSecondSearch) {
    WriteProfile("film.zvp", NameTag("Film"));
    WriteProfile("paper.zvp", NameTag("Paper"));
    static std::filesystem::path gone;
    gone = installation_.Folder() / "profiles" / "paper.zvp";
    const SecondSearch shrinks(+[] { return std::filesystem::remove(gone); });
    HeapArray<WCHAR> files;
    EXPECT_EQ(Scan(&files), kScanned);
    EXPECT_THAT(ListedTexts(files.get()), ElementsAre(u"film.zvp"));
}

TEST_F(ProfileSearch, LeavesTheListAloneWhenNothingIsFound) {
    HeapArray<WCHAR> files = AllocateZeroedArray<WCHAR>(4);
    const WCHAR* const before = files.get();
    EXPECT_EQ(Scan(&files), kScanned);
    EXPECT_EQ(files.get(), before);
}

TEST_F(ProfileSearch, FailsWhenThePathIsTooLong) {
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

TEST_F(ProfileSearch, FailsWhenOutOfMemory) {
    WriteProfile("film.zvp", NameTag("Film"));
    HeapArray<WCHAR> files;
    const AllocationFailure failure(2 * (8 + 1 + 1));
    EXPECT_EQ(Scan(&files), kSearchFailed);
    EXPECT_EQ(files, nullptr);
    EXPECT_EQ(failure.Count(), 1);
}

}  // namespace orvex
