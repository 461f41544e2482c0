// The labels, profiles and defaults of an installed printer, and the settings of a job as its driver
// validates them. The answers come from the driver's own code, which uses the session's spooler and
// installation folder.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "driver/config/device_mode.h"
#include "driver/config/label_sizes.h"
#include "tools/host/driver_session.h"
#include "tools/orvexprint/job_options.h"

namespace orvex::tools::print {

struct InstalledProfile {
    std::string fileName;     // UTF-8
    std::string displayName;  // UTF-8
};

class PrinterSettings {
  public:
    // Attaches this program to the session's spooler and shell. The session must outlive the settings.
    // Reading the defaults imports the installation's labels into a printer that has none.
    explicit PrinterSettings(DriverSession& session);

    const std::vector<LabelSize>& Labels() const { return labels_; }
    // Returns the printer's defaults, as the driver builds them before it merges a device mode into them.
    const DeviceMode& Defaults() const { return defaults_; }
    // Returns the printer's handle, for calls of the driver's own code.
    HANDLE Printer() const { return session_.PrinterHandle(); }
    std::vector<InstalledProfile> Profiles() const;

    // Returns the device mode that the options ask for, as it is passed to the driver. A profile outside the
    // installation is installed for as long as the session lives. Throws OptionError for an unknown label or
    // profile, and std::runtime_error for a file that is not a device mode.
    DeviceMode Requested(const JobOptions& options) const;

    // Returns the device mode as the driver uses it: merged into the defaults and validated. Bytes that it
    // says to have, but has not, count as zero.
    DeviceMode Effective(std::span<const uint8_t> requested) const;

  private:
    DriverSession& session_;
    DeviceMode defaults_ = {};
    std::vector<LabelSize> labels_;
};

// Returns in words why the driver refuses a profile of the installation, read up to its colors; empty if it
// does not.
std::string ProfileProblemText(const std::string& name, const std::filesystem::path& installation);

// Says, a line each, what a job lacks that the driver replaces without a word: the settings file, the
// profiles, the profile of the job. `mode` is validated, as the driver has it; `lentProfile` is the file that
// is installed for this run, if there is one.
std::vector<std::string> FallbacksOf(const DeviceMode& mode, const std::filesystem::path& installation,
                                     const std::filesystem::path& lentProfile);

}  // namespace orvex::tools::print
