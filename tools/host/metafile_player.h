// The graphics engine's drawing: GDI plays metafiles onto page bitmaps, and uses fonts that a job brings.
// Only the Windows build has GDI; natively no metafile is drawn.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/windows.h"

namespace orvex::tools {

// A page bitmap to draw on.
struct PlayedPage {
    uint32_t* pixels;  // 0x00RRGGBB, in rows from the top
    size_t stride;     // pixels from row to row
    uint32_t width;    // pixels
    uint32_t height;
    bool turned = false;  // what is drawn appears turned clockwise by a quarter
};

constexpr size_t kMostPlayedBytes = size_t{32} << 20;  // of the bitmap that GDI draws on at a time

// Draws a metafile so that its frame fills a rectangle, in pixels of the page before it is turned. What is
// drawn beside the frame appears as well. A page of more than `mostBytes` is drawn in bands. Returns the
// number of records that GDI refused. Throws PageError: "can't be drawn: ...".
size_t PlayMetafile(std::span<const uint8_t> metafile, const RECT& frame, const PlayedPage& page,
                    size_t mostBytes = kMostPlayedBytes);

// Fonts that this process alone can use, while this object lives.
class LoadedFonts {
  public:
    LoadedFonts() = default;
    ~LoadedFonts();
    LoadedFonts(const LoadedFonts&) = delete;
    LoadedFonts& operator=(const LoadedFonts&) = delete;

    // Loads the fonts of a TrueType file. Returns whether there are any.
    bool Load(std::span<const uint8_t> file);

  private:
    std::vector<HANDLE> fonts_;
};

}  // namespace orvex::tools
