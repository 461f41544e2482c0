#include "tools/common/product_version.h"

namespace orvex::tools {

const char* const kProductVersion = ORVEX_VERSION;

}  // namespace orvex::tools
