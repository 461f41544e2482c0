#include "driver/profiles/profile_catalogue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "tests/driver/profiles/file_watch.h"
#include "tests/driver/profiles/name_texts.h"
#include "tests/kit/installation_fixture.h"
#include "tests/kit/log_capture.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;

namespace {

class ProfileNames : public testing::Test {
  protected:
    void Write(std::u16string_view text) { installation_.Write("profilenames.inf", WideFile(text)); }

    // Returns the name of "a.zvp" in the section "[DEU]" and verifies its length.
    std::u16string Look(size_t capacity = 512) {
        WCHAR name[512];
        std::fill_n(name, 512, L'#');
        const FileWatch watch;
        const size_t length = QRV_GetProfileFieldW(L"[DEU]", L"a.zvp", name, capacity);
        EXPECT_EQ(watch.Open(), 0u);
        const std::u16string text(AsView(name));
        EXPECT_EQ(length, text.size());
        return text;
    }

    InstallationFixture installation_;
};

}  // namespace

TEST_F(ProfileNames, AreEmptyWithoutAFileAndInOneWithoutText) {
    EXPECT_EQ(Look(), u"");
    for (const char* bytes : {"", "\xFF", "\xFF\xFE", "\xFF\xFE["}) {
        installation_.Write("profilenames.inf", bytes);
        EXPECT_EQ(Look(), u"");
    }
}

TEST_F(ProfileNames, ComeFromTheirSection) {
    Write(u"a.zvp=Outside\r\n[ENG]\r\na.zvp=English\r\n[DEU]\r\nb.zvp=B\r\na.zvp=Gl\u00E4nzend \u7D19\r\n");
    EXPECT_EQ(Look(), u"Gl\u00E4nzend \u7D19");
}

TEST_F(ProfileNames, AreEmptyWithoutTheSectionOrTheKey) {
    Write(u"[ENG]\r\na.zvp=English\r\n");
    EXPECT_EQ(Look(), u"");
    Write(u"[DEU]\r\nb.zvp=B\r\na.zv=A\r\n");
    EXPECT_EQ(Look(), u"");
}

TEST_F(ProfileNames, EndWithTheSection) {
    Write(u"[DEU]\r\nb.zvp=B\r\n[ENG]\r\n[DEU]\r\na.zvp=Late\r\n");
    EXPECT_EQ(Look(), u"");
}

TEST_F(ProfileNames, ComeFromASectionWithMoreAfterItsBracket) {
    Write(u"[DEU] Deutsch\na.zvp=Matt\n");
    EXPECT_EQ(Look(), u"Matt");
    Write(u"[DEU\na.zvp=Matt\n");
    EXPECT_EQ(Look(), u"");
    Write(u" [DEU]\na.zvp=Matt\n");
    EXPECT_EQ(Look(), u"");
}

TEST_F(ProfileNames, DoNotComeFromTheLineOfTheirSection) {
    Write(u"[DEU].zvp=x\n[DEU].zvp=y\n");
    WCHAR name[8];
    EXPECT_EQ(QRV_GetProfileFieldW(L"[DEU]", L"[DEU].zvp", name, 8), 0u);
    EXPECT_EQ(name[0], 0);
}

TEST_F(ProfileNames, HaveExactKeys) {
    for (const char16_t* line : {u"A.zvp=x", u" a.zvp=x", u"a.zvp =x", u"a.zvpx=x", u"a.zvp", u"a.zvp:x"}) {
        Write(std::u16string(u"[DEU]\n") + line + u"\n");
        EXPECT_EQ(Look(), u"");
    }
    Write(u"[DEU]\na.zvp= x =y \n");
    EXPECT_EQ(Look(), u" x =y ");
}

TEST_F(ProfileNames, EndAtAnyLineEnd) {
    for (const char16_t* end : {u"\r\n", u"\n", u"\r", u""}) {
        Write(std::u16string(u"[DEU]\rb.zvp=B\na.zvp=Matt ~ 80 g") + end);
        EXPECT_EQ(Look(), u"Matt ~ 80 g");
    }
    Write(u"[DEU]\r\n\r\n\n\na.zvp=Matt\rb.zvp=B\r");
    EXPECT_EQ(Look(), u"Matt");
}

TEST_F(ProfileNames, DoNotComeFromAnEmptyValue) {
    Write(u"[DEU]\r\na.zvp=\r\na.zvp=Second\r\na.zvp=Third\r\n");
    EXPECT_EQ(Look(), u"Second");
}

