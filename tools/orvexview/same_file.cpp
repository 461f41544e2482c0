#include "tools/orvexview/same_file.h"

#include <filesystem>
#include <system_error>

#include "tools/common/wide_text.h"

namespace orvex::tools::view {

namespace fs = std::filesystem;

bool IsSameFile(const std::string& a, const std::string& b) {
    const fs::path first = PathFromUtf8(a);
    const fs::path second = PathFromUtf8(b);
    std::error_code failure;
    if (fs::equivalent(first, second, failure)) return true;
    if (first.filename() != second.filename()) return false;
    const fs::path firstPlace = fs::weakly_canonical(fs::absolute(first, failure), failure);
    return firstPlace == fs::weakly_canonical(fs::absolute(second, failure), failure) && !failure;
}

}  // namespace orvex::tools::view
