#include "tools/orvexprint/job_files.h"

#include <fstream>

#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/device_mode_file.h"
#include "tools/orvexprint/page_source.h"
#include "tools/orvexprint/spool_file.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kPrintFileStart = "\x1B%-12345X@PJL";

bool IsPrintFile(const fs::path& path) {
    std::string start(kPrintFileStart.size(), '\0');
    std::ifstream(path, std::ios::binary).read(start.data(), static_cast<std::streamsize>(start.size()));
    return start == kPrintFileStart;
}

bool IsDeviceMode(const fs::path& path) {
    try {
        AsDriversOwn(ReadWholeFile(path), "");
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

bool IsSpoolFileAt(const fs::path& path) {
    const std::string start = StartOf(path);
    return IsSpoolFile({reinterpret_cast<const uint8_t*>(start.data()), start.size()});
}

// Refuses to replace a file of another kind, which is more likely a slip of the hand than meant.
void RefuseReplacing(const char* option, const fs::path& path, bool (*isOfItsKind)(const fs::path&),
                     const char* kind) {
    std::error_code ignored;
    if (path.empty() || !fs::is_regular_file(path, ignored) || fs::file_size(path, ignored) == 0) return;
    if (isOfItsKind(path)) return;
    throw OptionError(std::string(option) + " " + Utf8FromPath(path) + " exists and is no " + kind +
                      "; --force replaces it");
}

}  // namespace

void MakeAbsolute(JobOptions& options) {
    for (fs::path& page : options.pages) {
        if (!IsStandardInput(page)) page = AbsolutePath(page);
    }
    if (!IsStandardOutput(options.output) && !options.output.empty())
        options.output = AbsolutePath(options.output);
    for (fs::path* path : {&options.installation, &options.engine, &options.printerData, &options.loadMode,
                           &options.saveMode, &options.shadow, &options.saveSpool}) {
        if (!path->empty()) *path = AbsolutePath(*path);
    }
}

void CheckOutputs(const JobOptions& options) {
    std::vector<NamedFile> inputs = {{"--load-devmode", FileOfDeviceMode(options.loadMode)},
                                     {"--engine", options.engine},
                                     {"--shd", options.shadow}};
    for (const fs::path& page : options.pages) inputs.push_back({"the page", page});
    std::error_code ignored;
    const std::string profile = options.profile.value_or("");
    if (fs::is_regular_file(PathFromUtf8(profile), ignored))
        inputs.push_back({"--profile", AbsolutePath(PathFromUtf8(profile))});
    const NamedFile outputs[] = {{"-o", options.output},
                                 {"--save-devmode", options.saveMode},
                                 {"--save-spl", options.saveSpool},
                                 {"--printer-data", options.printerData}};
    RefuseSharedFiles(outputs, inputs);
    if (options.force) return;
    RefuseReplacing("-o", options.output, &IsPrintFile, "print file");
    RefuseReplacing("--save-devmode", options.saveMode, &IsDeviceMode, "device mode of this driver");
    RefuseReplacing("--save-spl", options.saveSpool, &IsSpoolFileAt, "spool file");
}

}  // namespace orvex::tools::print
