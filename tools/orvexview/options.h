// The command line of orvexview.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/common/command_line.h"
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
    bool force = false;  // replaces files that orvexview has not made
    uint32_t scale = 0;  // 0: as PreviewScale() finds it
    std::optional<Orientation> orientation;
    std::string thumbnail;                // file to write the job's thumbnail to
    std::string verify;                   // picture to compare with
    std::string profile;                  // to compare inks through; empty: colors are compared
    size_t bandBytes = size_t{64} << 20;  // of a page's pictures in memory at a time; tests make it small
};

inline constexpr uint32_t kPreviewSize = 1600;
inline constexpr uint64_t kMaxPreviewPixels = 8'000'000;
inline constexpr uint32_t kMaxScale = 1000;

// Returns the scale of a picture of a page: its longer side gets at most kPreviewSize pixels or, if it is
// longer than the head is wide, as many as that width needs of them; and the whole gets at most
// kMaxPreviewPixels.
uint32_t PreviewScale(uint32_t width, uint32_t height, uint32_t headRows);

// Parses the arguments after the program's name. If they ask for help or the version, writes that to `out`
// and returns nothing. Throws OptionError.
std::optional<Options> ReadOptions(const std::vector<std::string>& arguments, std::ostream& out);

}  // namespace orvex::tools::view
