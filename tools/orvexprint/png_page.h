// PNG pages.
#pragma once

#include "tools/common/png_reader.h"
#include "tools/orvexprint/page_source.h"

namespace orvex::tools::print {

class PngPage : public PageSource {
  public:
    explicit PngPage(const std::filesystem::path& path);

    PictureSize SizeAt(uint32_t dpi) const override;
    std::string Describe(const PagePlacing& placing) const override;
    void Draw(const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) override;

  private:
    std::string name_;
    PngReader reader_;
};

}  // namespace orvex::tools::print
