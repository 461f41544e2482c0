#include "tests/faults/documented_answers.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr const char* kNone = nullptr;

// The buffer of the installation folder's path.
#define FOLDER_BUFFER "calloc 520"

// clang-format off
const DocumentedAnswer kAnswers[] = {
    // the log and its switch
    {"CreateMutexA orvexgdi.txt",        "", "", "", kNone, Shows::LineLost},
    {"WaitForSingleObject orvexgdi.txt", "", "", "", kNone, Shows::LineLost},
    {"CreateFileA orvexgdi.txt",         "", "", "", kNone, Shows::LineLost, "", Leaves::Mutex},
    {"WriteFile orvexgdi.txt",           "", "", "", kNone, Shows::LineLost},
    {"GetFileSizeEx orvexgdi.txt",       "", "", "", kNone, Shows::Nothing},
    {"CreateFileA orvexgdi.dat",         "", "", "", kNone, Shows::LinesLost},
    {"ReadFile orvexgdi.dat",            "", "", "", kNone, Shows::LinesLost},
    {"WideCharToMultiByte 65001",        "", "", "", kNone, Shows::OutputSame},

    // the name of the printer's driver, which is asked for and not used
    {"GetPrinterDriverW", "", "", "", kNone, Shows::Nothing},
    {"malloc *",          "", "GetPrinterDriverW", "GetPrinterDriverW", kNone, Shows::Nothing},
    {"malloc 26",         "", "GetPrinterDriverW", "", kNone, Shows::Nothing},

    // the installation folder, by what it is asked for
    {FOLDER_BUFFER,             "DrvEnablePDEV*", "ReadFile orvexgdi.dat", "EnumPrinterKeyW", kNone, Shows::Line, "[Error] Error: could get app path"},
    {"SHGetSpecialFolderPathW", "DrvEnablePDEV*", "ReadFile orvexgdi.dat", "EnumPrinterKeyW", kNone, Shows::Line, "[Error] Error: could get app path"},
    {"PathAppendW *",           "DrvEnablePDEV*", "ReadFile orvexgdi.dat", "EnumPrinterKeyW", kNone, Shows::Line, "[Error] Error: could get app path"},
    {FOLDER_BUFFER,             "", "", "PathAppendW *", kNone, Shows::LineOnly, "[Error] Error: could get app path"},
    {"SHGetSpecialFolderPathW", "", "", "PathAppendW *", kNone, Shows::LineOnly, "[Error] Error: could get app path"},
    {"PathAppendW *",           "", "", "PathAppendW *", kNone, Shows::LineOnly, "[Error] Error: could get app path"},
    {FOLDER_BUFFER,             "", "", "CreateFileW settings.inf", kNone, Shows::Line, "[Error] failed to open settings.inf"},
    {"SHGetSpecialFolderPathW", "", "", "CreateFileW settings.inf", kNone, Shows::Line, "[Error] failed to open settings.inf"},
    {"PathAppendW *",           "", "", "CreateFileW settings.inf", kNone, Shows::Line, "[Error] failed to open settings.inf"},
    {FOLDER_BUFFER,             "", "", "CreateFileW profilenames.inf", kNone, Shows::LinesLost},
    {"SHGetSpecialFolderPathW", "", "", "CreateFileW profilenames.inf", kNone, Shows::LinesLost},
    {"PathAppendW *",           "", "", "CreateFileW profilenames.inf", kNone, Shows::LinesLost},
    {FOLDER_BUFFER,             "DrvStartDoc*", "", "GetCurrentDirectoryW", "DrvStartDoc 1", Shows::Line, "[Error] Error: could get app path"},
    {"SHGetSpecialFolderPathW", "DrvStartDoc*", "", "GetCurrentDirectoryW", "DrvStartDoc 1", Shows::Line, "[Error] Error: could get app path"},
    {"PathAppendW *",           "DrvStartDoc*", "", "GetCurrentDirectoryW", "DrvStartDoc 1", Shows::Line, "[Error] Error: could get app path"},

    // the files in it; what can't be read has its default
    {"malloc *",                      "", "", "CreateFileW settings.inf", kNone, Shows::Line, "[Error] failed to open settings.inf"},
    {"CreateFileW settings.inf",      "", "", "", kNone, Shows::Line, "[Error] failed to open settings.inf"},
    {"ReadFile settings.inf",         "", "", "", kNone, Shows::Change},
    {"SetFilePointerEx settings.inf", "", "", "", kNone, Shows::Change},
    {"malloc *",                      "", "", "CreateFileW media.inf", kNone, Shows::Line, "[Error] failed to open media.inf"},
    {"CreateFileW media.inf",         "", "", "", kNone, Shows::Line, "[Error] failed to open media.inf"},
    {"ReadFile media.inf",            "", "", "", kNone, Shows::Line, "[Error] media.inf empty"},
    {"malloc *",                      "", "", "CreateFileW profilenames.inf", kNone, Shows::LinesLost},
    {"CreateFileW profilenames.inf",  "", "", "", kNone, Shows::LinesLost},
    {"ReadFile profilenames.inf",     "", "", "", kNone, Shows::LinesLost},
    {"SetFilePointerEx profilenames.inf", "", "", "", kNone, Shows::LinesLost},

    // the catalogue of profiles; the job names its own
    {"PathAppendW *",          "", "", "FindFirstFileW*", kNone, Shows::LinesLost},
    {"FindFirstFileW *",       "", "", "", kNone, Shows::LinesLost},
    {"FindNextFileW *",        "", "", "", kNone, Shows::LinesLost},
    {"calloc *",               "", "FindNextFileW*", "FindFirstFileW*", kNone, Shows::LinesLost},
    {"calloc *",               "", "* profilenames.inf", "", kNone, Shows::LinesLost},
    {"malloc *",               "", "* settings.inf", "EnumPrinterKeyW", kNone, Shows::Nothing},
    {"CreateFileA *.zvp",      "DrvEnablePDEV*", "", "", kNone, Shows::LineOnly, "[Info]  Error: could not open file [*{}]"},
    {"GetFileSizeEx *.zvp",    "DrvEnablePDEV*", "", "", kNone, Shows::LineOnly, "[Info]  error reading file *{} 0"},
    {"ReadFile *.zvp",         "DrvEnablePDEV*", "", "", kNone, Shows::LineOnly, "[Info]  error reading file *{} 0"},
    {"GetLocaleInfoW",         "", "", "", kNone, Shows::LineOnly, "[Info]  GetLocaleInfo lang:"},

    // the job's profile; whatever fails leads to the generic conversion
    {"CreateFileA test.zvp",      "DrvStartDoc 1", "", "", kNone, Shows::Line, "[Error] Error: could not open file [profiles\\test.zvp]"},
    {"GetFileSizeEx test.zvp",    "DrvStartDoc 1", "", "", kNone, Shows::Line, "[Error] error reading file profiles\\test.zvp 0"},
    {"ReadFile test.zvp",         "DrvStartDoc 1", "GetFileSizeEx*", "", kNone, Shows::Line, "[Error] error reading file profiles\\test.zvp 0"},
    {"ReadFile test.zvp",         "DrvStartDoc 1", "", "", kNone, Shows::Line, "[Error] error reading profile * colours!"},
    {"SetFilePointerEx test.zvp", "DrvStartDoc 1", "", "", kNone, Shows::Line, "[Error] error reading profile * colours!"},

    // the printer's name and its labels
    {"GetPrinterW",         "", "", "", kNone, Shows::Line, "[Error] GetPrinterName: GetPrinter failed: 0x6"},
    {"malloc *",            "", "GetPrinterW", "", kNone, Shows::Line, "[Error] GetPrinterName: malloc failed"},
    {"OpenPrinterW",        "", "", "", kNone, Shows::Line, "[Error] OpenPrinterWithAccess: error 5 (*)"},
    {"EnumPrinterKeyW",     "DrvEnablePDEV 1", "ReadFile orvexgdi.dat", "", kNone, Shows::Nothing},
    {"EnumPrinterKeyW",     "DrvEnablePDEV 2", "ReadFile orvexgdi.dat", "", kNone, Shows::LineOnly, "[Error] Add Small 25.4 28 0"},
    {"EnumPrinterKeyW",     "", "", "", kNone, Shows::Line, "[Error] Could not * label list * registry: 0x5"},
    {"calloc *",            "", "EnumPrinterKeyW", "EnumPrinterKeyW", kNone, Shows::Line, "[Error] Could not read label list from registry: 0x8"},
    {"GetPrinterDataExA *", "", "", "", kNone, Shows::Line, "[Error] Could not read label {}: 0x5"},
    {"SetPrinterDataExA *", "", "", "", kNone, Shows::Line, "[Error] Could not set label {}: 0x5"},

    // the device
    {"LocalAlloc *",        "DrvEnablePDEV 1", "", "", "DrvEnablePDEV 1", Shows::Change},
    {"LocalAlloc *",        "DrvEnablePDEV 2", "", "", "DrvEnablePDEV 2", Shows::OutputSame},
    {"calloc 916",          "DrvEnablePDEV*", "", "", kNone, Shows::Line, "[Info]  failed to alloc pdm"},
    {"EngCreatePalette",    "DrvEnablePDEV 1", "", "", "DrvEnablePDEV 1", Shows::Change},
    {"EngCreatePalette",    "DrvEnablePDEV 2", "", "", "DrvEnablePDEV 2", Shows::OutputSame},
    {"EngCreateBitmap",     "DrvEnableSurface 1", "", "", "DrvEnableSurface 1", Shows::Line, "[Error] Could not create surface."},
    {"EngCreateBitmap",     "DrvEnableSurface 2", "", "", "DrvEnableSurface 2", Shows::LineOnly, "[Error] Could not create surface."},
    {"EngAssociateSurface", "DrvEnableSurface 1", "", "", "DrvEnableSurface 1", Shows::Change},
    {"EngAssociateSurface", "DrvEnableSurface 2", "", "", "DrvEnableSurface 2", Shows::OutputSame},
    {"EngDeleteSurface",    "", "", "", kNone, Shows::Nothing},
    {"EngEraseSurface",     "", "", "", kNone, Shows::Nothing},

    // the print engine's library
    {"GetCurrentDirectoryW",   "DrvStartDoc 1", "", "", kNone, Shows::Nothing, "", Leaves::Directory},
    {"SetCurrentDirectoryW *", "DrvStartDoc 1", "", "", "DrvStartDoc 1", Shows::Line, "[Error] Error: could not load hpcrlib.DLL"},
    {"SetCurrentDirectoryW *", "DrvEndDoc 1", "", "", kNone, Shows::Nothing, "", Leaves::Directory},
    {"LoadLibraryW *",         "", "", "", "DrvStartDoc 1", Shows::Line, "[Error] Error: could not load hpcrlib.DLL"},
    {"GetProcAddress *",       "", "", "", "DrvStartDoc 1", Shows::Line, "[Error] Error: could not get \"{}\" address"},
    {"FreeLibrary",            "", "", "", kNone, Shows::Nothing},

    // its job and its pages; a page that is not taken whole is skipped
    {"HPCRLIB_JobStart",         "", "", "", "DrvStartDoc 1", Shows::Line, "[Error] Error: could not start a job"},
    {"HPCRLIB_PageStart",        "", "", "", kNone, Shows::Line, "[Error] Error: could not start a page"},
    {"HPCRLIB_RasterBlockStart", "", "", "", kNone, Shows::Line, "[Error] Error: could not start a raster block"},
    {"HPCRLIB_RasterRow",        "", "", "", kNone, Shows::Line, "[Error] Error: could not send raster row *"},
    {"HPCRLIB_RasterBlockEnd",   "", "", "", kNone, Shows::Line, "[Error] Error: could not end a raster block"},
    {"HPCRLIB_PageEnd",          "", "", "", kNone, Shows::Line, "[Error] Error: could not end the page"},
    {"HPCRLIB_JobEnd",           "", "", "", kNone, Shows::LineOnly, "[Error] Error: could not end the job *"},
    {"malloc *",                 "DrvSendPage*", "WritePrinter data", "HPCRLIB_RasterRow", kNone, Shows::Line, "[Error] Error: could not allocate rows of 300 pixels"},
    {"calloc *",                 "DrvSendPage*", "WritePrinter data", "HPCRLIB_RasterRow", kNone, Shows::Line, "[Error] Error: could not allocate rows of 300 pixels"},
    {"*alloc *",                 "DrvSendPage 1", "* settings.inf", "HPCRLIB_PageStart", kNone, Shows::Line, "[Info]  failed to *"},

    // the way to the spooler; what is not checked does not show
    {"WritePrinter JOB NAME",      "", "", "", kNone, Shows::Change},
    {"WritePrinter PROFILE",       "", "", "", kNone, Shows::Change},
    {"WritePrinter QRV_THUMBNAIL", "", "", "", kNone, Shows::Change},
    {"WritePrinter data",          "", "WritePrinter QRV_THUMBNAIL", "", kNone, Shows::Change},
    {"WritePrinter *", "*HPCRLIB_PageStart",        "", "", kNone, Shows::Line, "[Error] Error: could not start a page"},
    {"WritePrinter *", "*HPCRLIB_RasterBlockStart", "", "", kNone, Shows::Line, "[Error] Error: could not start a raster block"},
    {"WritePrinter *", "*HPCRLIB_RasterRow",        "", "", kNone, Shows::Line, "[Error] Error: could not send raster row *"},
    {"WritePrinter *", "*HPCRLIB_RasterBlockEnd",   "", "", kNone, Shows::Line, "[Error] Error: could not end a raster block"},
    {"WritePrinter *", "*HPCRLIB_PageEnd",          "", "", kNone, Shows::Line, "[Error] Error: could not end the page"},
    {"WritePrinter *", "*HPCRLIB_JobEnd",           "", "", kNone, Shows::Line, "[Error] Error: could not end the job *"},

    // texts that can't be converted are cut or empty
    {"WideCharToMultiByte 0", "", "", "", kNone, Shows::Change},
    {"MultiByteToWideChar 0", "", "", "", kNone, Shows::Change},

    // what is given back is given back
    {"CloseHandle*", "", "", "", kNone, Shows::Nothing},
    {"FindClose*",   "", "", "", kNone, Shows::Nothing},
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

bool Fits(std::string_view text, const char* pattern) {
    return *pattern == '\0' || Matches(text, pattern);
}

}  // namespace

