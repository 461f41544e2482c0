#include "tests/system/faults/documented_answers.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace orvex {

namespace {

// Patterns of calls, as WatchedCall::Label() names them.
#define MEMORY "malloc *|calloc *|"
#define FOLDER "SHGetSpecialFolderPathW|PathAppendW Quorvane|PathAppendW Orvex Series|"

// Calls that a hook must have to set up a device, its page bitmap or a job.
constexpr char kSetUp[] =
    "LocalAlloc *|EngCreatePalette|EngCreateBitmap|EngAssociateSurface|LoadLibraryW *|GetProcAddress "
    "*|HPCRLIB_JobStart";
// Calls on the way to the print engine's library, without which there is no job.
constexpr char kWayToEngine[] = MEMORY FOLDER;

// Deliberate: these lines of the job header are written without a check.
constexpr char kUncheckedWrites[] =
    "WritePrinter JOB NAME|WritePrinter PROFILE|WritePrinter QRV_THUMBNAIL|WritePrinter thumbnail";

// Calls without which the log has no message, no text in it, or no switch. They change nothing else.
constexpr char kLosesMessage[] =
    "CreateMutexA orvexgdi.txt|WaitForSingleObject orvexgdi.txt|CreateFileA orvexgdi.txt|WriteFile "
    "orvexgdi.txt";
constexpr char kLosesText[] = "WideCharToMultiByte 65001|GetLocaleInfoW";
constexpr char kLosesSwitch[] = "CreateFileA orvexgdi.dat|ReadFile orvexgdi.dat";

// Calls that list the profiles or look for their other names: what can't be listed is left out without a
// word.
constexpr char kListsProfiles[] = MEMORY FOLDER
    "PathAppendW *.zvp|FindFirstFileW *|FindNextFileW *|CreateFileW profilenames.inf|ReadFile "
    "profilenames.inf|"
    "SetFilePointerEx profilenames.inf|* *.zvp|GetPrinterW|WideCharToMultiByte 0";

// Deliberate: a text ends before its first character that can't be converted.
constexpr char kCutsText[] = "WideCharToMultiByte 0";

struct CallText {
    const char* calls;
    const char* text;
};

// clang-format off
// The message that the failure of a call always logs. A failing write speaks for the engine's call that it is part of.
constexpr CallText kMessages[] = {
    {"calloc 916",              "[Info]  failed to alloc pdm"},
    {"GetPrinterW",             "[Error] GetPrinterName: GetPrinter failed: 0x6"},
    {"OpenPrinterW",            "[Error] OpenPrinterWithAccess: error 5 (983052)|[Error] OpenPrinterWithAccess: error 5 (-2147483648)"},
    {"GetPrinterDataExA *",     "[Error] Could not read label *: 0x5"},
    {"SetPrinterDataExA *",     "[Error] Could not set label *: 0x5"},
    {"CreateFileW media.inf",   "[Error] failed to open media.inf"},
    {"ReadFile media.inf",      "[Error] media.inf empty"},
    {"CreateFileW settings.inf", "[Error] failed to open settings.inf"},
    {"CreateFileA *.zvp",       "[Info]  Error: could not open file [*]|[Error] Error: could not open file [profiles\\*]"},
    {"GetFileSizeEx *.zvp",     "[Info]  error reading file * 0|[Error] error reading file * 0"},
    {"ReadFile *.zvp",          "[Info]  error reading file * 0|[Error] error reading file * 0|[Error] error reading profile *<>19652"},
    {"SetFilePointerEx *.zvp",  "[Error] error reading profile 0<>19652"},
    {"EngCreateBitmap",         "[Error] Could not create surface."},
    {"LoadLibraryW *",          "[Error] Error: could not load hpcrlib.DLL"},
    {"GetProcAddress *",        "[Error] Error: could not get \"*\" address"},
    {"HPCRLIB_JobStart",        "[Error] Error: could not start a job"},
    {"HPCRLIB_PageStart",       "[Error] Error: could not start a page"},
    {"HPCRLIB_RasterBlockStart", "[Error] Error: could not start a raster block"},
    {"HPCRLIB_RasterRow",       "[Error] Error: could not send raster row *"},
    {"HPCRLIB_RasterBlockEnd",  "[Error] Error: could not end a raster block"},
    {"HPCRLIB_PageEnd",         "[Error] Error: could not end the page"},
    {"HPCRLIB_JobEnd",          "[Error] Error: could not end the job 0 *"},
};

// Messages that some failures log, or that follow from one.
constexpr char kOtherMessages[] =
    // out of memory, or no installation folder
    "[Error] Error: could get app path|[Error] GetPrinterName: malloc failed|"
    "[Error] Could not read label list from registry: 0x8|[Error] Error: could not allocate rows of 300 pixels|"
    // labels that are not imported, imported later or read again
    "[Error] Could not * label list * registry: 0x5|[Error] Could not find label list in registry: 0x2|"
    "[Error] Error adding label to registry!|[Error] Could not read label *: 0x2|"
    "[Error] Add Small 25.4 28 0|[Error] Add Strip 25.4 25.4 0|"
    "[Info]  dwPageWidth 300<-254|[Info]  dwPageLength 400<-254|"
    // a profile whose name can't be converted
    "[Info]  read_profile 0 48 *|[Error] error reading profile *!|"
    // no thumbnail
    "[Info]  failed to alloc thumbnail bytes|[Info]  pngencode 83|[Info]  failed to generate png|"
    "[Info]  failed to generate base64 png|[Info]  Clearing thumbnail as not used!|"
    // a page that is not finished: the next one brings the job header, or the engine refuses all that follows
    "[Error] Error: page * res missed!!!!!!!!!!!!!!!!!!!|[Info]  [UI]:Show_Chunked=:1";

// The messages with which a page or a job ends early.
constexpr char kStops[] =
    "[Error] Error: could not start a *|[Error] Error: could not send raster row *|"
    "[Error] Error: could not end *|[Error] Error: could not allocate rows of 300 pixels";

// Calls that belong to an input, by the hook that reads it.
struct InputCalls {
    const char* place;
    const char* calls;
    JobInputs without;
};
constexpr InputCalls kInputCalls[] = {
    {"DrvEnablePDEV 1",     "calloc 916", JobInputs::kNoFirstMode},
    {"DrvEnablePDEV 2",     "calloc 916", JobInputs::kNoSecondMode},
    {"DrvEnablePDEV 1",     MEMORY FOLDER "* media.inf|EnumPrinterKeyW|GetPrinterW|OpenPrinterW|SetPrinterDataExA *", JobInputs::kNoLabels},
    {"DrvStartDoc 1",       MEMORY FOLDER "* test.zvp|WideCharToMultiByte 0|MultiByteToWideChar 0|SetCurrentDirectoryW *", JobInputs::kNoProfile},
    {"DrvStartDoc 1",       "* test.zvp", JobInputs::kNoColors},
    {"DrvSendPage 1",       MEMORY FOLDER "* settings.inf", JobInputs::kNoThumbnail},
    {"DrvSendPage 1",       "HPCRLIB_PageStart", JobInputs::kNoFirstPage},
    {"DrvSendPage 2",       "HPCRLIB_PageStart", JobInputs::kNoSecondPage},
    {"DrvSendPage 3",       "HPCRLIB_PageStart", JobInputs::kNoThirdPage},
    {"*/HPCRLIB_PageStart", MEMORY FOLDER "* settings.inf", JobInputs::kNoChunkPages},
};

// Deliberate: a log that can't be opened keeps its mutex, and a directory that is not known can't be restored.
constexpr CallText kLeftovers[] = {
    {"CreateFileA orvexgdi.txt",                       "open: orvexgdi.txt"},
    {"DrvStartDoc 1 GetCurrentDirectoryW",             "another current directory"},
    {"DrvEndDoc 1 SetCurrentDirectoryW *",             "another current directory"},
};
// clang-format on

using Lines = std::vector<std::string>;

bool MatchesOne(std::string_view text, std::string_view pattern) {
    if (pattern.empty()) return text.empty();
    if (pattern[0] == '*') {
        return MatchesOne(text, pattern.substr(1)) || (!text.empty() && MatchesOne(text.substr(1), pattern));
    }
    return !text.empty() && text[0] == pattern[0] && MatchesOne(text.substr(1), pattern.substr(1));
}

std::string HookOf(const WatchedCall& call) {
    return call.place.substr(0, call.place.find('/'));
}

// Returns the patterns of the message that the failure always logs; null if there is none.
const char* MessageOf(const WatchedCall& call) {
    if (Matches(call.Label(), kUncheckedWrites)) return nullptr;
    const std::string speaker =
        call.function == "WritePrinter" ? call.place.substr(call.place.find('/') + 1) : call.Label();
    for (const CallText& row : kMessages) {
        if (Matches(speaker, row.calls)) return row.text;
    }
    return nullptr;
}

bool AnyMatches(const Lines& lines, std::string_view pattern) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return Matches(line, pattern); });
}

