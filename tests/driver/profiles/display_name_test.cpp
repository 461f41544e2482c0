#include "driver/profiles/profile_catalogue.h"

#include "tests/driver/profiles/catalogue_fixture.h"
#include "tests/kit/allocation_failure.h"

namespace orvex {

using testing::ElementsAre;

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
