#include "tools/orvexprint/installation_check.h"

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "tools/common/command_line.h"
#include "tools/common/file_version.h"
#include "tools/common/product_version.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/host/driver_session.h"
#include "tools/orvexprint/folder_rights.h"
#include "tools/orvexprint/job_options.h"
#include "tools/orvexprint/log_switch.h"
#include "tools/orvexprint/printer_settings.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDescription =
    "Checks whether an installation is sound: its files and their versions, each profile as the driver's "
    "reader takes it, each\n"
    "line of settings.inf and media.inf, the entry points of the print engine's library, the log's folder "
    "and who may write\n"
    "there and into the installation folder, and a trace that was left on.";

constexpr const char* kExamples =
    "A line each: \"ok\", \"??\" for what works but is hardly meant so, \"!!\" for what does not work; and "
    "what to do.\n"
    "\n"
    "Exit status: 0 when nothing is marked \"!!\"; 1 when something is; 2 for a wrong command line.";

struct CheckOptions {
    fs::path installation;
    fs::path engine;
    bool json = false;
};

// Returns nothing when the arguments ask for help.
std::optional<CheckOptions> ReadCheckOptions(const std::vector<std::string>& arguments, std::ostream& out) {
    CommandLine line("orvexprint", kDescription, "--check [options]", kExamples, "--check --help");
    line.Flag("--check", "Checks the installation instead of printing");
    line.Text("--install", "DIR", "The installation folder; default: install beside orvexprint");
    line.Text("--engine", "FILE", "The print engine's library, if it is elsewhere");
    line.Flag("--json", "JSON: an array of findings");
    if (!line.Read(arguments, out)) return std::nullopt;
    const auto path = [&](const char* option) {
        const std::string text = line.Value(option).value_or("");
        return text.empty() ? fs::path() : AbsolutePath(PathFromUtf8(text));
    };
    return CheckOptions{path("--install"), path("--engine"), line.Has("--json")};
}

// The checks, one after the other.
class InstallationCheck {
  public:
    InstallationCheck(const CheckOptions& options, const PrintEnvironment& environment)
        : environment_(environment),
          folder_(options.installation.empty() ? environment.programFolder / kInstallationFolder
                                               : options.installation),
          engine_(options.engine.empty() ? EngineFile(folder_, environment.programFolder) : options.engine) {}

    std::vector<Finding> Findings() {
        CheckDriver();
        CheckEngine();
        CheckFolder();
        Take(CheckSettings(folder_ / "settings.inf"));
        Take(CheckMedia(folder_ / "media.inf"));
        CheckProfiles();
        CheckLog();
        return std::move(findings_);
    }

  private:
    void Add(Verdict verdict, const std::string& thing, std::string text, std::string advice = {}) {
        findings_.push_back({verdict, thing, std::move(text), std::move(advice)});
    }
    void Take(std::vector<Finding> findings) {
        findings_.insert(findings_.end(), findings.begin(), findings.end());
    }

    void CheckDriver() {
        const std::string name = Utf8FromPath(environment_.driver);
        try {
            driver_ = std::make_unique<DriverLibrary>(environment_.driver);
            const std::string version = FileVersion(environment_.driver);
            Add(Verdict::kGood, name, "the driver, version " + (version.empty() ? kProductVersion : version));
        } catch (const DriverError& error) {
            Add(Verdict::kBad, name, error.what(), "install the driver again");
        }
    }

    void CheckEngine() {
        const std::string name = Utf8FromPath(engine_);
        const std::u16string path = WindowsPath(engine_);
        const HMODULE library = LoadLibraryW(AsWchar(path));
        if (library == nullptr) {
            return Add(
                Verdict::kBad, name,
                "the print engine's library can't be loaded (error " + std::to_string(GetLastError()) + ")",
                "install it; no job prints without it");
        }
        std::string missing;
        for (const PrintEngineExport& entry : kPrintEngineExports) {
            if (GetProcAddress(library, entry.name) == nullptr)
                missing += (missing.empty() ? "" : ", ") + std::string(entry.name);
        }
        FreeLibrary(library);
        const std::string version = FileVersion(engine_);
        const std::string text =
            "the print engine's library" + (version.empty() ? "" : ", version " + version);
        if (missing.empty()) return Add(Verdict::kGood, name, text + ", with every entry point");
        Add(Verdict::kBad, name, text + ", lacks " + missing, "install the one that belongs to this driver");
    }

