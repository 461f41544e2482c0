// Pictures of another size.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace orvex::tools::print {

// The way to enlarge an axis: repeat the nearest pixel, which keeps the edges of text and bars sharp, or
// blend the two neighbors. A reduced axis always takes the average of the area that each pixel covers.
enum class Enlarging { kNearest, kBlend };

// Reads the next row of a picture into `pixels`.
using RowReader = std::function<void(uint32_t* pixels)>;

// A picture of another size, made row by row. Takes the memory of a few rows.
class Resampler {
  public:
    // `next` reads the rows of a picture of `sourceWidth` x `sourceHeight` pixels. No size is 0. An axis of
    // the same size stays unchanged.
    Resampler(uint32_t sourceWidth, uint32_t sourceHeight, uint32_t width, uint32_t height,
              Enlarging enlarging, RowReader next);

    // Makes the next row.
    void ReadRow(uint32_t* pixels);

  private:
    // The source pixels that make up one target pixel along an axis: `count` of them from `first` on, with
    // weights that add up to 1.
    struct Contribution {
        uint32_t first = 0;
        uint32_t count = 1;
        size_t weight = 0;  // index of the first weight
    };
    struct Axis {
        Axis(uint32_t source, uint32_t target, Enlarging enlarging);
        void AddNearest(uint32_t i, double scale, uint32_t source);
        void AddBlend(uint32_t i, double scale, uint32_t source);
        void AddArea(uint32_t i, double scale, uint32_t source);

        std::vector<Contribution> contributions;
        std::vector<float> weights;
    };
    // A row of the target's width; channels are 0 to 255, interleaved.
    using FloatRow = std::vector<float>;

    void FilterRow(FloatRow& out) const;
    // Returns the source's row, filtered. Rows must be asked for in order; the last two can be repeated.
    const FloatRow& FilteredRow(uint32_t y);

    Axis across_;
    Axis down_;
    RowReader next_;
    std::vector<uint32_t> source_;  // the row that was read last
    uint32_t rowsRead_ = 0;
    std::array<FloatRow, 2> filtered_;  // the last two rows; row y is at y % 2
    FloatRow sums_;
    uint32_t rowsMade_ = 0;
};

}  // namespace orvex::tools::print
