// The ink that a page takes, counted by what it is for.
#pragma once

#include <array>
#include <cstdint>

#include "tools/orvexview/page_pictures.h"

namespace orvex::tools::view {

// Sums of a page's amounts, by Ink. 255 is one drop.
struct InkUse {
    std::array<uint64_t, kInks> label = {};
    std::array<uint64_t, kInks> purgeBar = {};
    std::array<uint64_t, kInks> pattern = {};  // that keeps nozzles wet where nothing is printed

    void Add(const InkUse& other);
};

class InkCounter : public RowUser {
  public:
    // `withPattern` says that the job has blank pixels filled with the pattern. A label's pixel of the same
    // value counts as pattern, too; it could hardly be seen.
    InkCounter(const PagePlacement& placement, bool withPattern);

    void TakeRow(uint32_t row, std::span<const uint32_t> inkValues, bool repeats) override;
    const InkUse& Use() const { return use_; }

  private:
    InkUse Count(bool imageRow, std::span<const uint32_t> inkValues) const;

    BlockArea image_;
    bool withPattern_;
    bool lastIsImage_ = false;
    InkUse last_;  // of the row before
    InkUse use_;
};

// Returns whether a job's blank pixels get the pattern.
bool HasPattern(const PjlHeader& header);

}  // namespace orvex::tools::view
