#include "tools/orvexprint/log_switch.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tools/common/wide_text.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

bool Replace(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    return static_cast<bool>(file);
}

}  // namespace

LogSwitch::LogSwitch(fs::path control, int mask) : control_(std::move(control)) {
    std::error_code failure;
    fs::create_directories(control_.parent_path(), failure);
    std::ifstream standing(control_, std::ios::binary);
    if (standing) before_.emplace(std::istreambuf_iterator<char>(standing), std::istreambuf_iterator<char>());
    standing.close();
    if (!Replace(control_, std::to_string(mask))) {
        throw std::runtime_error("the log can't be turned on: " + Utf8FromPath(control_) +
                                 " can't be written");
    }
}

LogSwitch::~LogSwitch() {
    std::error_code ignored;
    if (before_) {
        Replace(control_, *before_);
    } else {
        fs::remove(control_, ignored);
    }
}

}  // namespace orvex::tools::print
