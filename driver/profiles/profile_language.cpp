#include "driver/profiles/profile_language.h"

#include <algorithm>
#include <cstring>

#include "driver/support/log.h"
#include "driver/support/settings_file.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

constexpr size_t kSettingCapacity = 20;
constexpr int kAbbreviationCapacity = 10;

// A language and its abbreviation. A text names the language when it begins with the first letters of that.
struct Language {
    LanguageCode code;
    const WCHAR* section;
    const char* letters;
    size_t inSettings;  // letters compared; deliberately few for some: any other "E..." is Spanish
    size_t inSystem;
};

// The languages in the order in which they are compared.
// clang-format off
constexpr Language kLanguages[] = {
    {kEnglish,         L"[ENG]", "ENG", 3, 3},
    {kAmericanEnglish, L"[ENU]", "ENU", 3, 3},
    {kGerman,          L"[DEU]", "DEU", 3, 3},
    {kFrench,          L"[FRA]", "FRA", 2, 3},
    {kSpanish,         L"[ES]",  "ES",  1, 2},
    {kChinese,         L"[CH]",  "CH",  2, 2},
    {kJapanese,        L"[JPN]", "JPN", 3, 3},
};
// clang-format on

const Language* FindSettingsLanguage(const char* value) {
    for (const Language& language : kLanguages) {
        if (strncmp(value, language.letters, language.inSettings) == 0) return &language;
    }
    return nullptr;
}

// Finds the language of the system's abbreviation, a terminated text.
LanguageCode SystemLanguage(const WCHAR* abbreviation) {
    for (const Language& language : kLanguages) {
        if (std::equal(language.letters, language.letters + language.inSystem, abbreviation))
            return language.code;
    }
    return kAmericanEnglish;
}

}  // namespace

LanguageCode QRV_Get_Locale(int* fromSettings) {
    const TraceScope trace("QRV_Get_Locale");
    char value[kSettingCapacity];
    if (LookupString("[UI]", "Language=", value, sizeof value) > 0) {
        LogInfo("settings lang:%s", value);
        if (const Language* language = FindSettingsLanguage(value)) {
            *fromSettings = 1;
            return language->code;
        }
    }
    WCHAR abbreviation[kAbbreviationCapacity] = {};
    GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, abbreviation, kAbbreviationCapacity);
    LogInfo("GetLocaleInfo lang:%S", FieldText(abbreviation));
    return SystemLanguage(abbreviation);
}

const WCHAR* LanguageSection(LanguageCode code) {
    for (const Language& language : kLanguages) {
        if (language.code == code) return language.section;
    }
    return LanguageSection(kAmericanEnglish);
}

}  // namespace orvex
