// The names under which users see color profiles, in their language.
//
// profilenames.inf in the installation folder is UTF-16 text after a byte-order mark. A section for each
// language has lines "<profile's file name>=<name>".
#pragma once

#include <cstddef>

#include "driver/support/heap.h"
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

// Looks up the name of a profile in a section such as "[DEU]" and copies it to `name` of `capacity`
// characters, terminated. A name that does not fit is cut, and gives way to a later one of the same profile.
// Returns the name's length in characters; 0, with an empty `name`, when there is none or the file can't be
// read.
size_t QRV_GetProfileFieldW(const WCHAR* section, const WCHAR* fileName, WCHAR* name, size_t capacity);

// Appends the display name of a profile to `names`, a list as in profile_catalogue.h of `*bytes` bytes
// without the empty text at its end. The name is the one in the section of profilenames.inf, or the one in
// the profile, or the file's. Returns 1, or 0 when out of memory; the list then stays as it was.
int GetQRVProfileName(const WCHAR* fileName, HeapArray<WCHAR>* names, size_t* bytes, const WCHAR* folder,
                      const WCHAR* section);

}  // namespace orvex
