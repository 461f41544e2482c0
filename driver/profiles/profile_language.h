// The language in which users see the names of colour profiles.
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

// The language that "Language=" in "[UI]" of settings.inf names, else the system's own, else American
// English.
// `*fromSettings` becomes 1 when it came from the settings and is left alone otherwise.
LanguageCode QRV_Get_Locale(int* fromSettings);

// The section of profilenames.inf for a language, with its brackets.
const WCHAR* LanguageSection(LanguageCode code);

}  // namespace orvex
