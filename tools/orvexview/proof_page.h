// The parts of a proof: one page for a browser that needs nothing else, not even a network.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/orvexview/ink_use.h"
#include "tools/orvexview/page_check.h"

namespace orvex::tools::view {

// All pages that are equal, with what is known about them.
struct ProofSheet {
    std::vector<uint32_t> pages;  // numbers from 1, ascending
    const PrintedPage* page = nullptr;
    PagePlacement placement;
    std::array<double, kInks> means = {};
    PageFacts facts;
    bool hasPicture = false;
    bool fromFirst = false;  // the picture has the differences from the first sheet's
    std::vector<std::string> warnings;
};

// Returns "page 3" or "pages 1 to 4, 7".
std::string PagesText(std::span<const uint32_t> numbers);

// Returns the beginning up to the viewer. `name` is the print file's, UTF-8.
std::string ProofBeginning(const PrintFile& file, std::string_view name);
// Returns a picture, of the number of its sheet. It is not shown before its page is.
std::string ProofPicture(size_t sheet, std::span<const uint8_t> png);
// Returns everything after the pictures. `limit` is a total of inks in percent; `problem` is empty for a
// sound print file.
std::string ProofEnd(const PrintFile& file, std::span<const ProofSheet> sheets, double limit,
                     std::string_view problem);

// Returns a drawing of the page's place under the print head.
std::string PlaceDrawing(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement);

}  // namespace orvex::tools::view
