// The surroundings of every command of orvexprint: its outputs, the installation, the exit statuses.
#pragma once

#include <filesystem>
#include <optional>
#include <ostream>

#include "tools/host/driver_library.h"
#include "tools/host/engine_library.h"

namespace orvex::tools::print {

// Exit statuses.
constexpr int kExitPrinted = 0;
constexpr int kExitFailed = 1;  // the job did not print
constexpr int kExitUsage = 2;   // the command line is wrong, and nothing was done

// The command's surroundings, which tests replace.
struct PrintEnvironment {
    std::ostream& out;
    std::ostream& error;
    bool terminal = false;  // whether `error` shows progress
    std::filesystem::path programFolder = ProgramFolder();
    std::filesystem::path driver = DefaultDriverFile();
    std::optional<PrintEngine> engine = std::nullopt;  // replaces any library file
};

// The installation beside the program.
constexpr char kInstallationFolder[] = "install";

// Returns the installation folder, that beside the program unless one is given. Throws std::runtime_error if
// it is not there.
std::filesystem::path FindInstallation(const std::filesystem::path& given,
                                       const PrintEnvironment& environment);

// Returns the print engine's library: the installation's own, or else the one beside the program.
std::filesystem::path EngineFile(const std::filesystem::path& installation,
                                 const std::filesystem::path& programFolder);

}  // namespace orvex::tools::print
