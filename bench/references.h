// References that the driver is compared with: Little CMS for the colors, pixman for the rotation, and both
// as the obvious program.
#pragma once

#include <lcms2.h>
#include <pixman.h>

#include <cstdint>
#include <vector>

#include "bench/bench_page.h"

namespace orvex::bench {

// A device link from BGRA to KCMY, 8 bits each, through the 17-point grid in the color cache.
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

// A page turned so that its rows are a portrait page's columns, the last one first.
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
