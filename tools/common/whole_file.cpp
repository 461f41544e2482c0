#include "tools/common/whole_file.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace orvex::tools {

std::string ReadWholeFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    // A folder opens on some systems, and fails at its first byte.
    if (in.peek() != std::ifstream::traits_type::eof()) bytes << in.rdbuf();
    if (!in.is_open() || in.bad()) throw std::runtime_error("can't read " + path.string());
    return bytes.str();
}

}  // namespace orvex::tools
