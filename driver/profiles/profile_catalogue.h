// The installed color profiles and the names under which users see them, in their language.
//
// A list of names is zero-terminated texts one after the other with an empty one at the end; an empty list is
// null. profilenames.inf in the installation folder is UTF-16 text after a byte-order mark, with a section
// for each language, whose lines are "<profile's file name>=<name>".
#pragma once

#include <cstddef>

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// Lists the profiles of the installation: file names, and one display name for each, in the same order.
// Returns 1, or 0 when the installation's folder is unknown or can't be searched. `context` is not used.
int ListProfiles(void* context, HeapArray<WCHAR>* fileNames, HeapArray<WCHAR>* displayNames);

// The end of a search.
enum ScanResult : DWORD {
    kScanned = 0,
    kNoSearchPath = 1,  // the search's path is too long
    kSearchFailed = 2,  // the files are there, but their names could not be collected
};

// Lists the files "profiles\*.zvp" of the installation folder into `fileNames`, which stays as it is
// when there are none. `pattern` is not used.
ScanResult QRV_ScanDirectoryWithPattern(const WCHAR* folder, const WCHAR* pattern,
                                        HeapArray<WCHAR>* fileNames);

enum LanguageCode { kEnglish = 1, kFrench, kGerman, kChinese, kSpanish, kJapanese, kAmericanEnglish };

// Returns the language that "Language=" in "[UI]" of settings.inf names, or else the system's, or else
// American English. Sets `*fromSettings` to 1 when it came from the settings, and leaves it alone otherwise.
LanguageCode QRV_Get_Locale(int* fromSettings);

// Returns the section of profilenames.inf for a language, with its brackets.
const WCHAR* LanguageSection(LanguageCode code);

// Copies the name of a profile in a section such as "[DEU]" to `name` of `capacity` characters, terminated. A
// name that does not fit is cut, and gives way to a later one of the same profile. Returns the name's length
// in characters; 0, with an empty `name`, when there is none or the file can't be read.
size_t QRV_GetProfileFieldW(const WCHAR* section, const WCHAR* fileName, WCHAR* name, size_t capacity);

// Appends the display name of a profile to `names`, a list of `*bytes` bytes without the empty text at its
// end: the name in the section of profilenames.inf, or the one in the profile, or the file's. Returns 1, or 0
// when out of memory; the list then stays as it was.
int GetQRVProfileName(const WCHAR* fileName, HeapArray<WCHAR>* names, size_t* bytes, const WCHAR* folder,
                      const WCHAR* section);

}  // namespace orvex
