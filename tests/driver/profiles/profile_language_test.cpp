#include "driver/profiles/profile_catalogue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "tests/driver/profiles/name_texts.h"
#include "tests/kit/installation_fixture.h"
#include "tests/kit/log_capture.h"

namespace orvex {

using testing::ElementsAre;

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
    EXPECT_EQ(FromSettings("ENG"), 1);
    EXPECT_EQ(FromSettings("ENGLISH"), 1);
    EXPECT_EQ(FromSettings("ENU"), 7);
    EXPECT_EQ(FromSettings("DEU"), 3);
    EXPECT_EQ(FromSettings("FRA"), 2);
    EXPECT_EQ(FromSettings("CHS"), 4);
    EXPECT_EQ(FromSettings("JPN"), 6);
}

TEST_F(ProfileLanguage, OfTheSettingsIsFrenchByTwoLetters) {
    EXPECT_EQ(FromSettings("FR"), 2);
    EXPECT_EQ(FromSettings("FRX"), 2);
    EXPECT_EQ(FromSettings("FXA"), kSystemIsJapanese);
}

TEST_F(ProfileLanguage, OfTheSettingsIsSpanishByOneLetterUnlessItIsEnglish) {
    EXPECT_EQ(FromSettings("ES"), 5);
    EXPECT_EQ(FromSettings("ELL"), 5);
    EXPECT_EQ(FromSettings("E"), 5);
    EXPECT_EQ(FromSettings("ENX"), 5);
    EXPECT_EQ(FromSettings("EN"), 5);
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

TEST_F(ProfileLanguage, OfTheSystemIsComparedWhole) {
    EXPECT_EQ(FromSystem(u"ENG"), 1);
    EXPECT_EQ(FromSystem(u"FRA"), 2);
    EXPECT_EQ(FromSystem(u"DEU"), 3);
    EXPECT_EQ(FromSystem(u"CHS"), 4);
    EXPECT_EQ(FromSystem(u"CHT"), 4);
    EXPECT_EQ(FromSystem(u"ESN"), 5);
    EXPECT_EQ(FromSystem(u"ESP"), 5);
    EXPECT_EQ(FromSystem(u"JPN"), 6);
    EXPECT_EQ(FromSystem(u"ENU"), 7);
}

TEST_F(ProfileLanguage, OfTheSystemMayHaveMoreLettersThanAreCompared) {
    EXPECT_EQ(FromSystem(u"ENGX"), 1);
    EXPECT_EQ(FromSystem(u"FRAX"), 2);
    EXPECT_EQ(FromSystem(u"DEUX"), 3);
    EXPECT_EQ(FromSystem(u"JPNX"), 6);
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

TEST_F(ProfileLanguage, HasASectionForEachCode) {
    EXPECT_EQ(AsView(LanguageSection(kEnglish)), u"[ENG]");
    EXPECT_EQ(AsView(LanguageSection(kFrench)), u"[FRA]");
    EXPECT_EQ(AsView(LanguageSection(kGerman)), u"[DEU]");
    EXPECT_EQ(AsView(LanguageSection(kChinese)), u"[CH]");
    EXPECT_EQ(AsView(LanguageSection(kSpanish)), u"[ES]");
    EXPECT_EQ(AsView(LanguageSection(kJapanese)), u"[JPN]");
    EXPECT_EQ(AsView(LanguageSection(kAmericanEnglish)), u"[ENU]");
}

TEST_F(ProfileLanguage, HasTheAmericanEnglishSectionForAnyOtherCode) {
    EXPECT_EQ(AsView(LanguageSection(LanguageCode{})), u"[ENU]");
}

}  // namespace orvex
