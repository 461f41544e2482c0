#include "tools/orvexprint/spool_job.h"

#include <strings.h>

#include <algorithm>

#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/metafile_page.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kMetafileData = "NT EMF";

// Names the file in errors of its reading.
template <typename Read>
auto Named(const std::string& name, const Read& read) {
    try {
        return read();
    } catch (const SpoolError& error) {
        throw std::runtime_error(name + " " + error.what());
    }
}

// Refuses what would change the pages, or the settings that the job has.
void CheckOptions(const JobOptions& options, const std::string& name, bool hasDeviceMode) {
    if (options.fit || options.smooth || options.turnToFit || options.imageDpi) {
        throw OptionError(
            name +
            " is a spool file, whose pages are drawn where they were; leave out --fit, --smooth, "
            "--rotate and --image-dpi");
    }
    const bool changed = options.size || options.label || options.profile || !options.settings.empty() ||
                         !options.loadMode.empty();
    if (hasDeviceMode && changed) {
        throw OptionError(name +
                          " is a spool file with a device mode of its own; leave out --size, --label, "
                          "--load-devmode, --profile and all settings");
    }
}

bool IsSame(ByteSpan a, ByteSpan b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

}  // namespace

bool SpoolJob::IsOne(const fs::path& path) {
    const std::string start = StartOf(path);
    return IsSpoolFile({reinterpret_cast<const uint8_t*>(start.data()), start.size()}) ||
           (!start.empty() && strcasecmp(Utf8FromPath(path.extension()).c_str(), ".spl") == 0);
}

SpoolJob::SpoolJob(const JobOptions& options)
    : name_(Utf8FromPath(options.pages.front())), bytes_(ReadWholeFile(options.pages.front())) {
    file_ = Named(name_, [&] { return ReadSpoolFile(bytes_); });
    if (!options.shadow.empty()) {
        const std::string shadowName = Utf8FromPath(options.shadow);
        shadowBytes_ = ReadWholeFile(options.shadow);
        shadow_ = Named(shadowName, [&] { return ReadShadowFile(shadowBytes_); });
        if (!shadow_.dataType.empty() && !shadow_.dataType.starts_with(kMetafileData)) {
            throw std::runtime_error(shadowName + " is of a job with data of the type " + shadow_.dataType +
                                     ", which is no spool file of metafiles (NT EMF)");
        }
    }
    CheckOptions(options, name_, !FirstDeviceMode().empty());
}

std::string SpoolJob::Title() const {
    return file_.document.empty() ? shadow_.document : file_.document;
}

std::unique_ptr<PageSource> SpoolJob::OpenPage(size_t page) const {
    return std::make_unique<SpooledPage>(name_ + ", page " + std::to_string(page + 1) + ",",
                                         file_.pages[page].metafile);
}

ByteSpan SpoolJob::FirstDeviceMode() const {
    return shadow_.deviceMode.empty() ? file_.firstDeviceMode : shadow_.deviceMode;
}

ByteSpan SpoolJob::DeviceModeOf(size_t page) const {
    const ByteSpan own = file_.pages[page].deviceMode;
    return own.empty() ? FirstDeviceMode() : own;
}

ByteSpan SpoolJob::ResetBefore(size_t page) const {
    const ByteSpan before = page == 0 ? FirstDeviceMode() : DeviceModeOf(page - 1);
    const ByteSpan next = DeviceModeOf(page);
    return IsSame(before, next) ? ByteSpan() : next;
}

void SpoolJob::LoadFonts() {
    size_t number = 0;
    for (const ByteSpan font : file_.fonts) {
        ++number;
        if (!fonts_.Load(font)) {
            file_.leftOut.push_back("its font " + std::to_string(number) +
                                    " can't be loaded; text in it is drawn in one that this machine has");
        }
    }
}

}  // namespace orvex::tools::print
