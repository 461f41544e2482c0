// A list of patches in CGATS, read by Little CMS.
#pragma once

#include <lcms2.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "driver/color/ink.h"

namespace orvex::tools::profile {

struct FreeCgats {
    void operator()(void* list) const { cmsIT8Free(list); }
};
using OwnedCgats = std::unique_ptr<void, FreeCgats>;

// The names of the inks' amounts in a list, indexed by Ink.
constexpr std::array<const char*, kInks> kInkFields = {"CMYK_K", "CMYK_C", "CMYK_M", "CMYK_Y"};

class MeasuredTarget {
  public:
    // Throws std::runtime_error if Little CMS can't read the text.
    explicit MeasuredTarget(std::string_view text)
        : list_(cmsIT8LoadFromMem(nullptr, text.data(), static_cast<cmsUInt32Number>(text.size()))) {
        if (list_ == nullptr) throw std::runtime_error("not CGATS");
    }

    size_t Count() const { return static_cast<size_t>(cmsIT8GetPropertyDbl(list_.get(), "NUMBER_OF_SETS")); }
    // Return a field of a patch, which is counted from 0; the fields must be there.
    std::string Text(size_t patch, const char* field) const { return Cell(patch, field); }
    double Number(size_t patch, const char* field) const { return std::stod(Cell(patch, field)); }
    double Percent(size_t patch, int ink) const {
        return Number(patch, kInkFields[static_cast<size_t>(ink)]);
    }

  private:
    const char* Cell(size_t patch, const char* field) const {
        const int column = cmsIT8FindDataFormat(list_.get(), field);
        const char* const cell = cmsIT8GetDataRowCol(list_.get(), static_cast<int>(patch), column);
        if (column < 0 || cell == nullptr) throw std::runtime_error(std::string("no ") + field);
        return cell;
    }

    OwnedCgats list_;
};

}  // namespace orvex::tools::profile
