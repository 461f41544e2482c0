#include "tests/plain/sparse_file.h"

#include <algorithm>
#include <fstream>

namespace orvex::plain {

std::string SparseFile::Beginning(uint64_t most) const {
    std::string beginning(static_cast<size_t>(std::min(size, most)), '\0');
    for (const Run& run : runs) {
        if (run.offset >= beginning.size()) continue;
        const auto at = static_cast<size_t>(run.offset);
        const size_t count = std::min(run.bytes.size(), beginning.size() - at);
        beginning.replace(at, count, run.bytes, 0, count);
    }
    return beginning;
}

void SparseFile::Write(const std::filesystem::path& path) const {
    std::ofstream file(path, std::ios::binary);
    for (const Run& run : runs) {
        file.seekp(static_cast<std::streamoff>(run.offset));
        file.write(run.bytes.data(), static_cast<std::streamsize>(run.bytes.size()));
    }
    file.close();
    std::filesystem::resize_file(path, size);
}

}  // namespace orvex::plain
