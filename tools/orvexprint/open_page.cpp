#include "tools/orvexprint/open_page.h"

#include "tools/common/wide_text.h"
#include "tools/orvexprint/metafile.h"
#include "tools/orvexprint/metafile_page.h"
#include "tools/orvexprint/picture_page.h"
#include "tools/orvexprint/shadow_file.h"

namespace orvex::tools::print {

std::unique_ptr<PageSource> OpenPage(const std::filesystem::path& path) {
    const std::string start = StartOf(path);
    const ByteSpan bytes(reinterpret_cast<const uint8_t*>(start.data()), start.size());
    if (IsMetafile(bytes)) return std::make_unique<MetafilePage>(path);
    if (IsShadowFile(bytes))
        throw PageError(Utf8FromPath(path) + " is a shadow file, which has no pages; name it with --shd");
    return std::make_unique<PicturePage>(path);
}

}  // namespace orvex::tools::print
