#include "tools/orvexprint/page_source.h"

#include <istream>
#include <memory>
#include <stdexcept>

#include "tools/common/whole_file.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr size_t kStartBytes = 128;

}  // namespace

std::string StartOf(const fs::path& path) {
    std::error_code ignored;
    // A pipe can be read only once.
    if (!IsStandardInput(path) && !fs::is_regular_file(path, ignored)) return {};
    try {
        std::string start(kStartBytes, '\0');
        const std::unique_ptr<std::istream> file = OpenFile(path);
        file->read(start.data(), static_cast<std::streamsize>(start.size()));
        start.resize(static_cast<size_t>(file->gcount()));
        return start;
    } catch (const std::runtime_error&) {
        return {};
    }
}

PagePlace FindNamedPlace(const std::string& name, const PictureSize& size, const PagePlacing& placing) {
    try {
        return FindPlace(size, placing);
    } catch (const PageError& error) {
        throw PageError(name + " " + error.what());
    }
}

std::string DescribePlace(const PagePlace& place) {
    return std::to_string(place.Width()) + " x " + std::to_string(place.Height()) + " pixels, " +
           std::to_string(place.left) + " from the left, " + std::to_string(place.top) + " from the top" +
           (place.turned ? ", turned by a quarter" : "");
}

}  // namespace orvex::tools::print