TEST_F(ProfileNames, AreCutToTheBufferUnlessALaterOneFits) {
    Write(u"[DEU]\r\na.zvp=12345\r\n");
    EXPECT_EQ(Look(7), u"12345");
    EXPECT_EQ(Look(6), u"12345");
    EXPECT_EQ(Look(5), u"1234");
    EXPECT_EQ(Look(1), u"");
    Write(u"[DEU]\r\na.zvp=12345\r\na.zvp=abcdef\r\na.zvp=xy\r\n");
    EXPECT_EQ(Look(5), u"xy");
    EXPECT_EQ(Look(6), u"xy");  // a name that fills the buffer counts as cut
    Write(u"[DEU]\r\na.zvp=12345\r\na.zvp=abcdef\r\n[ENG]\r\na.zvp=xy\r\n");
    EXPECT_EQ(Look(5), u"abcd");
}

TEST_F(ProfileNames, LeaveAnEmptyBufferAlone) {
    Write(u"[DEU]\r\na.zvp=12345\r\n");
    WCHAR name = L'#';
    EXPECT_EQ(QRV_GetProfileFieldW(L"[DEU]", L"a.zvp", &name, 0), 0u);
    EXPECT_EQ(name, L'#');
}

TEST_F(ProfileNames, AreFoundAfterLongLines) {
    // A line of 253 characters fills a read; one of 254 continues in the next.
    for (const size_t length : {252u, 253u, 254u, 255u, 506u, 507u, 2000u}) {
        for (const char16_t* end : {u"\r\n", u"\n", u"\r"}) {
            Write(std::u16string(u"[DEU]\r\n") + std::u16string(length, u'x') + end + u"a.zvp=Matt\r\n");
            EXPECT_EQ(Look(), u"Matt") << length;
        }
    }
}

TEST_F(ProfileNames, EndAtTheEndOfAReadOrBeginThere) {
    Write(std::u16string(u"[DEU]\r\na.zvp=") + std::u16string(400, u'x') + u"\r\n");
    EXPECT_EQ(Look(), std::u16string(253 - 6, u'x'));
    Write(std::u16string(u"[DEU]\r\n") + std::u16string(253, u'x') + u"a.zvp=Matt\r\n");
    EXPECT_EQ(Look(), u"Matt");
}

TEST_F(ProfileNames, AreEmptyWhenASeekFails) {
    Write(u"[DEU]\r\na.zvp=Matt\r\n");
    const ImportPatch patch(nullptr, "SetFilePointerEx", reinterpret_cast<void*>(&FailToSeek));
    const FileWatch watch;
    WCHAR name[8];
    EXPECT_EQ(QRV_GetProfileFieldW(L"[DEU]", L"a.zvp", name, 8), 0u);
    EXPECT_EQ(watch.Reads(), 0u);
}

TEST_F(ProfileNames, AreEmptyWhenAReadFails) {
    Write(u"[DEU]\r\na.zvp=Matt\r\n");
    const ImportPatch patch(nullptr, "ReadFile", reinterpret_cast<void*>(&FailToRead));
    EXPECT_EQ(Look(), u"");
}

TEST_F(ProfileNames, EndBeforeAZeroCharacter) {
    Write(std::u16string_view(u"[DEU]\na.zvp=Ma\0tt\n", 18));
    EXPECT_EQ(Look(), u"Ma");
}

TEST_F(ProfileNames, AreReadFromAFileWithAnOddLastByte) {
    installation_.Write("profilenames.inf", WideFile(u"[DEU]\na.zvp=Matt") + "x");
    EXPECT_EQ(Look(), u"Matt");
}

namespace {

// The system's abbreviation of its language; empty when it has none.
std::u16string systemLanguage;

INT WINAPI TellLanguage(LCID locale, LCTYPE type, LPWSTR buffer, INT capacity) {
    EXPECT_EQ(locale, static_cast<LCID>(LOCALE_SYSTEM_DEFAULT));
    EXPECT_EQ(type, static_cast<LCTYPE>(LOCALE_SABBREVLANGNAME));
    EXPECT_EQ(capacity, 10);
    if (systemLanguage.empty()) return 0;
    std::copy(systemLanguage.begin(), systemLanguage.end(), buffer);
    buffer[systemLanguage.size()] = 0;
    return static_cast<INT>(systemLanguage.size() + 1);
}

class ProfileLanguage : public testing::Test {
  protected:
    // Returns the language for a line of settings; the system's is negative.
    int FromSettings(const std::string& value) {
        installation_.WriteSettings("[UI]\r\nLanguage=" + value + "\r\n");
        systemLanguage = u"JPN";
        int flag = 0;
        const int language = QRV_Get_Locale(&flag);
        return flag == 1 ? language : -language;
    }
    int FromSystem(std::u16string_view abbreviation) {
        installation_.WriteSettings("[UI]\r\n");
        systemLanguage = abbreviation;
        int flag = 0;
        const int language = QRV_Get_Locale(&flag);
        EXPECT_EQ(flag, 0);
        return language;
    }

