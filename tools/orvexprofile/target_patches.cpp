#include "tools/orvexprofile/target_patches.h"

#include <algorithm>
#include <limits>
#include <span>
#include <unordered_map>

#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/print_pictures.h"

namespace orvex::tools::profile {

namespace {

// Percents of full ink.
constexpr int kRampSteps[] = {3, 6, 10, 15, 20, 25, 30, 40, 50, 60, 70, 80, 90, 100};
constexpr int kGraySteps[] = {5, 10, 15, 20, 30, 40, 50, 60, 70, 80, 90, 100};
constexpr int kGrayBlacks[] = {0, 20, 40, 60};
constexpr int kTotalSteps[] = {40, 45, 50, 55, 60, 65, 70, 75, 80, 85, 90, 95, 100};

// The overprints of all combinations of C, M and Y in these steps, on an amount of black. Dark black takes
// few, since they look alike.
struct Overprints {
    int black;
    std::vector<int> steps;
};
const Overprints kOverprints[] = {
    {0, {0, 10, 20, 40, 70, 100}}, {20, {0, 20, 40, 70, 100}}, {40, {0, 20, 40, 70, 100}},
    {60, {0, 40, 70, 100}},        {80, {0, 40, 100}},         {100, {0, 40, 100}},
};

// Returns the amount nearest to a percentage that is even or full.
uint32_t EvenAmount(int percent) {
    const auto half = static_cast<uint32_t>(percent * kFullAmount / 200 + 0.5);
    return std::min(2 * half, static_cast<uint32_t>(kFullAmount));
}

InkValue Percents(int k, int c, int m, int y) {
    return AvoidMark(PackInks(EvenAmount(k), EvenAmount(c), EvenAmount(m), EvenAmount(y)));
}

// Returns the ink values of the whole target in their order on the page, some of them more than once.
std::vector<InkValue> TargetInks() {
    std::vector<InkValue> inks = {0};
    for (int percent : kRampSteps) inks.push_back(Percents(percent, 0, 0, 0));
    for (int percent : kRampSteps) inks.push_back(Percents(0, percent, 0, 0));
    for (int percent : kRampSteps) inks.push_back(Percents(0, 0, percent, 0));
    for (int percent : kRampSteps) inks.push_back(Percents(0, 0, 0, percent));
    for (int black : kGrayBlacks) {
        for (int percent : kGraySteps) inks.push_back(Percents(black, percent, percent, percent));
    }
    for (int percent : kTotalSteps) inks.push_back(Percents(percent, percent, percent, percent));
    for (const Overprints& overprints : kOverprints) {
        for (int cyan : overprints.steps) {
            for (int magenta : overprints.steps) {
                for (int yellow : overprints.steps)
                    inks.push_back(Percents(overprints.black, cyan, magenta, yellow));
            }
        }
    }
    return inks;
}

uint32_t GridColor(size_t point) {
    const auto value = [](size_t step) { return GridValue(static_cast<int>(step)); };
    return ColorIndex(value(point / kGridSteps / kGridSteps), value(point / kGridSteps % kGridSteps),
                      value(point % kGridSteps));
}

int SquaredDistance(uint32_t color, Rgb wanted) {
    const int red = static_cast<int>(color >> 16 & 0xFF) - wanted.red;
    const int green = static_cast<int>(color >> 8 & 0xFF) - wanted.green;
    const int blue = static_cast<int>(color & 0xFF) - wanted.blue;
    return red * red + green * green + blue * blue;
}

// Takes the free grid point whose color is nearest to the wanted one.
size_t TakeNearest(std::vector<uint8_t>& taken, Rgb wanted) {
    size_t nearest = 0;
    int least = std::numeric_limits<int>::max();
    for (size_t point = 0; point < taken.size(); ++point) {
        const int distance = SquaredDistance(GridColor(point), wanted);
        if (taken[point] != 0 || distance >= least) continue;
        nearest = point;
        least = distance;
    }
    taken[nearest] = 1;
    return nearest;
}

}  // namespace

std::vector<TargetPatch> MakeTargetPatches(double limitPercent) {
    const InkModel model = InkModelOf(PrintVariant::kOther);
    std::vector<uint8_t> taken(kGridPoints);  // 1 for the grid points that have a patch
    std::vector<TargetPatch> patches;
    for (const InkValue inks : TargetInks()) {
        const auto same = [inks](const TargetPatch& patch) { return patch.inks == inks; };
        if (TotalInk(inks) > limitPercent * kFullAmount / 100) continue;
        if (std::any_of(patches.begin(), patches.end(), same)) continue;
        patches.push_back({inks, GridColor(TakeNearest(taken, model.OnPaper(inks)))});
    }
    return patches;
}

Profile MakeTargetProfile(const std::vector<TargetPatch>& patches) {
    std::unordered_map<uint32_t, InkValue> inksOfColor;
    for (const TargetPatch& patch : patches) inksOfColor[patch.color] = patch.inks;
    const InkSource source = [&inksOfColor](std::span<const uint32_t> colors, std::span<InkValue> inks) {
        for (size_t i = 0; i < colors.size(); ++i) {
            const auto patch = inksOfColor.find(colors[i]);
            inks[i] = patch == inksOfColor.end() ? 0 : patch->second;
        }
    };
    Profile profile;
    profile.name = "Target";
    FillVariants(profile, source, InkTreatment());
    return profile;
}

}  // namespace orvex::tools::profile