bool IsDocumented(const std::string& line) {
    return Matches(line, kOtherMessages) ||
           std::any_of(std::begin(kMessages), std::end(kMessages),
                       [&](const CallText& row) { return Matches(line, row.text); });
}

// Returns the lines of a log that the other one lacks.
Lines Without(Lines lines, Lines other) {
    std::sort(lines.begin(), lines.end());
    std::sort(other.begin(), other.end());
    Lines left;
    std::set_difference(lines.begin(), lines.end(), other.begin(), other.end(), std::back_inserter(left));
    return left;
}

// Empties the texts that may be cut: the last one in brackets of a log message, the names in a job header.
std::string WithoutNames(std::string text) {
    if (text.starts_with('[')) {
        const size_t last = text.rfind('[');
        return last == 0 ? text : text.substr(0, last);
    }
    for (const std::string_view opening : {"JOB NAME=\"", "PROFILE=\""}) {
        const size_t name = text.find(opening);
        if (name == std::string::npos) continue;
        const size_t start = name + opening.size();
        text.erase(start, text.find('"', start) - start);
    }
    return text;
}

// Returns the lines that differ from each of the others in more than a name.
Lines WithoutCut(Lines lines, const Lines& others) {
    std::erase_if(lines, [&](const std::string& line) {
        return std::any_of(others.begin(), others.end(), [&](const std::string& other) {
            return WithoutNames(line) == WithoutNames(other);
        });
    });
    return lines;
}

