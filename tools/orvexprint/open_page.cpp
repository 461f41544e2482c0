#include "tools/orvexprint/open_page.h"

#include "tools/orvexprint/metafile.h"
#include "tools/orvexprint/metafile_page.h"
#include "tools/orvexprint/picture_page.h"

namespace orvex::tools::print {

std::unique_ptr<PageSource> OpenPage(const std::filesystem::path& path) {
    const std::string start = StartOf(path);
    if (IsMetafile({reinterpret_cast<const uint8_t*>(start.data()), start.size()}))
        return std::make_unique<MetafilePage>(path);
    return std::make_unique<PicturePage>(path);
}

}  // namespace orvex::tools::print
