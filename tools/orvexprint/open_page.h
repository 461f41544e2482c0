// The one place that knows all kinds of pages.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "tools/orvexprint/page_source.h"

namespace orvex::tools::print {

// Opens the page in a file of any kind that can be printed. Throws PageError or std::runtime_error, which
// name the file.
std::unique_ptr<PageSource> OpenPage(const std::filesystem::path& path);

}  // namespace orvex::tools::print
