#include "tools/orvexview/own_picture.h"

#include <stdexcept>

#include "tools/common/wide_text.h"

namespace orvex::tools::view {

namespace {

constexpr std::string_view kSoftware = "orvexview";

}  // namespace

PngSettings OwnPicture(uint32_t width, uint32_t height, uint32_t channels, uint32_t dpi, uint32_t scale) {
    return {.width = width,
            .height = height,
            .channels = channels,
            .pixelsPerInch = static_cast<double>(dpi) / scale,
            .software = kSoftware};
}

void RefuseReplacing(const std::string& name) {
    std::error_code ignored;
    const std::filesystem::path path = PathFromUtf8(name);
    if (!std::filesystem::is_regular_file(path, ignored)) return;
    if (std::filesystem::file_size(path, ignored) == 0 || IsPngMadeBy(kSoftware, path)) return;
    throw std::runtime_error(name +
                             " exists and is no picture of orvexview, so nothing was written; "
                             "--force replaces it");
}

}  // namespace orvex::tools::view
