#include "tests/system/faults/documented_answers.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

namespace orvex {

namespace {

constexpr const char* kNone = nullptr;

using Messages = std::vector<const char*>;

Messages operator+(Messages first, const Messages& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// A job that prints as ever, but logs otherwise.
Outcome Changed(const Messages& changes) {
    return {Prints::kAll, Logs::kChanges, changes};
}

// A job that prints as from other inputs.
Outcome Like(JobInputs inputs, const Messages& changes = {}, const char* cut = nullptr) {
    return {Prints::kAll, Logs::kChanges, changes, inputs, cut};
}

// clang-format off
const Outcome kUnchanged = {Prints::kAll, Logs::kAll};

// The log and its switch.
const Outcome kMessageLost = {Prints::kAll, Logs::kNotThis};
const Outcome kTextLost = {Prints::kAll, Logs::kNotItsText};
const Outcome kSilent = {Prints::kAll, Logs::kNotUntilSwitch};

// Jobs that end early, or go on in their first device.
const Outcome kNoJob = {Prints::kUntilThen, Logs::kUntilThen};
const Outcome kNoEnd = {Prints::kUntilThen, Logs::kAll};
const Outcome kNoNewDevice = {Prints::kAll, Logs::kNotUntilPage};

// A page that is not finished. The print engine refuses everything behind it; a page that it knows nothing of
// is only missing, and the next one brings the job header.
const Messages kNotStarted = {
    "- [Info]  [UI]:Show_Chunked=:1",
    "+ [Info]  Clearing thumbnail as not used!",
};
const Messages kNotFinished = {
    "- [Info]  RasterBlockStart: 0, 0, 300, 300",
    "- [Info]  Start render loop 90000 pixels rot=0 mir=0 luti=5 [Faults]",
    "- [Info]  ln32: 1200 1200",
    "- [Info]  Finished sending page",
    "+ [Error] Error: page * res missed!!!!!!!!!!!!!!!!!!!",
};
const Messages kNothingMore = {
    "+ [Error] Error: could not start a page",
    "+ [Error] Error: could not end the job 0 *",
};
const Outcome kPageLeftOut = {Prints::kAllButPage, Logs::kChanges, kNotStarted + kNotFinished + Messages{
    "+ [Info]  [UI]:Show_Chunked=:1",
}};
const Outcome kPageBroken = {Prints::kUntilThen, Logs::kChanges, kNotStarted + kNotFinished + kNothingMore};
const Outcome kNoRows = {Prints::kUntilThen, Logs::kChanges, kNotFinished + kNothingMore + Messages{
    "+ [Error] Error: could not allocate rows of 300 pixels",
}};
const Outcome kWriteLeftOut = {Prints::kAllButThat, Logs::kAll};

// Values that settings.inf does not give, and a thumbnail that can't be made.
const Outcome kNoThumbnail = Like(JobInputs::kNoThumbnail);
const Outcome kNoChunkPages = Like(JobInputs::kNoChunkPages);
const Outcome kThumbnailFails = Like(JobInputs::kNoThumbnail, {
    "+ [Info]  failed to alloc thumbnail bytes",
    "+ [Info]  pngencode 83",
    "+ [Info]  failed to generate png",
    "+ [Info]  failed to generate base64 png",
});

// A profile that the catalogue lists without its other name, can't read, does not list, or does not find.
const Messages kNameLess = {
    "- [Error] QRV_GetProfileFieldW [test.zvp] [Test paper]",
};
const Messages kReadLess = {
    "- [Info]  Profile version:5",
    "- [Info]  Profile name:*",
};
const Messages kListLess = kReadLess + Messages{
    "- [Error] GetQRVProfileName [*.zvp] [*.zvp]",
};
const Outcome kNotNamed = Changed(kNameLess);
const Outcome kNotRead = Changed(kReadLess);
const Outcome kNotListed = Changed(kListLess + kNameLess + Messages{
    "- [Info]  GetLocaleInfo lang:ENU",
});
const Outcome kNotFound = Changed(kListLess + Messages{
    "+ [Error] GetQRVProfileName [*.zvp] [\\*]",
    "+ [Info]  Error: could not open file [\\*]",
});

// The generic conversion instead of the job's profile.
const Outcome kNoProfile = Like(JobInputs::kNoProfile);
const Outcome kNoColors = Like(JobInputs::kNoColors);
const Outcome kNoSuchProfile = Like(JobInputs::kNoProfile, {
    "- [Info]  load_profile [profiles\\test.zvp]",
    "+ [Info]  load_profile [profiles\\*]",
    "+ [Error] Error: could not open file [profiles\\*]",
    "+ [Info]  read_profile 0 48 *",
    "+ [Error] error reading profile *!",
}, "PROFILE");

// A job without a name, or with a part of it.
const Outcome kTitleCut = Like(JobInputs::kAll, {
    "- [Info]  Start render loop 90000 pixels rot=0 mir=0 luti=5 [Faults]",
    "+ [Info]  Start render loop 90000 pixels rot=0 mir=0 luti=5 [*]",
}, "JOB NAME");

// Labels that are not imported. The second device imports them, but the job keeps its page size.
const Outcome kNoLabels = Like(JobInputs::kNoLabels, {
    "+ [Error] Add Small 25.4 28 0",
    "+ [Error] Add Strip 25.4 25.4 0",
    "+ [Error] Could not find label list in registry: 0x2",
    "+ [Info]  dwPageWidth 300<-254",
    "+ [Info]  dwPageLength 400<-254",
});
const Messages kLabelLess = {
    "+ [Error] Error adding label to registry!",
    "+ [Error] Could not read label *: 0x2",
};
const Outcome kLabelNotAdded = Like(JobInputs::kNoLabels, kLabelLess + Messages{
    "+ [Error] Add Strip 25.4 25.4 0",
    "+ [Error] Could not find label list in registry: 0x2",
});
const Outcome kOtherLabelBroken = Changed(kLabelLess);
const Outcome kLabelsReadAgain = Changed({
    "+ [Error] Add Strip 25.4 25.4 0",
});

// A device with the printer's defaults.
const Outcome kFirstDefault = Like(JobInputs::kNoFirstMode);
const Outcome kSecondDefault = Like(JobInputs::kNoSecondMode);

// What leads to a file in the installation folder.
#define FOLDER "calloc 520|SHGetSpecialFolderPathW|PathAppendW Quorvane|PathAppendW Orvex Series"

const DocumentedAnswer kAnswers[] = {
    // the log and its switch
    {"CreateMutexA orvexgdi.txt",        "", "", "", kNone, kMessageLost},
    {"WaitForSingleObject orvexgdi.txt", "", "", "", kNone, kMessageLost},
    {"CreateFileA orvexgdi.txt",         "", "", "", kNone, kMessageLost, "", Leaves::kMutex},
    {"WriteFile orvexgdi.txt",           "", "", "", kNone, kMessageLost},
    {"GetFileSizeEx orvexgdi.txt",       "", "", "", kNone, kUnchanged},
    {"CreateFileA orvexgdi.dat",         "", "", "", kNone, kSilent},
    {"ReadFile orvexgdi.dat",            "", "", "", kNone, kSilent},
    {"WideCharToMultiByte 65001",        "", "", "", kNone, kTextLost},

    // the name of the printer's driver, which is asked for and not used
    {"GetPrinterDriverW", "", "", "", kNone, kUnchanged},
    {"malloc *",          "", "GetPrinterDriverW", "GetPrinterDriverW", kNone, kUnchanged},
    {"malloc 26",         "", "GetPrinterDriverW", "", kNone, kUnchanged},

    // settings.inf; what it does not give has its default
    {FOLDER "|malloc *",              "DrvSendPage 1", "GetPrinterDriverW", "CreateFileW settings.inf", kNone, kNoThumbnail, "[Error] failed to open settings.inf"},
    {"CreateFileW settings.inf",      "DrvSendPage 1", "GetPrinterDriverW", "", kNone, kNoThumbnail, "[Error] failed to open settings.inf"},
    {"ReadFile settings.inf|SetFilePointerEx settings.inf", "DrvSendPage 1", "settings.inf 1", "", kNone, kNoThumbnail},
    {FOLDER "|malloc *",              "*HPCRLIB_PageStart", "", "CreateFileW settings.inf", kNone, kNoChunkPages, "[Error] failed to open settings.inf"},
    {"CreateFileW settings.inf",      "*HPCRLIB_PageStart", "", "", kNone, kNoChunkPages, "[Error] failed to open settings.inf"},
    {"ReadFile settings.inf|SetFilePointerEx settings.inf", "*HPCRLIB_PageStart", "", "", kNone, kNoChunkPages},
    {FOLDER "|malloc *",              "", "", "CreateFileW settings.inf", kNone, kUnchanged, "[Error] failed to open settings.inf"},
    {"CreateFileW settings.inf",      "", "", "", kNone, kUnchanged, "[Error] failed to open settings.inf"},
    {"ReadFile settings.inf|SetFilePointerEx settings.inf", "", "", "", kNone, kUnchanged},

    // the labels to import
    {FOLDER,                  "DrvEnablePDEV 1", "ReadFile orvexgdi.dat", "EnumPrinterKeyW", kNone, kNoLabels, "[Error] Error: could get app path"},
    {FOLDER,                  "DrvEnablePDEV 2", "ReadFile orvexgdi.dat", "EnumPrinterKeyW", kNone, kUnchanged, "[Error] Error: could get app path"},
    {"malloc *",              "", "", "CreateFileW media.inf", kNone, kNoLabels, "[Error] failed to open media.inf"},
    {"CreateFileW media.inf", "", "", "", kNone, kNoLabels, "[Error] failed to open media.inf"},
    {"ReadFile media.inf",    "", "", "", kNone, kNoLabels, "[Error] media.inf empty"},

    // importing them; the job asks for the second
    {"EnumPrinterKeyW",           "DrvEnablePDEV 1", "ReadFile orvexgdi.dat", "", kNone, kUnchanged},
    {"EnumPrinterKeyW",           "DrvEnablePDEV 2", "ReadFile orvexgdi.dat", "", kNone, kLabelsReadAgain, "[Error] Add Small 25.4 28 0"},
    {"EnumPrinterKeyW",           "", "media.inf 1", "", kNone, kLabelNotAdded, "[Error] Could not * label list * registry: 0x5"},
    {"calloc *",                  "", "media.inf 1", "EnumPrinterKeyW", kNone, kLabelNotAdded, "[Error] Could not read label list from registry: 0x8"},
    {"GetPrinterW",               "", "media.inf 1", "", kNone, kLabelNotAdded, "[Error] GetPrinterName: GetPrinter failed: 0x6"},
    {"malloc *",                  "", "media.inf 1", "GetPrinterW|OpenPrinterW", kNone, kLabelNotAdded, "[Error] GetPrinterName: malloc failed"},
    {"OpenPrinterW",              "", "media.inf 1", "", kNone, kLabelNotAdded, "[Error] OpenPrinterWithAccess: error 5 (983052)"},
    {"SetPrinterDataExA * version", "", "", "", kNone, kLabelNotAdded, "[Error] Could not set label {}: 0x5"},
    {"SetPrinterDataExA 258 *",   "", "", "", kNone, kOtherLabelBroken, "[Error] Could not set label {}: 0x5"},
    {"SetPrinterDataExA 259 *",   "", "", "", kNone, kLabelNotAdded, "[Error] Could not set label {}: 0x5"},

    // the catalogue of profiles; the job names its own
    {"GetPrinterW",            "", "GetPrinterDataExA 259 units", "GetPrinterW", kNone, kNotListed, "[Error] GetPrinterName: GetPrinter failed: 0x6"},
    {"malloc *",               "", "GetPrinterDataExA 259 units, GetPrinterW", "GetPrinterW", kNone, kNotListed, "[Error] GetPrinterName: malloc failed"},
    {"GetPrinterW",            "", "", "PathAppendW *.zvp", kNone, kNotListed, "[Error] GetPrinterName: GetPrinter failed: 0x6"},
    {"malloc *",               "", "GetPrinterW", "PathAppendW *.zvp", kNone, kNotListed, "[Error] GetPrinterName: malloc failed"},
    {FOLDER,                   "", "", "PathAppendW *", kNone, kNotListed, "[Error] Error: could get app path"},
    {"PathAppendW *",          "", "", "FindFirstFileW*", kNone, kNotListed},
    {"FindFirstFileW *",       "", "", "", kNone, kNotListed},
    {"FindNextFileW *",        "", "", "", kNone, kNotListed},
    {"calloc *",               "", "FindNextFileW*", "FindFirstFileW*", kNone, kNotListed},
    {"calloc *",               "", "* profilenames.inf", "", kNone, kUnchanged},
    {"malloc *",               "", "* settings.inf", "EnumPrinterKeyW", kNone, kUnchanged},
    {"CreateFileA *.zvp",      "DrvEnablePDEV*", "", "", kNone, kNotRead, "[Info]  Error: could not open file [*{}]"},
    {"GetFileSizeEx *.zvp",    "DrvEnablePDEV*", "", "", kNone, kNotRead, "[Info]  error reading file *{} 0"},
    {"ReadFile *.zvp",         "DrvEnablePDEV*", "", "", kNone, kNotRead, "[Info]  error reading file *{} 0"},
    {"WideCharToMultiByte 0",  "DrvEnablePDEV*", "", "", kNone, kNotFound},
    {"MultiByteToWideChar 0",  "DrvEnablePDEV*", "", "", kNone, kUnchanged},
    {"GetLocaleInfoW",         "", "", "", kNone, kTextLost},
    {FOLDER "|malloc *",       "", "", "CreateFileW profilenames.inf", kNone, kNotNamed},
    {"CreateFileW profilenames.inf", "", "", "", kNone, kNotNamed},
    {"ReadFile profilenames.inf|SetFilePointerEx profilenames.inf", "", "", "", kNone, kNotNamed},

    // looking the labels up; what can't be read is as it was
    {"GetPrinterW",         "", "", "", kNone, kUnchanged, "[Error] GetPrinterName: GetPrinter failed: 0x6"},
    {"malloc *",            "", "GetPrinterW", "", kNone, kUnchanged, "[Error] GetPrinterName: malloc failed"},
    {"OpenPrinterW",        "", "", "", kNone, kUnchanged, "[Error] OpenPrinterWithAccess: error 5 (-2147483648)"},
    {"EnumPrinterKeyW",     "", "", "", kNone, kUnchanged, "[Error] Could not * label list * registry: 0x5"},
    {"calloc *",            "", "EnumPrinterKeyW", "EnumPrinterKeyW", kNone, kUnchanged, "[Error] Could not read label list from registry: 0x8"},
    {"GetPrinterDataExA *", "", "", "", kNone, kUnchanged, "[Error] Could not read label {}: 0x5"},

    // the job's profile; whatever fails leads to the generic conversion
    {"WideCharToMultiByte 0",     "DrvStartDoc 1", "HPCRLIB_JobStart", "", kNone, kNoSuchProfile},
    {"MultiByteToWideChar 0",     "DrvStartDoc 1", "", "", kNone, kNoProfile, "[Error] Error: could not open file [profiles\\test.zvp]"},
    {"CreateFileA test.zvp",      "DrvStartDoc 1", "", "", kNone, kNoProfile, "[Error] Error: could not open file [profiles\\test.zvp]"},
    {"GetFileSizeEx test.zvp",    "DrvStartDoc 1", "", "", kNone, kNoProfile, "[Error] error reading file profiles\\test.zvp 0"},
    {"ReadFile test.zvp",         "DrvStartDoc 1", "GetFileSizeEx*", "", kNone, kNoProfile, "[Error] error reading file profiles\\test.zvp 0"},
    {"ReadFile test.zvp",         "DrvStartDoc 1", "SetFilePointerEx test.zvp", "", kNone, kNoColors, "[Error] error reading profile 0<>19652"},
    {"ReadFile test.zvp",         "DrvStartDoc 1", "", "ReadFile*", kNone, kNoColors, "[Error] error reading profile 8192<>19652"},
    {"ReadFile test.zvp",         "DrvStartDoc 1", "", "", kNone, kNoColors, "[Error] error reading profile 16384<>19652"},
    {"SetFilePointerEx test.zvp", "DrvStartDoc 1", "", "", kNone, kNoColors, "[Error] error reading profile 0<>19652"},

    // the device; without the first there is no job, without the second it goes on in the first
    {"LocalAlloc *",        "DrvEnablePDEV 1", "", "", "DrvEnablePDEV 1", kNoJob},
    {"LocalAlloc *",        "DrvEnablePDEV 2", "", "", "DrvEnablePDEV 2", kNoNewDevice},
    {"calloc 916",          "DrvEnablePDEV 1", "", "", kNone, kFirstDefault, "[Info]  failed to alloc pdm"},
    {"calloc 916",          "DrvEnablePDEV 2", "", "", kNone, kSecondDefault, "[Info]  failed to alloc pdm"},
    {"EngCreatePalette",    "DrvEnablePDEV 1", "", "", "DrvEnablePDEV 1", kNoJob},
    {"EngCreatePalette",    "DrvEnablePDEV 2", "", "", "DrvEnablePDEV 2", kNoNewDevice},
    {"EngCreateBitmap",     "DrvEnableSurface 1", "", "", "DrvEnableSurface 1", kNoJob, "[Error] Could not create surface."},
    {"EngCreateBitmap",     "DrvEnableSurface 2", "", "", "DrvEnableSurface 2", kNoNewDevice, "[Error] Could not create surface."},
    {"EngAssociateSurface", "DrvEnableSurface 1", "", "", "DrvEnableSurface 1", kNoJob},
    {"EngAssociateSurface", "DrvEnableSurface 2", "", "", "DrvEnableSurface 2", kNoNewDevice},
    {"EngDeleteSurface",    "", "", "", kNone, kUnchanged},
    {"EngEraseSurface",     "", "", "", kNone, kUnchanged},

    // the print engine's library
    {"WideCharToMultiByte 0",  "DrvStartDoc 1", "EngEraseSurface", "GetCurrentDirectoryW", kNone, kTitleCut},
    {FOLDER,                   "DrvStartDoc 1", "", "GetCurrentDirectoryW", "DrvStartDoc 1", kNoJob, "[Error] Error: could get app path"},
    {"GetCurrentDirectoryW",   "DrvStartDoc 1", "", "", kNone, kUnchanged, "", Leaves::kDirectory},
    {"SetCurrentDirectoryW *", "DrvStartDoc 1", "", "", kNone, kNoProfile},  // no refusal; the profile's path is relative
    {"SetCurrentDirectoryW *", "DrvEndDoc 1", "", "", kNone, kUnchanged, "", Leaves::kDirectory},
    {"LoadLibraryW *",         "", "", "", "DrvStartDoc 1", kNoJob, "[Error] Error: could not load hpcrlib.DLL"},
    {"GetProcAddress *",       "", "", "", "DrvStartDoc 1", kNoJob, "[Error] Error: could not get \"{}\" address"},
    {"FreeLibrary",            "", "", "", kNone, kUnchanged},

    // its job and its pages
    {"HPCRLIB_JobStart",         "", "", "", "DrvStartDoc 1", kNoJob, "[Error] Error: could not start a job"},
    {"*alloc *",                 "DrvSendPage 1", "* settings.inf", "HPCRLIB_PageStart", kNone, kThumbnailFails},
    {"HPCRLIB_PageStart",        "", "", "", kNone, kPageLeftOut, "[Error] Error: could not start a page"},
    {"HPCRLIB_RasterBlockStart", "", "", "", kNone, kPageBroken, "[Error] Error: could not start a raster block"},
    {"malloc *|calloc *",        "DrvSendPage*", "WritePrinter data", "HPCRLIB_RasterRow", kNone, kNoRows},
    {"HPCRLIB_RasterRow",        "", "", "", kNone, kPageBroken, "[Error] Error: could not send raster row *"},
    {"HPCRLIB_RasterBlockEnd",   "", "", "", kNone, kPageBroken, "[Error] Error: could not end a raster block"},
    {"HPCRLIB_PageEnd",          "", "", "", kNone, kPageBroken, "[Error] Error: could not end the page"},
    {"HPCRLIB_JobEnd",           "", "", "", kNone, kUnchanged, "[Error] Error: could not end the job 0 *"},

    // the way to the spooler; the job's name, the profile's, and the thumbnail up to its end are not checked
    {"WritePrinter JOB NAME|WritePrinter PROFILE|WritePrinter QRV_THUMBNAIL", "", "", "", kNone, kWriteLeftOut},
    {"WritePrinter data", "", "WritePrinter QRV_THUMBNAIL", "", kNone, kWriteLeftOut},
    {"WritePrinter *", "*HPCRLIB_PageStart",        "", "", kNone, kPageBroken, "[Error] Error: could not start a page"},
    {"WritePrinter *", "*HPCRLIB_RasterBlockStart", "", "", kNone, kPageBroken, "[Error] Error: could not start a raster block"},
    {"WritePrinter *", "*HPCRLIB_RasterRow",        "", "", kNone, kPageBroken, "[Error] Error: could not send raster row *"},
    {"WritePrinter *", "*HPCRLIB_RasterBlockEnd",   "", "", kNone, kPageBroken, "[Error] Error: could not end a raster block"},
    {"WritePrinter *", "*HPCRLIB_PageEnd",          "", "", kNone, kPageBroken, "[Error] Error: could not end the page"},
    {"WritePrinter *", "*HPCRLIB_JobEnd",           "", "", kNone, kNoEnd, "[Error] Error: could not end the job 0 *"},

    // what is given back is given back
    {"CloseHandle*", "", "", "", kNone, kUnchanged},
    {"FindClose*",   "", "", "", kNone, kUnchanged},
};
// clang-format on

// Calls that tell where in the job another one stands: not the log's, nor those that lead up to them.
bool IsLandmark(const WatchedCall& call) {
    static const char* const kOthers[] = {"* orvexgdi.txt",
                                          "malloc*",
                                          "calloc*",
                                          "realloc*",
                                          "LocalAlloc*",
                                          "WideCharToMultiByte*",
                                          "MultiByteToWideChar*",
                                          "CloseHandle*",
                                          "FindClose*",
                                          "SHGetSpecialFolderPathW",
                                          "PathAppendW Quorvane",
                                          "PathAppendW Orvex Series"};
    const std::string label = call.Label();
    return std::none_of(std::begin(kOthers), std::end(kOthers),
                        [&](const char* pattern) { return Matches(label, pattern); });
}

std::vector<std::string> Alternatives(std::string_view pattern) {
    std::vector<std::string> alternatives;
    for (size_t end; (end = pattern.find('|')) != pattern.npos; pattern.remove_prefix(end + 1)) {
        alternatives.emplace_back(pattern.substr(0, end));
    }
    alternatives.emplace_back(pattern);
    return alternatives;
}

bool MatchesOne(std::string_view text, std::string_view pattern) {
    if (pattern.empty()) return text.empty();
    if (pattern[0] == '*') {
        return MatchesOne(text, pattern.substr(1)) || (!text.empty() && MatchesOne(text.substr(1), pattern));
    }
    return !text.empty() && text[0] == pattern[0] && MatchesOne(text.substr(1), pattern.substr(1));
}

bool Fits(std::string_view text, const char* pattern) {
    return *pattern == '\0' || Matches(text, pattern);
}

bool Fits(const PlacedCall& call, const DocumentedAnswer& answer) {
    return Matches(call.call.Label(), answer.call) && Fits(call.call.place, answer.place) &&
           (Fits(call.before, answer.before) || Matches(call.lastTwo, answer.before) ||
            Matches(call.file, answer.before)) &&
           Fits(call.after, answer.after);
}

// Notes of each call the file last opened in its hook.
void NoteFiles(std::vector<PlacedCall>& calls) {
    std::string hook, file;
    std::map<std::string, int> opened;
    for (PlacedCall& placed : calls) {
        const WatchedCall& call = placed.call;
        const std::string of = call.place.substr(0, call.place.find('/'));
        if (std::exchange(hook, of) != of) {
            file.clear();
            opened.clear();
        }
        placed.file = file;
        if (call.function == "CreateFileW" || (call.function == "CreateFileA" && IsLandmark(call))) {
            file = call.subject + " " + std::to_string(++opened[call.subject]);
        }
    }
}

}  // namespace

bool Matches(std::string_view text, std::string_view pattern) {
    const std::vector<std::string> alternatives = Alternatives(pattern);
    return std::any_of(alternatives.begin(), alternatives.end(),
                       [&](const std::string& each) { return MatchesOne(text, each); });
}

std::vector<PlacedCall> PlaceCalls(const std::vector<WatchedCall>& calls) {
    std::vector<PlacedCall> placed;
    std::string before, lastTwo;
    for (const WatchedCall& call : calls) {
        placed.push_back({placed.size(), call, before, "", lastTwo, ""});
        if (IsLandmark(call)) {
            lastTwo = before + ", " + call.Label();
            before = call.Label();
        }
    }
    std::string after;
    for (auto each = placed.rbegin(); each != placed.rend(); ++each) {
        each->after = after;
        if (IsLandmark(each->call)) after = each->call.Label();
    }
    NoteFiles(placed);
    return placed;
}

const DocumentedAnswer* FindAnswer(const PlacedCall& call) {
    const auto found = std::find_if(std::begin(kAnswers), std::end(kAnswers),
                                    [&](const DocumentedAnswer& answer) { return Fits(call, answer); });
    return found == std::end(kAnswers) ? nullptr : found;
}

std::vector<std::string> UnusedAnswers(const std::vector<PlacedCall>& calls) {
    std::set<std::pair<const DocumentedAnswer*, std::string>> unused;
    for (const DocumentedAnswer& answer : kAnswers) {
        for (const std::string& call : Alternatives(answer.call)) unused.insert({&answer, call});
    }
    for (const PlacedCall& call : calls) {
        const DocumentedAnswer* answer = FindAnswer(call);
        std::erase_if(unused, [&](const auto& each) {
            return each.first == answer && Matches(call.call.Label(), each.second);
        });
    }
    std::vector<std::string> names;
    for (const auto& [answer, call] : unused) {
        names.push_back(call + " in " + answer->place + " behind " + answer->before + ", before " +
                        answer->after);
    }
    return names;
}

}  // namespace orvex
