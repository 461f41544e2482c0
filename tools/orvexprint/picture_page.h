// Pages that are pictures, of any format that is read.
#pragma once

#include <memory>

#include "tools/common/picture_reader.h"
#include "tools/orvexprint/page_source.h"

namespace orvex::tools::print {

class PicturePage : public PageSource {
  public:
    explicit PicturePage(const std::filesystem::path& path);

    PictureSize SizeAt(uint32_t dpi) const override;
    std::string Describe(const PagePlacing& placing) const override;
    void Draw(const PagePlacing& placing, const PageBits& bits, const NoteTaker& note) override;

  private:
    std::string name_;
    std::unique_ptr<PictureReader> reader_;
};

}  // namespace orvex::tools::print
