#include "tests/system/faults/documented_answers.h"

#include <algorithm>
#include <regex>

namespace orvex {

namespace {

// Patterns of calls, as WatchedCall::Label() names them.
#define MEMORY "malloc *|calloc *|realloc *|"
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
constexpr const char* kOtherMessages[] = {
    // out of memory, or no installation folder
    "[Error] Error: could get app path",
    "[Error] GetPrinterName: malloc failed",
    "[Error] Could not read label list from registry: 0x8",
    "[Error] Error: could not allocate rows of 300 pixels",
    // labels that are not imported, imported later or read again
    "[Error] Could not * label list * registry: 0x5",
    "[Error] Could not find label list in registry: 0x2",
    "[Error] Error adding label to registry!",
    "[Error] Could not read label *: 0x2",
    "[Error] Add Small 25.4 28 0",
    "[Error] Add Strip 25.4 25.4 0",
    "[Info]  dwPageWidth 300<-254",
    "[Info]  dwPageLength 400<-254",
    // a profile whose name can't be converted
    "[Info]  read_profile 0 48 *",
    "[Error] error reading profile *!",
    // no thumbnail
    "[Info]  failed to alloc thumbnail bytes",
    "[Info]  pngencode 83",
    "[Info]  failed to generate png",
    "[Info]  failed to generate base64 png",
    "[Info]  Clearing thumbnail as not used!",
    // a page that is not finished: the next one brings the job header, or the engine refuses all that follows
    "[Error] Error: page * res missed!!!!!!!!!!!!!!!!!!!",
    "[Info]  [UI]:Show_Chunked=:1",
};

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

// Returns the label, or for a write to the printer the engine's call that it is part of.
std::string SpeakerOf(const WatchedCall& call) {
    const size_t entry = call.place.find('/');
    return call.function == "WritePrinter" && entry != std::string::npos ? call.place.substr(entry + 1)
                                                                         : call.Label();
}

// Returns the patterns of the message that the failure always logs; null if there is none.
const char* MessageOf(const WatchedCall& call) {
    if (Matches(call.Label(), kUncheckedWrites)) return nullptr;
    const auto row = std::find_if(std::begin(kMessages), std::end(kMessages),
                                  [&](const CallText& each) { return Matches(SpeakerOf(call), each.calls); });
    return row == std::end(kMessages) ? nullptr : row->text;
}

bool IsDocumented(const std::string& line) {
    return std::any_of(std::begin(kMessages), std::end(kMessages),
                       [&](const CallText& row) { return Matches(line, row.text); }) ||
           std::any_of(std::begin(kOtherMessages), std::end(kOtherMessages),
                       [&](const char* each) { return Matches(line, each); });
}

// Returns the lines of a log that the other one lacks.
Lines Without(Lines lines, Lines other) {
    std::sort(lines.begin(), lines.end());
    std::sort(other.begin(), other.end());
    Lines left;
    std::set_difference(lines.begin(), lines.end(), other.begin(), other.end(), std::back_inserter(left));
    return left;
}

// Empties the texts that may be cut: names in the job header, and what ends a message in brackets.
std::string WithoutNames(const std::string& text) {
    static const std::regex kNames(R"re((JOB NAME=|PROFILE=)"[^"]*|\[[^\]]*\]$)re");
    return std::regex_replace(text, kNames, "$1");
}

const HookRecord* Find(const JobRecord& job, const std::string& hook) {
    const auto found = std::find_if(job.hooks.begin(), job.hooks.end(),
                                    [&](const HookRecord& each) { return each.name == hook; });
    return found == job.hooks.end() ? nullptr : &*found;
}

// One job with a failing call, compared with a job of the inputs that it may fall back on.
class Comparison {
  public:
    Comparison(const JobRecord& job, size_t failing, const CleanJobs& clean, JobInputs fallback)
        : job_(job),
          call_(job.calls[failing]),
          clean_(clean),
          usual_(clean.at(JobInputs::kAll)),
          fallback_(clean.at(fallback)),
          fallsBack_(fallback != JobInputs::kAll) {
        for (size_t i = 0; i < failing; ++i) {
            const WatchedCall& before = job.calls[i];
            if (HookOf(before) != HookOf(call_)) continue;
            if (before.function == "WritePrinter") bytesBefore_ += before.bytes;
            if (before.Label() == "WriteFile orvexgdi.txt") ++linesBefore_;
        }
    }

    Lines BrokenRules() {
        bool failed = false;
        for (const HookRecord& hook : job_.hooks) {
            const HookRecord* usual = Find(usual_, hook.name);
            const HookRecord* fallback = Find(fallback_, hook.name);
            Require(usual != nullptr && fallback != nullptr, hook, "is not called otherwise");
            if (!broken_.empty()) return broken_;
            const bool failsHere = hook.name == HookOf(call_);
            failed = failed || failsHere;
            if (!failed) {
                Require(hook.SameAs(*usual), hook, "differs before the call");
                continue;
            }
            came_ = Without(Without(hook.log, usual->log), fallback->log);
            gone_ = Without(usual->log, Without(usual->log, fallback->log));
            gone_ = Without(gone_, hook.log);
            if (failsHere) CheckFailingHook(hook, *usual);
            Require(failsHere || hook.accepted, hook, "refuses");
            CheckOutput(hook, *usual, *fallback, failsHere);
            CheckLog(hook, failsHere);
        }
        Require(failed, job_.hooks.back(), "is the last hook: the one with the call is missing");
        return broken_;
    }

  private:
    void Require(bool rule, const HookRecord& hook, const std::string& text) {
        if (!rule) broken_.push_back(hook.name + " " + text);
    }

    bool Complains() const {
        return std::any_of(came_.begin(), came_.end(),
                           [](const std::string& line) { return line.starts_with("[Error]"); });
    }

    void CheckFailingHook(const HookRecord& hook, const HookRecord& usual) {
        const std::string label = call_.Label();
        const size_t lines = std::min(linesBefore_, hook.log.size());
        Require(lines == linesBefore_ &&
                    std::equal(hook.log.begin(), hook.log.begin() + static_cast<ptrdiff_t>(lines),
                               usual.log.begin()),
                hook, "logs something else before the call");
        const bool onTheWay = hook.name == "DrvStartDoc 1" && Matches(label, kWayToEngine) && Complains();
        Require(hook.accepted ? !Matches(label, kSetUp) : Matches(label, kSetUp) || onTheWay, hook,
                hook.accepted ? "succeeds without what it sets up" : "refuses");
        const DWORD code = LastErrorOf(call_);
        Require(hook.accepted || code == 0 || hook.lastError == code, hook, "leaves another last error");
        if (const char* message = MessageOf(call_)) {
            Require(std::any_of(hook.log.begin() + static_cast<ptrdiff_t>(lines), hook.log.end(),
                                [&](const std::string& line) { return Matches(line, message); }),
                    hook, std::string("does not log \"") + message + "\"");
        }
    }

    void CheckOutput(const HookRecord& hook, const HookRecord& usual, const HookRecord& fallback,
                     bool failsHere) {
        if (hook.output == fallback.output || hook.output == usual.output) return;
        if (Matches(call_.Label(), kCutsText) && WithoutNames(hook.output) == WithoutNames(fallback.output))
            return;
        if (failsHere && Matches(call_.Label(), kUncheckedWrites)) {
            Require(hook.output == std::string(usual.output).erase(bytesBefore_, call_.bytes), hook,
                    "lacks more than the write that failed");
        } else if (Complains() || !hook.accepted) {
            Require(hook.output == usual.output.substr(0, failsHere ? bytesBefore_ : 0), hook,
                    "prints on in spite of its error");
        } else {
            Require(false, hook,
                    "prints " + std::to_string(hook.output.size()) + " other bytes, not " +
                        std::to_string(usual.output.size()));
        }
    }

    // Leaves out the lines that differ from one of the others only in a name.
    static void EraseCut(Lines& lines, const Lines& others) {
        std::erase_if(lines, [&](const std::string& line) {
            return std::any_of(others.begin(), others.end(), [&](const std::string& other) {
                return WithoutNames(line) == WithoutNames(other);
            });
        });
    }

    void CheckLog(const HookRecord& hook, bool failsHere) {
        const std::string label = call_.Label();
        if (Matches(label, kCutsText)) {
            const Lines came = came_;
            EraseCut(came_, gone_);
            EraseCut(gone_, came);
        }
        if (failsHere && Matches(label, kLosesText) && came_.size() == 1 && gone_.size() == 1) return;
        for (const std::string& line : came_) Require(IsDocumented(line), hook, "logs \"" + line + "\"");
        if (gone_.empty() || !hook.accepted || Complains()) return;
        const bool mayLose =
            (failsHere && Matches(label, kLosesMessage) && gone_.size() == 1) || (failsHere && fallsBack_) ||
            (failsHere && !came_.empty()) ||
            (failsHere && hook.name.starts_with("DrvEnablePDEV") && Matches(label, kListsProfiles)) ||
            Matches(label, kLosesSwitch);
        Require(mayLose, hook, "does not log \"" + gone_.front() + "\"");
    }

    const JobRecord& job_;
    const WatchedCall& call_;
    const CleanJobs& clean_;
    const JobRecord& usual_;
    const JobRecord& fallback_;
    const bool fallsBack_;
    size_t bytesBefore_ = 0;  // printed by the hook when the call came
    size_t linesBefore_ = 0;  // logged by it
    Lines came_, gone_;       // in the log of the hook that is being checked
    Lines broken_;
};

}  // namespace

bool Matches(std::string_view text, std::string_view pattern) {
    for (size_t end; (end = pattern.find('|')) != pattern.npos; pattern.remove_prefix(end + 1)) {
        if (MatchesOne(text, pattern.substr(0, end))) return true;
    }
    return MatchesOne(text, pattern);
}

std::vector<std::string> BrokenRules(const JobRecord& job, size_t failing, const CleanJobs& clean) {
    const Lines broken = Comparison(job, failing, clean, JobInputs::kAll).BrokenRules();
    if (broken.empty()) return {};
    const WatchedCall& call = job.calls[failing];
    for (const InputCalls& each : kInputCalls) {
        if (!Matches(call.place, each.place) || !Matches(call.Label(), each.calls)) continue;
        if (Comparison(job, failing, clean, each.without).BrokenRules().empty()) return {};
    }
    return broken;
}

std::vector<std::string> DocumentedLeftovers(const WatchedCall& failed) {
    for (const CallText& row : kLeftovers) {
        if (Matches(failed.Label(), row.calls) || Matches(failed.place + " " + failed.Label(), row.calls))
            return {row.text};
    }
    return {};
}

}  // namespace orvex
