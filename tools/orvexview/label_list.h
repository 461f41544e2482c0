// The labels of a printer, as a media.inf lists them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace orvex::tools::view {

class ListedLabels {
  public:
    ListedLabels() = default;
    // Reads the labels that the driver imports. Throws std::runtime_error if there are none.
    explicit ListedLabels(const std::filesystem::path& path);

    // Returns whether there is a label of that size, in mm. Pixels are coarser than the list, so 0.2 mm of
    // difference is none.
    bool Has(double width, double length) const;

  private:
    struct Size {
        int16_t width;   // tenths of a millimeter
        int16_t length;  // tenths of a millimeter
    };
    std::vector<Size> sizes_;
};

}  // namespace orvex::tools::view
