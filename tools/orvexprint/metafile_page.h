// Pages that are enhanced metafiles, by themselves or in a spool file.
#pragma once

#include <vector>

#include "tools/orvexprint/metafile.h"
#include "tools/orvexprint/page_source.h"

namespace orvex::tools::print {

// A metafile, placed by its frame like a picture of that size.
class MetafilePage : public PageSource {
  public:
    explicit MetafilePage(const std::filesystem::path& path);

    PictureSize SizeAt(uint32_t dpi) const override;
    std::string Describe(const PagePlacing& placing) const override;
    void Draw(const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) override;

  private:
    std::string name_;
    std::vector<uint8_t> bytes_;
    Metafile metafile_;
};

// A page of a spool file, drawn where its application drew it. `metafile` are its bytes, which the page does
// not own.
class SpooledPage : public PageSource {
  public:
    SpooledPage(std::string name, ByteSpan metafile);

    PictureSize SizeAt(uint32_t dpi) const override;
    std::string Describe(const PagePlacing& placing) const override;
    void Draw(const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) override;

  private:
    std::string name_;
    Metafile metafile_;
};

// Returns the rectangle, in pixels of the page as the metafile sees it, that a metafile of this size fills. A
// turned metafile sees a page that is turned back.
RECT FrameAt(const PictureSize& size, const PagePlacing& placing, const PagePlace& place);

}  // namespace orvex::tools::print
