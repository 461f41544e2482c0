// The command line of orvexprint.
#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tools/orvexprint/paper_choice.h"
#include "tools/orvexprint/setting_table.h"

namespace orvex::tools::print {

struct JobOptions {
    std::vector<std::filesystem::path> pages;
    bool testPage = false;
    bool fit = false;
    bool smooth = false;
    bool turnToFit = false;       // turn a page by a quarter if it fits only then
    std::optional<int> imageDpi;  // resolution of pages that name none; empty: the job's
    std::string title;            // UTF-8; empty: the file name of the first page

    std::filesystem::path shadow;  // of the spool file that is the only page; empty: none

    std::filesystem::path output;
    std::filesystem::path saveSpool;  // empty: none is written
    bool force = false;               // replaces a file of another kind
    bool strict = false;              // fails where the driver would fall back
    bool dryRun = false;
    bool list = false;

    std::filesystem::path installation;  // empty: the folder beside the program
    std::filesystem::path engine;  // empty: that of the installation or, failing that, beside the program
    std::filesystem::path printerData;  // empty: a printer without labels at first
    std::optional<std::string> language;
    int logMask = 0;  // 0: the log stays as it is
    bool logTree = false;

    // The device mode: the file to start from (empty: the printer's defaults), and the changes to it.
    std::filesystem::path loadMode;
    bool asIs = false;  // the loaded device mode goes to the driver as it is stored, whatever it holds
    std::filesystem::path saveMode;
    std::optional<PaperSize> size;
    bool sizeOfPage = false;  // the label is as large as the first page
    std::optional<std::string> label;
    std::optional<std::string> profile;
    std::vector<std::pair<const Setting*, int>> settings;

    // Returns whether there is a page to draw.
    bool HasPages() const { return testPage || !pages.empty(); }
};

// Parses the arguments after the program's name, UTF-8. If they ask for help or the version, writes it to
// `help` and returns nothing. Throws OptionError for a wrong command line.
std::optional<JobOptions> ParseJobOptions(const std::vector<std::string>& arguments, std::ostream& help);

}  // namespace orvex::tools::print