    void CheckWriters(const fs::path& folder, const std::string& what, const std::string& consequence) {
        const std::string name = Utf8FromPath(folder);
        const std::vector<std::string> writers = WritersOf(folder);
        std::string list;
        for (const std::string& writer : writers) list += (list.empty() ? "" : ", ") + writer;
        const bool everybody = std::any_of(writers.begin(), writers.end(), IsEverybody);
        const std::string text =
            what + (list.empty() ? ": who may write there can't be told" : ", written by " + list);
        if (list.empty() || everybody) return Add(Verdict::kDoubtful, name, text, consequence);
        Add(Verdict::kGood, name, text);
    }

    void CheckFolder() {
        std::error_code ignored;
        if (!fs::is_directory(folder_, ignored)) {
            return Add(Verdict::kBad, Utf8FromPath(folder_), "the installation folder is not there",
                       "install it, or name it with --install");
        }
        CheckWriters(folder_, "the installation folder",
                     "let administrators alone write there: the driver loads a library from it");
    }

    void CheckProfiles() {
        const fs::path profiles = folder_ / "profiles";
        std::error_code ignored;
        if (driver_ == nullptr || !fs::is_directory(profiles, ignored)) {
            return Add(Verdict::kDoubtful, Utf8FromPath(profiles), "there are no profiles",
                       "install some; the built-in conversion prints instead");
        }
        DriverSession session({.driver = environment_.driver, .installation = folder_, .engine = engine_});
        const std::vector<InstalledProfile> installed = PrinterSettings(session).Profiles();
        for (const InstalledProfile& profile : installed) {
            const std::string name = Utf8FromPath(profiles / PathFromUtf8(profile.fileName));
            const std::string problem = ProfileProblemText(profile.fileName, folder_);
            if (problem.empty()) {
                Add(Verdict::kGood, name, "\"" + profile.displayName + "\"");
            } else {
                Add(Verdict::kBad, name, "\"" + profile.displayName + "\": " + problem,
                    "install it again; the built-in conversion prints instead");
            }
        }
        if (installed.empty())
            Add(Verdict::kDoubtful, Utf8FromPath(profiles), "has no profile",
                "install some; the built-in conversion prints instead");
        if (!fs::is_regular_file(folder_ / "profilenames.inf", ignored)) {
            Add(Verdict::kDoubtful, Utf8FromPath(folder_ / "profilenames.inf"), "is not there",
                "install it; profiles have their own names, in one language");
        }
    }

    void CheckLog() {
        if (driver_ == nullptr) return;
        const fs::path folder = driver_->LogPath().parent_path();
        std::error_code ignored;
        if (fs::is_directory(folder, ignored)) {
            CheckWriters(
                folder, "the log's folder",
                "let those who print and administrators write there, and nobody else turn the log on");
        } else {
            Add(Verdict::kGood, Utf8FromPath(folder),
                "the log's folder is not there, so nothing is ever logged");
        }
        const std::string warning = LogLeftOn(*driver_);
        if (!warning.empty())
            Add(Verdict::kDoubtful, Utf8FromPath(driver_->LogControlPath()), warning,
                "remove it when the log is not needed");
    }

    const PrintEnvironment& environment_;
    fs::path folder_;
    fs::path engine_;
    std::unique_ptr<DriverLibrary> driver_;
    std::vector<Finding> findings_;
};

const char* MarkOf(Verdict verdict) {
    return verdict == Verdict::kGood ? "ok" : verdict == Verdict::kDoubtful ? "??" : "!!";
}

void WriteJson(const std::vector<Finding>& findings, std::ostream& out) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Finding& finding : findings) {
        const char* verdict = finding.verdict == Verdict::kGood       ? "good"
                              : finding.verdict == Verdict::kDoubtful ? "doubtful"
                                                                      : "bad";
        list.push_back({{"verdict", verdict},
                        {"thing", finding.thing},
                        {"text", finding.text},
                        {"advice", finding.advice}});
    }
    out << list.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

}  // namespace

bool IsCheckCommand(const std::vector<std::string>& arguments) {
    return std::find(arguments.begin(), arguments.end(), "--check") != arguments.end();
}

int RunCheckCommand(const std::vector<std::string>& arguments, const PrintEnvironment& environment) {
    const std::optional<CheckOptions> options = ReadCheckOptions(arguments, environment.out);
    if (!options) return kExitPrinted;
    const std::vector<Finding> findings = InstallationCheck(*options, environment).Findings();
    if (options->json) {
        WriteJson(findings, environment.out);
    } else {
        for (const Finding& finding : findings) {
            environment.out << MarkOf(finding.verdict) << " " << finding.thing << ": " << finding.text
                            << (finding.advice.empty() ? "" : "; ") << finding.advice << "\n";
        }
    }
    const bool bad = std::any_of(findings.begin(), findings.end(),
                                 [](const Finding& finding) { return finding.verdict == Verdict::kBad; });
    return bad ? kExitFailed : kExitPrinted;
}

}  // namespace orvex::tools::print
