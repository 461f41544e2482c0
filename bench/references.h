// What the driver is held against: Little CMS for the colors, pixman for the rotation, and the two together
// as the obvious program.
#pragma once

#include <lcms2.h>
#include <pixman.h>

#include <cstdint>
#include <vector>

#include "bench/bench_page.h"

namespace orvex::bench {

// A device link with the 17-point grid that is in the color cache at its making, from BGRA to KCMY of 8
// bits.
class LittleCms {
  public:
    LittleCms();
    ~LittleCms();
    LittleCms(const LittleCms&) = delete;
    LittleCms& operator=(const LittleCms&) = delete;

    void Convert(const uint32_t* pixels, uint32_t* inks, uint32_t count) const {
        cmsDoTransform(transform_, pixels, inks, count);
    }

  private:
    cmsHTRANSFORM transform_;
};

// The page turned so that its rows are those of a portrait page: the columns from the last one on.
class PixmanRotation {
  public:
    explicit PixmanRotation(const BenchPage& page);
    ~PixmanRotation();
    PixmanRotation(const PixmanRotation&) = delete;
    PixmanRotation& operator=(const PixmanRotation&) = delete;

    void Rotate();
    const uint32_t* Row(int32_t row) const { return turned_.data() + row * ptrdiff_t{width_}; }
    int32_t Width() const { return width_; }
    int32_t Rows() const { return rows_; }

  private:
    int32_t width_;
    int32_t rows_;
    std::vector<uint32_t> turned_;
    pixman_image_t* source_;
    pixman_image_t* target_;
};

}  // namespace orvex::bench
