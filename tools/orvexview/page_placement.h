// Where a page's image lies within its raster block, and the block under the print head. The stream tells
// neither: they follow from the job settings in the file's header.
#pragma once

#include <cstdint>
#include <optional>

#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

enum class Orientation { kPortrait, kLandscape };

struct PagePlacement {
    // Whether the header's settings account for this page to the pixel. When not, the image is taken to be
    // the whole block without the purge bar.
    bool explained = false;
    // A portrait page is sent turned: its rows are the label's columns, the rightmost first.
    Orientation orientation = Orientation::kLandscape;

    // The image within the block, in pixels along the row and in rows.
    uint32_t imageLeft = 0;
    uint32_t imageWidth = 0;
    uint32_t imageTop = 0;  // also the number of fill rows in front
    uint32_t imageRows = 0;

    uint32_t purgeWidth = 0;  // pixels, in front of the image or behind it
    uint32_t fillBottom = 0;  // fill rows behind the image

    uint32_t headRows = 0;  // width of the print head, in rows
    uint32_t headTop = 0;   // row of the head under which the block starts

    bool PurgeLeads() const { return imageLeft > 0; }
};

// `asked` overrides the orientation that the header tells.
PagePlacement PlacePage(const PrintFile& file, const PrintedPage& page,
                        std::optional<Orientation> asked = std::nullopt);

}  // namespace orvex::tools::view
