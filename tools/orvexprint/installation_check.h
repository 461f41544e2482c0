// orvexprint --check: whether an installation is sound, one finding a line.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "tools/orvexprint/print_environment.h"

namespace orvex::tools::print {

enum class Verdict { kGood, kDoubtful, kBad };

// The result of one check, with advice unless it is good.
struct Finding {
    Verdict verdict = Verdict::kGood;
    std::string thing;      // "settings.inf", "the print engine"
    std::string text = {};  // what was found
    std::string advice = {};
};

// Check the parts of an installation: each line of settings.inf against what the driver reads of it, and each
// line of media.inf as the driver's import takes it.
std::vector<Finding> CheckSettings(const std::filesystem::path& file);
std::vector<Finding> CheckMedia(const std::filesystem::path& file);

// Returns whether the arguments ask for the check instead of a job.
bool IsCheckCommand(const std::vector<std::string>& arguments);

// Checks the installation that the arguments name, and prints the findings. Returns the exit status:
// kExitPrinted when nothing is bad, else kExitFailed. Throws OptionError.
int RunCheckCommand(const std::vector<std::string>& arguments, const PrintEnvironment& environment);

}  // namespace orvex::tools::print
