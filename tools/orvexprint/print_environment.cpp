#include "tools/orvexprint/print_environment.h"

#include <stdexcept>

#include "tools/common/wide_text.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr char kEngineFile[] = "hpcrlib.dll";

}  // namespace

fs::path FindInstallation(const fs::path& given, const PrintEnvironment& environment) {
    fs::path folder = given.empty() ? environment.programFolder / kInstallationFolder : given;
    std::error_code failure;
    if (fs::is_directory(folder, failure)) return folder;
    throw std::runtime_error("the installation folder " + Utf8FromPath(folder) + " is not there");
}

fs::path EngineFile(const fs::path& installation, const fs::path& programFolder) {
    std::error_code failure;
    const fs::path installed = installation / kEngineFile;
    return fs::is_regular_file(installed, failure) ? installed : programFolder / kEngineFile;
}

}  // namespace orvex::tools::print
