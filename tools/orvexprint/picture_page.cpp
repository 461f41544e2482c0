#include "tools/orvexprint/picture_page.h"

#include "tools/common/decoded_picture.h"
#include "tools/common/png_reader.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/art_colors.h"

namespace orvex::tools::print {

namespace {

constexpr char kUnknownKind[] =
    "is of no kind that can be printed; pages are PNG, JPEG, BMP, GIF and EMF files, and for ./print TIFF, "
    "WebP, PDF and SVG files as well";

// Opens a picture. What is of no known kind is left to the reader of PNG files, which says so.
std::unique_ptr<PictureReader> OpenPicture(const std::filesystem::path& path) {
    const std::string start = StartOf(path), name = Utf8FromPath(path);
    if (KindOfPicture({reinterpret_cast<const uint8_t*>(start.data()), start.size()}) == PictureKind::kOther)
        return std::make_unique<PngReader>(OpenFile(path), name, PngReader::kWindowPixels, kUnknownKind);
    return std::make_unique<DecodedPicture>(ReadWholeFile(path, DecodedPicture::kMostBytes), name);
}

}  // namespace

PicturePage::PicturePage(const std::filesystem::path& path)
    : name_(Utf8FromPath(path)), reader_(OpenPicture(path)) {}

PictureSize PicturePage::SizeAt(uint32_t) const {
    return reader_->Size();
}

std::string PicturePage::Describe(const PagePlacing& placing) const {
    const PagePlace place = FindNamedPlace(name_, reader_->Size(), placing);
    const std::string resampling = ResamplingText(reader_->Size(), placing, place);
    return DescribePlace(place) + (resampling.empty() ? "" : ", ") + resampling;
}

void PicturePage::Draw(const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) {
    const PagePlace place = FindNamedPlace(name_, reader_->Size(), placing);
    const std::string resampling = ResamplingText(reader_->Size(), placing, place);
    if (!resampling.empty()) note("is " + resampling);
    const ArtColors colors = ColorsOf(reader_->Colors());
    if (!colors.note.empty()) note(colors.note);
    reader_->ConvertColors(colors.toSrgb);
    DrawPage(*reader_, placing, bits.pixels, bits.stride);
}

}  // namespace orvex::tools::print
