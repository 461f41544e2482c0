// The differences between two print files: settings, geometry and inks.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/common/picture.h"
#include "tools/orvexview/ink_place.h"
#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

// A thing that has another value in each file; "-" if a file does not have it.
struct ValueDifference {
    std::string name;
    std::string first;
    std::string second;
};

// Finds settings, engine, resolution, thumbnail and number of pages that differ.
std::vector<ValueDifference> CompareHeaders(const PrintFile& first, const PrintFile& second);

// The part of two pages whose inks are compared.
enum class ComparedPart {
    kBlock,
    kLabel,   // where the labels are equally large, but fill rows or purge bar differ
    kNothing  // labels of different sizes
};

struct PageDifference {
    uint32_t number = 0;
    std::vector<ValueDifference> geometry;
    ComparedPart part = ComparedPart::kBlock;
    InkDifference inks;

    bool IsNone() const { return geometry.empty() && inks.different == 0; }
};

// A picture of where two pages differ: the first one in pale gray, differing pixels in red. A single pixel
// that differs can be seen however small the picture is.
class DifferencePicture {
  public:
    DifferencePicture(const PrintedPage& page, uint32_t scale);

    void TakePixel(uint32_t row, uint32_t x, uint32_t first, uint32_t second);
    Picture Finish() { return std::move(picture_); }

  private:
    uint32_t scale_;
    Picture picture_;
};

// Compares two pages; `picture` may be null. Throws PrintFileError if a file has changed meanwhile.
PageDifference ComparePages(const PrintFile& firstFile, const PrintedPage& first, const PrintFile& secondFile,
                            const PrintedPage& second, DifferencePicture* picture);

}  // namespace orvex::tools::view
