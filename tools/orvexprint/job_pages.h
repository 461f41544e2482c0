// The pages of a job and what comes with them: those of files, of a spool file, or the self-test page.
#pragma once

#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "tools/orvexprint/job_options.h"
#include "tools/orvexprint/page_source.h"
#include "tools/orvexprint/spool_job.h"

namespace orvex::tools::print {

class JobPages {
  public:
    // Reads the spool file if the options name one. Throws OptionError or std::runtime_error.
    explicit JobPages(const JobOptions& options);

    size_t Count() const;
    // Opens a page of a file or of the spool file.
    std::unique_ptr<PageSource> Open(size_t page) const;
    // Returns what a page is called: "label.png", "job.spl, page 2".
    std::string NameOf(size_t page) const;

    // Returns the name of the job, UTF-8.
    std::string Title() const;

    bool AreSpooled() const { return spooled_.has_value(); }
    // Returns the device mode that the pages come with, as it is stored; empty if there is none.
    ByteSpan DeviceMode() const { return spooled_ ? spooled_->FirstDeviceMode() : ByteSpan(); }
    // Returns the device mode that the device is reset to before a page; empty if it stays as it is.
    ByteSpan ResetBefore(size_t page) const { return spooled_ ? spooled_->ResetBefore(page) : ByteSpan(); }

    // Makes the fonts that the pages come with usable.
    void LoadFonts();
    // Says what of a spool file is not replayed, a line each.
    void SayLeftOut(std::ostream& out) const;

  private:
    const JobOptions& options_;
    std::optional<SpoolJob> spooled_;
};

}  // namespace orvex::tools::print