    InstallationFixture installation_;
    ImportPatch patch_{nullptr, "GetLocaleInfoW", reinterpret_cast<void*>(&TellLanguage)};
};

constexpr int kSystemIsJapanese = -6;  // the language if the settings do not decide

}  // namespace

TEST_F(ProfileLanguage, OfTheSettingsIsComparedByItsFirstLetters) {
    const std::pair<const char*, int> kCases[] = {
        {"ENG", 1}, {"ENGLISH", 1},
        {"ENU", 7}, {"DEU", 3},
        {"CHS", 4}, {"JPN", 6},
        {"FRA", 2}, {"FR", 2},
        {"FRX", 2}, {"FXA", kSystemIsJapanese},  // French by two letters
        {"ES", 5},  {"ELL", 5},
        {"E", 5},   {"ENX", 5},
        {"EN", 5}};  // Spanish by one, unless English
    for (const auto& [value, language] : kCases) EXPECT_EQ(FromSettings(value), language) << value;
}

TEST_F(ProfileLanguage, OfTheSettingsMayBeOneLetterAtTheFilesEnd) {
    installation_.WriteSettings("[UI]\r\nLanguage=E");
    int flag = 0;
    EXPECT_EQ(QRV_Get_Locale(&flag), 5);
    EXPECT_EQ(flag, 1);
}

TEST_F(ProfileLanguage, OfTheSettingsNeedsEveryOtherLetter) {
    for (const char* value : {"DE", "DEX", "JP", "C", "eng", " DEU", "", "ZZZ"}) {
        EXPECT_EQ(FromSettings(value), kSystemIsJapanese) << value;
    }
}

TEST_F(ProfileLanguage, OfTheSettingsIsReadUpTo19Bytes) {
    LogCapture log;
    EXPECT_EQ(FromSettings("DEU4567890123456789012345"), 3);
    EXPECT_THAT(log.TakeLines(),
                ElementsAre("[Trace] <QRV_Get_Locale>", "[Info]  settings lang:DEU4567890123456789",
                            "[Trace] </QRV_Get_Locale>"));
}

TEST_F(ProfileLanguage, OfTheSystemIsComparedByTheLettersThatAreListed) {
    const std::pair<const char16_t*, int> kCases[] = {
        {u"ENG", 1}, {u"FRA", 2}, {u"DEU", 3},  {u"CHS", 4},  {u"CHT", 4},  {u"ESN", 5}, {u"ESP", 5},
        {u"JPN", 6}, {u"ENU", 7}, {u"ENGX", 1}, {u"FRAX", 2}, {u"DEUX", 3}, {u"JPNX", 6}};
    for (const auto& [abbreviation, language] : kCases) EXPECT_EQ(FromSystem(abbreviation), language);
}

TEST_F(ProfileLanguage, OfTheSystemIsAmericanEnglishWhenItIsNotListed) {
    for (const char16_t* abbreviation : {u"ELL", u"FRX", u"FRB", u"ENX", u"E", u"IT", u"DE", u""}) {
        EXPECT_EQ(FromSystem(abbreviation), 7);
    }
}

TEST_F(ProfileLanguage, LogsItsSource) {
    LogCapture log;
    EXPECT_EQ(FromSettings("ENU"), 7);
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Trace] <QRV_Get_Locale>", "[Info]  settings lang:ENU\r", "",
                                             "[Trace] </QRV_Get_Locale>"));
    EXPECT_EQ(FromSettings("XYZ"), kSystemIsJapanese);
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Trace] <QRV_Get_Locale>", "[Info]  settings lang:XYZ\r", "",
                                             "[Info]  GetLocaleInfo lang:JPN", "[Trace] </QRV_Get_Locale>"));
    EXPECT_EQ(FromSystem(u""), 7);
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Trace] <QRV_Get_Locale>",
                                             "[Info]  GetLocaleInfo lang:", "[Trace] </QRV_Get_Locale>"));
}

TEST_F(ProfileLanguage, HasASectionForEachCodeAndTheAmericanEnglishOneForAnyOther) {
    const char16_t* const kSections[] = {u"[ENU]", u"[ENG]", u"[FRA]", u"[DEU]",
                                         u"[CH]",  u"[ES]",  u"[JPN]", u"[ENU]"};
    for (int code = 0; code < 8; ++code) {
        EXPECT_EQ(AsView(LanguageSection(static_cast<LanguageCode>(code))), kSections[code]) << code;
    }
}

}  // namespace orvex