const HookRecord* Find(const JobRecord& job, const std::string& hook) {
    const auto found = std::find_if(job.hooks.begin(), job.hooks.end(),
                                    [&](const HookRecord& each) { return each.name == hook; });
    return found == job.hooks.end() ? nullptr : &*found;
}

// The failing call, and what its hook had done before.
struct Failure {
    Failure(const JobRecord& job, size_t number) : call(job.calls[number]), label(call.Label()) {
        for (size_t i = 0; i < number; ++i) {
            const WatchedCall& before = job.calls[i];
            if (HookOf(before) != HookOf(call)) continue;
            if (before.function == "WritePrinter") bytesBefore += before.bytes;
            if (before.Label() == "WriteFile orvexgdi.txt") ++linesBefore;
        }
    }

    const WatchedCall& call;
    std::string label;
    size_t bytesBefore = 0;
    ptrdiff_t linesBefore = 0;
};

// Returns the rule that a hook breaks which ends after the failure, in words; empty if it breaks none.
// `fallback` is the hook in the job of fewer inputs, or `usual` itself.
std::string BrokenRule(const Failure& failure, const HookRecord& hook, const HookRecord& usual,
                       const HookRecord& fallback) {
    const std::string& label = failure.label;
    const bool fails = hook.name == HookOf(failure.call);
    Lines came = Without(Without(hook.log, usual.log), fallback.log);
    Lines gone = Without(Without(usual.log, Without(usual.log, fallback.log)), hook.log);
    if (Matches(label, kCutsText))
        std::tie(came, gone) = std::pair(WithoutCut(came, gone), WithoutCut(gone, came));

    const bool needed = fails && Matches(label, kSetUp);
    const bool onTheWay =
        fails && hook.name == "DrvStartDoc 1" && Matches(label, kWayToEngine) && !came.empty();
    if (hook.accepted && needed) return "succeeds without what it sets up";
    if (!hook.accepted && !needed && !onTheWay) return "refuses";
    const DWORD code = LastErrorOf(failure.call);
    if (!hook.accepted && code != 0 && hook.lastError != code) return "leaves another last error";

    const bool stops = !hook.accepted || AnyMatches(came, kStops);
    std::string output = usual.output;
    if (fails && Matches(label, kUncheckedWrites))
        output.erase(failure.bytesBefore, failure.call.bytes);
    else if (stops)
        output.resize(fails ? failure.bytesBefore : 0);
    if (hook.output != output && hook.output != usual.output && hook.output != fallback.output &&
        !(Matches(label, kCutsText) && WithoutNames(hook.output) == WithoutNames(fallback.output)))
        return "prints other bytes";

    const char* message = fails ? MessageOf(failure.call) : nullptr;
    if (message != nullptr && !AnyMatches(hook.log, message)) return std::string("does not log ") + message;
    if (fails && Matches(label, kLosesText) && came.size() == 1 && gone.size() == 1) return "";
    for (const std::string& line : came) {
        if (!IsDocumented(line)) return "logs " + line;
    }
    const bool mayLose = stops || Matches(label, kLosesSwitch) || (fails && !came.empty()) ||
                         (fails && &fallback != &usual) ||
                         (fails && Matches(label, kLosesMessage) && gone.size() == 1) ||
                         (fails && Matches(hook.name, "DrvEnablePDEV *") && Matches(label, kListsProfiles));
    return gone.empty() || mayLose ? "" : "does not log " + gone.front();
}

