#include "tools/orvexprofile/profile.h"

#include <algorithm>

#include "driver/color/ink.h"

namespace orvex::tools::profile {

namespace {

constexpr VersionLayout kLayouts[] = {
    {256, false, false, "every colour, whole entries"},
    {256, true, false, "every colour, one plane for each ink"},
    {128, false, false, "every second value of each component, whole entries"},
    {128, true, false, "every second value of each component, one plane for each ink"},
    {17, false, true, "17 values of each component, whole entries"},
};

}  // namespace

const VersionLayout& LayoutOf(int version) {
    return kLayouts[version - kFirstVersion];
}

uint32_t SampledComponent(int steps, int step) {
    return step == steps - 1 ? 255 : StoredComponent(steps, step);
}

uint32_t StoredComponent(int steps, int step) {
    if (steps == kGridSteps) return GridValue(step);
    return static_cast<uint32_t>(step) * 256 / static_cast<uint32_t>(steps);
}

InkValue AvoidMark(InkValue inks) {
    return inks == kNotComputed ? PackInks(254, 255, 255, 255) : inks;
}

Variant SwapAxes(int steps, const Variant& variant) {
    const size_t count = static_cast<size_t>(steps);
    Variant swapped(variant.size());
    for (size_t i = 0; i < variant.size(); ++i) {
        const size_t slowest = i / count / count, middle = i / count % count, fastest = i % count;
        swapped[(fastest * count + middle) * count + slowest] = variant[i];
    }
    return swapped;
}

Variant SampleVariant(int version, const InkSource& source) {
    const int steps = LayoutOf(version).steps;
    std::vector<uint32_t> components;
    for (int step = 0; step < steps; ++step) components.push_back(SampledComponent(steps, step));
    Variant variant(LayoutOf(version).Entries());
    std::span<uint32_t> rest = variant;
    std::vector<uint32_t> run(components.size());
    for (const uint32_t red : components) {
        for (const uint32_t green : components) {
            std::transform(components.begin(), components.end(), run.begin(),
                           [=](uint32_t blue) { return ColorIndex(red, green, blue); });
            source(run, rest.first(run.size()));
            rest = rest.subspan(run.size());
        }
    }
    for (uint32_t& inks : variant) inks = AvoidMark(inks);
    return variant;
}

}  // namespace orvex::tools::profile