bool Matches(std::string_view text, std::string_view pattern) {
    if (pattern.empty()) return text.empty();
    if (pattern[0] == '*') {
        return Matches(text, pattern.substr(1)) || (!text.empty() && Matches(text.substr(1), pattern));
    }
    return !text.empty() && text[0] == pattern[0] && Matches(text.substr(1), pattern.substr(1));
}

std::vector<PlacedCall> PlaceCalls(const std::vector<WatchedCall>& calls) {
    std::vector<PlacedCall> placed;
    std::string before;
    for (const WatchedCall& call : calls) {
        placed.push_back({placed.size(), call, before, ""});
        if (IsLandmark(call)) before = call.Label();
    }
    std::string after;
    for (auto each = placed.rbegin(); each != placed.rend(); ++each) {
        each->after = after;
        if (IsLandmark(each->call)) after = each->call.Label();
    }
    return placed;
}

const DocumentedAnswer* FindAnswer(const PlacedCall& call) {
    const std::string label = call.call.Label();
    for (const DocumentedAnswer& answer : kAnswers) {
        if (Matches(label, answer.call) && Fits(call.call.place, answer.place) &&
            Fits(call.before, answer.before) && Fits(call.after, answer.after)) {
            return &answer;
        }
    }
    return nullptr;
}

std::vector<std::string> UnusedAnswers(const std::vector<PlacedCall>& calls) {
    std::vector<const DocumentedAnswer*> used;
    for (const PlacedCall& call : calls) used.push_back(FindAnswer(call));
    std::vector<std::string> unused;
    for (const DocumentedAnswer& answer : kAnswers) {
        if (std::find(used.begin(), used.end(), &answer) == used.end()) unused.emplace_back(answer.call);
    }
    return unused;
}
