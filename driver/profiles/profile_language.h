// The language in which users see the names of color profiles.
#pragma once

#include "platform/windows.h"

namespace orvex {

enum LanguageCode {
    kEnglish = 1,
    kFrench = 2,
    kGerman = 3,
    kChinese = 4,
    kSpanish = 5,
    kJapanese = 6,
    kAmericanEnglish = 7,
};

// Returns the language that "Language=" in "[UI]" of settings.inf names, or else the system's, or else
// American English. Sets `*fromSettings` to 1 when it came from the settings, and leaves it alone otherwise.
LanguageCode QRV_Get_Locale(int* fromSettings);

// Returns the section of profilenames.inf for a language, with its brackets.
const WCHAR* LanguageSection(LanguageCode code);

}  // namespace orvex
