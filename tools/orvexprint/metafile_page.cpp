#include "tools/orvexprint/metafile_page.h"

#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/host/metafile_player.h"

namespace orvex::tools::print {

namespace {

Metafile ReadNamed(const std::string& name, ByteSpan bytes) {
    try {
        return ReadMetafile(bytes);
    } catch (const PageError& error) {
        throw PageError(name + " " + error.what());
    }
}

void Play(const std::string& name, const Metafile& metafile, const RECT& frame, bool turned,
          const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) {
    const PlayedPage page = {bits.pixels, bits.stride, placing.pageWidth, placing.pageHeight, turned};
    try {
        const size_t refused = PlayMetafile(metafile.bytes, frame, page);
        if (refused > 0) note("has " + std::to_string(refused) + " records that GDI did not draw");
    } catch (const PageError& error) {
        throw PageError(name + " " + error.what());
    }
    if (metafile.plusOnly) note("is drawn with GDI+ alone, which is not replayed");
}

// Returns the length of an axis, with the pixels that a page which is smaller by one cuts off.
LONG Uncut(uint32_t pixels, const PlacedAxis& axis) {
    return static_cast<LONG>(axis.scale == 1 ? pixels : axis.length);
}

}  // namespace

RECT FrameAt(const PictureSize& size, const PagePlacing& placing, const PagePlace& place) {
    const auto left = static_cast<LONG>(place.turned ? place.top : place.left);
    const auto top =
        static_cast<LONG>(place.turned ? placing.pageWidth - place.left - place.Width() : place.top);
    return {left, top, left + Uncut(size.width, place.across), top + Uncut(size.height, place.down)};
}

MetafilePage::MetafilePage(const std::filesystem::path& path)
    : name_(Utf8FromPath(path)), bytes_(ReadWholeFile(path)), metafile_(ReadNamed(name_, bytes_)) {}

PictureSize MetafilePage::SizeAt(uint32_t dpi) const {
    return SizeOf(metafile_, dpi);
}

std::string MetafilePage::Describe(const PagePlacing& placing) const {
    return DescribePlace(FindNamedPlace(name_, SizeAt(placing.dpi), placing));
}

void MetafilePage::Draw(const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) {
    const PictureSize size = SizeAt(placing.dpi);
    const PagePlace place = FindNamedPlace(name_, size, placing);
    Play(name_, metafile_, FrameAt(size, placing, place), place.turned, placing, bits, note);
}

SpooledPage::SpooledPage(std::string name, ByteSpan metafile)
    : name_(std::move(name)), metafile_(ReadNamed(name_, metafile)) {}

PictureSize SpooledPage::SizeAt(uint32_t dpi) const {
    return SizeOf(metafile_, dpi);
}

std::string SpooledPage::Describe(const PagePlacing& placing) const {
    const RECT frame = FrameOnPage(metafile_, placing.pageWidth, placing.pageHeight, placing.dpi);
    return std::to_string(frame.right - frame.left) + " x " + std::to_string(frame.bottom - frame.top) +
           " pixels, " + std::to_string(frame.left) + " from the left, " + std::to_string(frame.top) +
           " from the top";
}

void SpooledPage::Draw(const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) {
    const RECT frame = FrameOnPage(metafile_, placing.pageWidth, placing.pageHeight, placing.dpi);
    Play(name_, metafile_, frame, false, placing, bits, note);
}

}  // namespace orvex::tools::print
