#include "tests/kit/scratch_folder.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <iterator>
#include <system_error>

namespace orvex {

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
    static std::atomic<unsigned> count = 0;
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    do {
        path_ = fs::temp_directory_path() / ("orvex-" + std::to_string(now) + "-" + std::to_string(count++));
    } while (!fs::create_directory(path_));
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

fs::path ScratchFolder::Write(const fs::path& name, std::string_view bytes) const {
    const fs::path path = path_ / name;
    fs::create_directories(path.parent_path());
    WriteBytes(path, bytes);
    return path;
}

std::string ReadBytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const fs::path& path, std::string_view bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace orvex
