// The command orvexprint: everything behind its main function.
#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/host/driver_library.h"
#include "tools/host/engine_library.h"

namespace orvex::tools::print {

// Exit statuses.
constexpr int kExitPrinted = 0;
constexpr int kExitFailed = 1;  // the job did not print
constexpr int kExitUsage = 2;   // the command line is wrong; nothing was done

// Where the command finds things and talks to.
struct PrintEnvironment {
    std::ostream& out;
    std::ostream& error;
    bool terminal = false;  // whether `error` is one that shows progress
    std::filesystem::path programFolder = ProgramFolder();
    std::filesystem::path driver = DefaultDriverFile();
    std::optional<PrintEngine> engine = std::nullopt;  // in place of any file
};

// Runs the command with the arguments behind its name, UTF-8. Every failure is told on `error` in words.
// Returns the exit status: kExitPrinted only if the job printed, or what else was asked for was done.
int RunOrvexPrint(const std::vector<std::string>& arguments, const PrintEnvironment& environment);

}  // namespace orvex::tools::print
