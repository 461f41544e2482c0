// A job out of a spool file, with its own settings.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/host/metafile_player.h"
#include "tools/orvexprint/job_options.h"
#include "tools/orvexprint/page_source.h"
#include "tools/orvexprint/shadow_file.h"
#include "tools/orvexprint/spool_file.h"

namespace orvex::tools::print {

class SpoolJob {
  public:
    // Returns whether a file is a spool file, by its first bytes or by its name.
    static bool IsOne(const std::filesystem::path& path);

    // Reads the job of `options.pages`, which is a single file, and its shadow file. Throws
    // std::runtime_error, which names the file, and OptionError for options that are not for such jobs.
    explicit SpoolJob(const JobOptions& options);

    // Returns the name of the document, UTF-8; empty if none is known.
    std::string Title() const;
    // Returns in words what is not replayed, a line each.
    const std::vector<std::string>& LeftOut() const { return file_.leftOut; }

    size_t PageCount() const { return file_.pages.size(); }
    std::unique_ptr<PageSource> OpenPage(size_t page) const;

    // Returns the device mode that the job begins with, as it is stored; empty if there is none.
    ByteSpan FirstDeviceMode() const;
    // Returns the device mode that the device is reset to before a page; empty if it stays as it is.
    ByteSpan ResetBefore(size_t page) const;

    // Makes the job's fonts usable. LeftOut() has those that can't be.
    void LoadFonts();

  private:
    // Returns the device mode that is in force on a page; empty if there is none.
    ByteSpan DeviceModeOf(size_t page) const;

    std::string name_;
    std::vector<uint8_t> bytes_;
    SpoolFile file_;
    std::vector<uint8_t> shadowBytes_;
    ShadowFile shadow_;
    LoadedFonts fonts_;
};

}  // namespace orvex::tools::print
