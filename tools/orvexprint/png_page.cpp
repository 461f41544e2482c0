#include "tools/orvexprint/png_page.h"

#include "tools/common/png_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/art_colors.h"

namespace orvex::tools::print {

PngPage::PngPage(const std::filesystem::path& path) : name_(Utf8FromPath(path)), reader_(OpenPng(path)) {}

PictureSize PngPage::SizeAt(uint32_t) const {
    return reader_.Size();
}

std::string PngPage::Describe(const PagePlacing& placing) const {
    const PagePlace place = FindNamedPlace(name_, reader_.Size(), placing);
    const std::string resampling = ResamplingText(reader_.Size(), placing, place);
    return DescribePlace(place) + (resampling.empty() ? "" : ", ") + resampling;
}

void PngPage::Draw(const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) {
    const PagePlace place = FindNamedPlace(name_, reader_.Size(), placing);
    const std::string resampling = ResamplingText(reader_.Size(), placing, place);
    if (!resampling.empty()) note("is " + resampling);
    const ArtColors colors = ColorsOf(reader_.Colors());
    if (!colors.note.empty()) note(colors.note);
    reader_.ConvertColors(colors.toSrgb);
    DrawPage(reader_, placing, bits.pixels, bits.stride);
}

}  // namespace orvex::tools::print
