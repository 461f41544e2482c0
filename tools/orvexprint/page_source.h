// Pages of any kind: their real size, and their drawing on the driver's bitmap. Each kind has a file of its
// own.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "tools/common/picture.h"
#include "tools/orvexprint/page_placement.h"

namespace orvex::tools::print {

// The pixels of a page bitmap, in rows from the top.
struct PageBits {
    uint32_t* pixels;
    size_t stride;  // pixels from row to row
};

// Takes what a user should know about a page, to be read after the words "page 2": "is enlarged 2 times".
using NoteTaker = std::function<void(const std::string& note)>;

class PageSource {
  public:
    PageSource() = default;
    virtual ~PageSource() = default;
    PageSource(const PageSource&) = delete;
    PageSource& operator=(const PageSource&) = delete;

    // Returns the size; of a page that has no pixels, in those of a device of `dpi`, with the density that
    // makes it exact.
    virtual PictureSize SizeAt(uint32_t dpi) const = 0;

    // Returns the place in words: "300 x 450 pixels, 27 from the left, 11 from the top". Throws PageError,
    // which names the page, if it has none.
    virtual std::string Describe(const PagePlacing& placing) const = 0;

    // Draws the page, once, on a white bitmap of the placing's size. Throws PageError, which names the page.
    virtual void Draw(const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) = 0;
};

// Returns the first bytes of a file, enough to tell its kind; fewer if it has not as many, none if it can't
// be read or is a pipe.
std::string StartOf(const std::filesystem::path& path);

// Returns the place of a page as FindPlace() does, with errors that begin with its name.
PagePlace FindNamedPlace(const std::string& name, const PictureSize& size, const PagePlacing& placing);

// Returns that place in words.
std::string DescribePlace(const PagePlace& place);

}  // namespace orvex::tools::print
