#include "tools/common/output_file.h"

#include <stdexcept>
#include <string>
#include <system_error>

#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

constexpr int kMaxTemporaries = 100;

// Returns an unused name beside the file's.
fs::path TemporaryBeside(const fs::path& path) {
    for (int i = 0; i < kMaxTemporaries; ++i) {
        fs::path candidate = path;
        candidate += ".part" + std::to_string(i);
        std::error_code failure;
        if (!fs::exists(fs::symlink_status(candidate, failure))) return candidate;
    }
    throw std::runtime_error("too many unfinished files beside " + Utf8FromPath(path));
}

}  // namespace

OutputFile::OutputFile(fs::path path) : path_(std::move(path)) {
    std::error_code failure;
    if (fs::is_directory(path_, failure)) throw std::runtime_error(Utf8FromPath(path_) + " is a folder");
    temporary_ = TemporaryBeside(path_);
    file_.open(temporary_, std::ios::binary | std::ios::trunc);
    if (!file_) throw std::runtime_error(Utf8FromPath(path_) + " can't be written");
}

OutputFile::~OutputFile() {
    if (completed_) return;
    file_.close();
    std::error_code ignored;
    fs::remove(temporary_, ignored);
}

bool OutputFile::Write(std::string_view bytes) {
    file_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file_) return false;
    size_ += bytes.size();
    return true;
}

void OutputFile::Complete() {
    file_.close();
    if (!file_) throw std::runtime_error("writing " + Utf8FromPath(path_) + " failed");
    std::error_code failure;
    fs::rename(temporary_, path_, failure);
    if (failure) throw std::runtime_error(Utf8FromPath(path_) + " can't be replaced: " + failure.message());
    completed_ = true;
}

void WriteWholeFile(const fs::path& path, std::string_view bytes) {
    OutputFile file(path);
    if (!file.Write(bytes)) throw std::runtime_error("writing " + Utf8FromPath(path) + " failed");
    file.Complete();
}

void WriteWholeFile(const fs::path& path, std::span<const uint8_t> bytes) {
    WriteWholeFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace orvex::tools