// Returns the rules that the hooks of a job break, held against a job in which nothing fails and one of fewer
// inputs.
Lines BrokenRules(const JobRecord& job, size_t failing, const JobRecord& usualJob,
                  const JobRecord& fallbackJob) {
    const Failure failure(job, failing);
    Lines broken;
    bool failed = false;
    for (const HookRecord& hook : job.hooks) {
        const HookRecord* usual = Find(usualJob, hook.name);
        const HookRecord* fallback = Find(fallbackJob, hook.name);
        if (usual == nullptr || fallback == nullptr) return {hook.name + " is called only here"};
        std::string rule;
        const bool fails = hook.name == HookOf(failure.call);
        const ptrdiff_t lines = fails ? failure.linesBefore : std::ssize(hook.log);
        failed = failed || fails;
        if (!failed && !hook.SameAs(*usual))
            rule = "differs before the call";
        else if (fails && !std::equal(usual->log.begin(), usual->log.begin() + lines, hook.log.begin(),
                                      hook.log.begin() + std::min(lines, std::ssize(hook.log))))
            rule = "logs something else before the call";
        else if (failed)
            rule = BrokenRule(failure, hook, *usual, *fallback);
        if (!rule.empty()) broken.push_back(hook.name + " " + rule);
    }
    return broken;
}

}  // namespace

bool Matches(std::string_view text, std::string_view pattern) {
    for (size_t end; (end = pattern.find('|')) != pattern.npos; pattern.remove_prefix(end + 1)) {
        if (MatchesOne(text, pattern.substr(0, end))) return true;
    }
    return MatchesOne(text, pattern);
}

std::vector<std::string> BrokenRules(const JobRecord& job, size_t failing, const CleanJobs& clean) {
    const JobRecord& usual = clean.at(JobInputs::kAll);
    const Lines broken = BrokenRules(job, failing, usual, usual);
    const WatchedCall& call = job.calls[failing];
    const bool fallsBack =
        std::any_of(std::begin(kInputCalls), std::end(kInputCalls), [&](const InputCalls& each) {
            return Matches(call.place, each.place) && Matches(call.Label(), each.calls) &&
                   BrokenRules(job, failing, usual, clean.at(each.without)).empty();
        });
    return fallsBack ? Lines() : broken;
}

std::vector<std::string> DocumentedLeftovers(const WatchedCall& failed) {
    for (const CallText& row : kLeftovers) {
        if (Matches(failed.Label(), row.calls) || Matches(failed.place + " " + failed.Label(), row.calls))
            return {row.text};
    }
    return {};
}

}  // namespace orvex
