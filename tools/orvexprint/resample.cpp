#include "tools/orvexprint/resample.h"

#include <algorithm>
#include <cmath>

namespace orvex::tools::print {

namespace {

constexpr int kChannels = 3;

uint32_t PackPixel(const float* channels) {
    uint32_t pixel = 0;
    for (int c = 0; c < kChannels; ++c) {
        pixel |= static_cast<uint32_t>(std::clamp(std::lround(channels[c]), 0L, 255L)) << (8 * c);
    }
    return pixel;
}

}  // namespace

void Resampler::Axis::AddNearest(uint32_t i, double scale, uint32_t source) {
    const auto nearest = static_cast<uint32_t>((i + 0.5) * scale);
    contributions.push_back({std::min(nearest, source - 1), 1, weights.size()});
    weights.push_back(1.0f);
}

void Resampler::Axis::AddBlend(uint32_t i, double scale, uint32_t source) {
    const double center = std::clamp((i + 0.5) * scale - 0.5, 0.0, source - 1.0);
    const auto first = static_cast<uint32_t>(center);
    const auto share = static_cast<float>(center - first);
    const uint32_t count = first + 1 < source ? 2 : 1;
    contributions.push_back({first, count, weights.size()});
    weights.push_back(count == 2 ? 1.0f - share : 1.0f);
    if (count == 2) weights.push_back(share);
}

void Resampler::Axis::AddArea(uint32_t i, double scale, uint32_t source) {
    const double begin = i * scale;
    const double end = std::min((i + 1) * scale, static_cast<double>(source));
    const auto first = std::min(static_cast<uint32_t>(begin), source - 1);
    const auto last = std::clamp(static_cast<uint32_t>(std::ceil(end)), first + 1, source);
    contributions.push_back({first, last - first, weights.size()});
    for (uint32_t k = first; k < last; ++k) {
        const double covered = std::min(end, k + 1.0) - std::max(begin, static_cast<double>(k));
        weights.push_back(static_cast<float>(covered / (end - begin)));
    }
}

Resampler::Axis::Axis(uint32_t source, uint32_t target, Enlarging enlarging) {
    const double scale = static_cast<double>(source) / target;
    for (uint32_t i = 0; i < target; ++i) {
        if (target < source) {
            AddArea(i, scale, source);
        } else if (enlarging == Enlarging::kBlend && target > source) {
            AddBlend(i, scale, source);
        } else {
            AddNearest(i, scale, source);
        }
    }
}

Resampler::Resampler(uint32_t sourceWidth, uint32_t sourceHeight, uint32_t width, uint32_t height,
                     Enlarging enlarging, RowReader next)
    : across_(sourceWidth, width, enlarging),
      down_(sourceHeight, height, enlarging),
      next_(std::move(next)),
      source_(sourceWidth),
      sums_(size_t{width} * kChannels) {
    for (FloatRow& row : filtered_) row.resize(sums_.size());
}

void Resampler::FilterRow(FloatRow& out) const {
    float* target = out.data();
    for (const Contribution& from : across_.contributions) {
        float sums[kChannels] = {};
        for (uint32_t k = 0; k < from.count; ++k) {
            const uint32_t pixel = source_[from.first + k];
            const float weight = across_.weights[from.weight + k];
            for (int c = 0; c < kChannels; ++c)
                sums[c] += weight * static_cast<float>(pixel >> (8 * c) & 0xFF);
        }
        target = std::copy(sums, sums + kChannels, target);
    }
}

const Resampler::FloatRow& Resampler::FilteredRow(uint32_t y) {
    for (; rowsRead_ <= y; ++rowsRead_) {
        next_(source_.data());
        FilterRow(filtered_[rowsRead_ % filtered_.size()]);
    }
    return filtered_[y % filtered_.size()];
}

void Resampler::ReadRow(uint32_t* pixels) {
    const Contribution& from = down_.contributions[rowsMade_++];
    std::fill(sums_.begin(), sums_.end(), 0.0f);
    for (uint32_t k = 0; k < from.count; ++k) {
        const FloatRow& row = FilteredRow(from.first + k);
        const float weight = down_.weights[from.weight + k];
        for (size_t i = 0; i < sums_.size(); ++i) sums_[i] += weight * row[i];
    }
    const size_t width = across_.contributions.size();
    for (size_t x = 0; x < width; ++x) pixels[x] = PackPixel(&sums_[x * kChannels]);
}

}  // namespace orvex::tools::print
