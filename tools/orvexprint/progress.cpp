#include "tools/orvexprint/progress.h"

#include <algorithm>
#include <string>

namespace orvex::tools::print {

namespace {

constexpr std::chrono::milliseconds kInterval(100);

}  // namespace

void Progress::Show(uint64_t page, uint64_t done, uint64_t rows) {
    if (!shown_ || now_() < next_) return;
    next_ = now_() + kInterval;
    // A page may have more rows than were announced: a print-head offset can add fill rows.
    const uint64_t percent = rows == 0 ? 100 : std::min<uint64_t>(done * 100 / rows, 100);
    const std::string line = "page " + std::to_string(page) + " of " + std::to_string(pages_) + ": " +
                             std::to_string(percent) + " %";
    const size_t width = line.size();
    out_ << "\r" + line + std::string(width_ > width ? width_ - width : 0, ' ') << std::flush;
    width_ = width;
}

void Progress::Clear() {
    if (width_ == 0) return;
    out_ << "\r" + std::string(width_, ' ') + "\r" << std::flush;
    width_ = 0;
}

}  // namespace orvex::tools::print
