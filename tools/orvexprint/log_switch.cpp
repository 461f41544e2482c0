#include "tools/orvexprint/log_switch.h"

#include <stdexcept>

#include "tools/common/whole_file.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

LogSwitch::LogSwitch(fs::path control, int mask) : control_(std::move(control)) {
    std::error_code failure;
    fs::create_directories(control_.parent_path(), failure);
    if (fs::exists(control_, failure)) before_ = ReadWholeText(control_);
    try {
        WriteWholeFile(control_, std::to_string(mask));
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(std::string("the log can't be turned on: ") + error.what());
    }
}

LogSwitch::~LogSwitch() {
    try {
        if (before_) {
            WriteWholeFile(control_, *before_);
        } else {
            fs::remove(control_);
        }
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): a destructor can't report it
    }
}

}  // namespace orvex::tools::print
