#include "tools/orvexview/page_check.h"

#include <algorithm>
#include <numeric>

namespace orvex::tools::view {

namespace {

// Least total ink of a pixel that looks printed. The pattern that keeps nozzles wet is far below.
constexpr float kInked = 0.25f;

constexpr uint32_t kLeastEdges = 20;  // of a picture whose grid is known

}  // namespace

void EdgeGrid::Add(uint32_t place) {
    if (edges_++ == 0) first_ = place;
    step_ = std::gcd(step_, place - first_);
}

uint32_t EdgeGrid::Step() const {
    return edges_ < kLeastEdges ? 1 : step_;
}

PageCheck::PageCheck(const InkModel& model, const BlockArea& image, double limit, uint32_t leastLine)
    : image_(image),
      limit_(limit),
      leastLine_(leastLine),
      above2_(image.width),
      above_(image.width),
      now_(image.width),
      streaks_(image.width),
      columnEdges_(image.width) {
    for (uint32_t amount = 0; amount < share_.size(); ++amount) share_[amount] = model.Share(amount);
}

void PageCheck::TakeRow(uint32_t row, std::span<const uint32_t> inkValues, bool repeats) {
    if (row < image_.top || row >= image_.top + image_.rows) return;
    std::swap(above2_, above_);
    std::swap(above_, now_);
    if (repeats && row > image_.top) {
        now_ = above_;
    } else {
        TakeInks(inkValues.subspan(image_.left, image_.width));
        if (row > image_.top && now_ != above_) rowEdges_.Add(row);
    }
    facts_.overLimit += overLimitInRow_;
    FindLinesAcrossRows();
    FindLinesAlongRow(now_);
}

PageFacts PageCheck::Finish() {
    std::swap(above2_, above_);
    std::swap(above_, now_);
    FindLinesAlongRow(std::vector<uint8_t>(image_.width));
    EdgeGrid columns;
    for (uint32_t x = 0; x < columnEdges_.size(); ++x) {
        if (columnEdges_[x] != 0) columns.Add(x);
    }
    facts_.enlarged = std::gcd(rowEdges_.Step(), columns.Step());
    return facts_;
}

void PageCheck::TakeInks(std::span<const uint32_t> inkValues) {
    overLimitInRow_ = 0;
    uint32_t last = 0;
    float total = 0;
    for (size_t x = 0; x < inkValues.size(); ++x) {
        if (inkValues[x] != last) {
            last = inkValues[x];
            total = 0;
            for (int ink = 0; ink < kInks; ++ink) total += share_[InkAmount(last, ink)];
            facts_.mostInk = std::max<double>(facts_.mostInk, total);
        }
        now_[x] = total >= kInked;
        overLimitInRow_ += total > limit_;
    }
}

void PageCheck::FindLinesAcrossRows() {
    for (size_t x = 0; x < now_.size(); ++x) {
        const bool before = x > 0 && now_[x - 1];
        columnEdges_[x] |= x > 0 && before != (now_[x] != 0);
        const bool after = x + 1 < now_.size() && now_[x + 1];
        streaks_[x] = now_[x] && !before && !after ? streaks_[x] + 1 : 0;
        facts_.thinLines += streaks_[x] == leastLine_;
    }
}

// Looks at the row above, whose two neighbors are known now.
void PageCheck::FindLinesAlongRow(const std::vector<uint8_t>& below) {
    uint32_t streak = 0;
    for (size_t x = 0; x < above_.size(); ++x) {
        streak = above_[x] && !above2_[x] && !below[x] ? streak + 1 : 0;
        facts_.thinLines += streak == leastLine_;
    }
}

}  // namespace orvex::tools::view
