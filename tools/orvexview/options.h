// The command line of orvexview.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/orvexview/page_placement.h"

namespace orvex::tools::view {

struct Options {
    std::string file;             // the print file; this and all other names are UTF-8
    std::string prefix;           // of the pictures; empty: the print file's name without its extension
    std::vector<uint32_t> pages;  // numbers from 1; empty: all
    bool pictures = true;
    bool inks = false;
    bool layout = false;
    bool raw = false;
    uint32_t scale = 0;  // 0: so that the longer side has at most kPreviewSize pixels
    std::optional<Orientation> orientation;
    std::string thumbnail;  // file to write the job's thumbnail to
    std::string verify;     // picture to compare with
};

inline constexpr uint32_t kPreviewSize = 1600;
inline constexpr uint32_t kMaxScale = 1000;

// Reads the arguments, the program's name not among them. Prints help or a complaint itself and returns
// nothing then, with the exit status in `status`.
std::optional<Options> ReadOptions(std::vector<std::string> arguments, int& status);

}  // namespace orvex::tools::view
