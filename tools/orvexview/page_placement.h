// The place of a page's image in its raster block, and of the block under the print head. The stream contains
// neither; they follow from the job settings in the file's header.
#pragma once

#include <cstdint>
#include <optional>

#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

enum class Orientation { kPortrait, kLandscape };

struct PagePlacement {
    // Whether the header's settings explain this page to the pixel. If not, the image is assumed to be the
    // whole block without the purge bar.
    bool explained = false;
    // A portrait page is sent turned: its rows are the label's columns, beginning with the rightmost.
    Orientation orientation = Orientation::kLandscape;

    // The image within the block, in pixels along the row and in rows.
    uint32_t imageLeft = 0;
    uint32_t imageWidth = 0;
    uint32_t imageTop = 0;  // also the number of fill rows before it
    uint32_t imageRows = 0;

    uint32_t purgeWidth = 0;  // pixels, before or after the image
    uint32_t fillBottom = 0;  // fill rows after the image

    uint32_t headRows = 0;  // width of the print head, in rows
    uint32_t headTop = 0;   // row of the head under which the block starts

    bool PurgeLeads() const { return imageLeft > 0; }
};

// Places a page. `asked` overrides the orientation that follows from the header.
PagePlacement PlacePage(const PrintFile& file, const PrintedPage& page,
                        std::optional<Orientation> asked = std::nullopt);

}  // namespace orvex::tools::view
