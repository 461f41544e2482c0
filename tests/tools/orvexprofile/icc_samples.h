// ICC profiles of a printer and a screen, installed by Debian's libgs-common.
#pragma once

namespace orvex::tools::profile {

constexpr char kPrinterIcc[] = "/usr/share/color/icc/ghostscript/default_cmyk.icc";
constexpr char kScreenIcc[] = "/usr/share/color/icc/ghostscript/srgb.icc";

}  // namespace orvex::tools::profile
