#include "tools/orvexprint/resample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace orvex::tools::print {

namespace {

constexpr int kChannels = 3;

// The source pixels that make up one target pixel along an axis: `count` of them from `first` on, with
// weights that add up to 1.
struct Contribution {
    uint32_t first = 0;
    uint32_t count = 1;
    size_t weight = 0;  // index of the first weight
};

struct Axis {
    std::vector<Contribution> contributions;
    std::vector<float> weights;
};

void AddNearest(Axis& axis, uint32_t i, double scale, uint32_t source) {
    const auto nearest = static_cast<uint32_t>((i + 0.5) * scale);
    axis.contributions.push_back({std::min(nearest, source - 1), 1, axis.weights.size()});
    axis.weights.push_back(1.0f);
}

void AddBlend(Axis& axis, uint32_t i, double scale, uint32_t source) {
    const double center = std::clamp((i + 0.5) * scale - 0.5, 0.0, source - 1.0);
    const auto first = static_cast<uint32_t>(center);
    const auto share = static_cast<float>(center - first);
    const uint32_t count = first + 1 < source ? 2 : 1;
    axis.contributions.push_back({first, count, axis.weights.size()});
    axis.weights.push_back(count == 2 ? 1.0f - share : 1.0f);
    if (count == 2) axis.weights.push_back(share);
}

void AddArea(Axis& axis, uint32_t i, double scale, uint32_t source) {
    const double begin = i * scale;
    const double end = std::min((i + 1) * scale, static_cast<double>(source));
    const auto first = std::min(static_cast<uint32_t>(begin), source - 1);
    const auto last = std::clamp(static_cast<uint32_t>(std::ceil(end)), first + 1, source);
    axis.contributions.push_back({first, last - first, axis.weights.size()});
    for (uint32_t k = first; k < last; ++k) {
        const double covered = std::min(end, k + 1.0) - std::max(begin, static_cast<double>(k));
        axis.weights.push_back(static_cast<float>(covered / (end - begin)));
    }
}

Axis MakeAxis(uint32_t source, uint32_t target, Enlarging enlarging) {
    Axis axis;
    const double scale = static_cast<double>(source) / target;
    for (uint32_t i = 0; i < target; ++i) {
        if (target < source) {
            AddArea(axis, i, scale, source);
        } else if (enlarging == Enlarging::kBlend && target > source) {
            AddBlend(axis, i, scale, source);
        } else {
            AddNearest(axis, i, scale, source);
        }
    }
    return axis;
}

// A row of the target's width; channels are 0 to 255, interleaved.
using FloatRow = std::vector<float>;

void FilterRow(const uint32_t* row, const Axis& axis, FloatRow& out) {
    for (size_t i = 0; i < axis.contributions.size(); ++i) {
        const Contribution& from = axis.contributions[i];
        float sums[kChannels] = {};
        for (uint32_t k = 0; k < from.count; ++k) {
            const uint32_t pixel = row[from.first + k];
            const float weight = axis.weights[from.weight + k];
            for (int c = 0; c < kChannels; ++c)
                sums[c] += weight * static_cast<float>(pixel >> (8 * c) & 0xFF);
        }
        std::copy(sums, sums + kChannels, out.begin() + static_cast<ptrdiff_t>(i * kChannels));
    }
}

uint32_t PackPixel(const float* channels) {
    uint32_t pixel = 0;
    for (int c = 0; c < kChannels; ++c) {
        pixel |= static_cast<uint32_t>(std::clamp(std::lround(channels[c]), 0L, 255L)) << (8 * c);
    }
    return pixel;
}

// The filtered rows that were used last, since neighboring rows of the target share some of them.
class RowCache {
  public:
    RowCache(const RasterImage& image, const Axis& axis) : image_(image), axis_(axis) {
        for (Entry& entry : entries_) entry.row.resize(axis.contributions.size() * kChannels);
    }

    const FloatRow& Get(uint32_t y) {
        Entry& entry = entries_[y % entries_.size()];
        if (entry.y != y) {
            FilterRow(image_.Row(y), axis_, entry.row);
            entry.y = y;
        }
        return entry.row;
    }

  private:
    struct Entry {
        uint32_t y = UINT32_MAX;
        FloatRow row;
    };
    const RasterImage& image_;
    const Axis& axis_;
    std::array<Entry, 2> entries_;
};

}  // namespace

RasterImage Resample(const RasterImage& image, uint32_t width, uint32_t height, Enlarging enlarging) {
    RasterImage out = MakeImage(width, height);
    if (width == image.width && height == image.height) {
        std::copy_n(image.pixels.get(), size_t{width} * height, out.pixels.get());
        return out;
    }
    const Axis across = MakeAxis(image.width, width, enlarging);
    const Axis down = MakeAxis(image.height, height, enlarging);
    RowCache rows(image, across);
    FloatRow sums(size_t{width} * kChannels);
    for (uint32_t y = 0; y < height; ++y) {
        const Contribution& from = down.contributions[y];
        std::fill(sums.begin(), sums.end(), 0.0f);
        for (uint32_t k = 0; k < from.count; ++k) {
            const FloatRow& row = rows.Get(from.first + k);
            const float weight = down.weights[from.weight + k];
            for (size_t i = 0; i < sums.size(); ++i) sums[i] += weight * row[i];
        }
        for (uint32_t x = 0; x < width; ++x) out.Row(y)[x] = PackPixel(&sums[size_t{x} * kChannels]);
    }
    return out;
}

}  // namespace orvex::tools::print
