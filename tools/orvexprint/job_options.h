// What a command line asks for.
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
    std::optional<int> imageDpi;  // of pages that name no resolution; none: the job's
    std::string title;            // UTF-8; empty: the first page's name

    std::filesystem::path output;
    bool dryRun = false;
    bool list = false;

    std::filesystem::path installation;  // empty: the one beside the program
    std::filesystem::path engine;        // empty: the installation's, or the one beside the program
    std::filesystem::path printerData;   // empty: a printer that knows no labels yet
    std::optional<std::string> language;
    int logMask = 0;  // 0: the log stays as it is

    // The device mode: a stored one to begin with, and what is changed in it.
    std::filesystem::path loadMode;
    std::filesystem::path saveMode;
    std::optional<PaperSize> size;
    std::optional<std::string> label;
    std::optional<std::string> profile;
    std::vector<std::pair<const Setting*, int>> settings;

    // Whether there is anything to be drawn.
    bool HasPages() const { return testPage || !pages.empty(); }
};

// Reads the arguments behind the program's name, UTF-8. None when only help was asked for, which goes to
// `help`. Throws OptionError for whatever is wrong.
std::optional<JobOptions> ParseJobOptions(const std::vector<std::string>& arguments, std::ostream& help);

}  // namespace orvex::tools::print
