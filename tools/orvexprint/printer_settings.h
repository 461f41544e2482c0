// What an installed printer offers, and what its driver makes of a job's settings. The answers come from the
// code that the driver itself is made of, through the session's spooler and installation folder.
#pragma once

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
    // Attaches this program to the session's spooler and shell; the session must outlive the settings. The
    // first question for defaults imports the installation's labels into a printer that has none.
    explicit PrinterSettings(DriverSession& session);

    // The printer's default device mode.
    const DeviceMode& Defaults() const { return defaults_; }
    const std::vector<LabelSize>& Labels() const { return labels_; }
    std::vector<InstalledProfile> Profiles() const;

    // The device mode that the options ask for, to be handed to the driver. Throws OptionError for a label or
    // profile that there is not, std::runtime_error for a device mode file that is none.
    DeviceMode Requested(const JobOptions& options) const;

    // What the driver makes of a device mode: merged into the defaults and validated.
    DeviceMode Effective(const DeviceMode& requested) const;

  private:
    DriverSession& session_;
    DeviceMode defaults_ = {};
    std::vector<LabelSize> labels_;
};

// Reads a device mode file: the whole record, by its size, its inner sizes and its signature. Throws
// std::runtime_error.
DeviceMode LoadDeviceMode(const std::filesystem::path& path);

}  // namespace orvex::tools::print
