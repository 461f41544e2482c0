// The command line of orvexview.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/orvexview/page_placement.h"

namespace orvex::tools::view {

struct Options {
    std::string file;    // the print file; all names are UTF-8
    std::string prefix;  // of the pictures' names; empty: the print file's name without its extension
    std::vector<uint32_t> pages;  // numbers from 1; empty: all
    bool pictures = true;
    bool inks = false;
    bool layout = false;
    bool raw = false;
    uint32_t scale = 0;  // 0: the longer side gets at most kPreviewSize pixels
    std::optional<Orientation> orientation;
    std::string thumbnail;  // file to write the job's thumbnail to
    std::string verify;     // picture to compare with
};

inline constexpr uint32_t kPreviewSize = 1600;
inline constexpr uint32_t kMaxScale = 1000;

// Parses the arguments after the program's name. If they ask for help or are wrong, prints that, sets the
// exit `status` and returns nothing.
std::optional<Options> ReadOptions(const std::vector<std::string>& arguments, int& status);

}  // namespace orvex::tools::view
