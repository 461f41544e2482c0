#include "tools/common/whole_file.h"

#include <stdexcept>
#include <system_error>

#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

constexpr int kMaxTemporaries = 100;
constexpr size_t kPart = size_t{1} << 20;  // bytes read at a time

[[noreturn]] void Fail(const fs::path& path, const std::string& problem) {
    throw std::runtime_error(Utf8FromPath(path) + " " + problem);
}

void RefuseFolder(const fs::path& path) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) Fail(path, "is a folder");
}

// Returns an unused name beside the file's.
fs::path TemporaryBeside(const fs::path& path) {
    for (int i = 0; i < kMaxTemporaries; ++i) {
        fs::path candidate = path;
        candidate += ".part" + std::to_string(i);
        std::error_code failure;
        if (!fs::exists(fs::symlink_status(candidate, failure))) return candidate;
    }
    Fail(path, "has too many unfinished files beside it");
}

}  // namespace

std::ifstream OpenFile(const fs::path& path) {
    RefuseFolder(path);
    std::ifstream file(path, std::ios::binary);
    if (!file) Fail(path, "can't be opened");
    return file;
}

std::vector<uint8_t> ReadWholeFile(const fs::path& path, size_t most) {
    std::ifstream file = OpenFile(path);
    std::vector<uint8_t> bytes;
    while (file) {
        const size_t size = bytes.size();
        bytes.resize(size + kPart);
        file.read(reinterpret_cast<char*>(bytes.data() + size), kPart);
        bytes.resize(size + static_cast<size_t>(file.gcount()));
        if (bytes.size() > most) Fail(path, "is too large");
    }
    if (file.bad()) Fail(path, "can't be read");
    return bytes;
}

std::string ReadWholeText(const fs::path& path) {
    const std::vector<uint8_t> bytes = ReadWholeFile(path);
    return {bytes.begin(), bytes.end()};
}

OutputFile::OutputFile(fs::path path) : path_(std::move(path)) {
    RefuseFolder(path_);
    temporary_ = TemporaryBeside(path_);
    file_.open(temporary_, std::ios::binary | std::ios::trunc);
    if (!file_) Fail(path_, "can't be written");
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
    if (!file_) Fail(path_, "can't be written");
    std::error_code failure;
    fs::rename(temporary_, path_, failure);
    if (failure) Fail(path_, "can't be replaced: " + failure.message());
    completed_ = true;
}

void WriteWholeFile(const fs::path& path, std::string_view bytes) {
    OutputFile file(path);
    if (!file.Write(bytes)) Fail(path, "can't be written");
    file.Complete();
}

void WriteWholeFile(const fs::path& path, std::span<const uint8_t> bytes) {
    WriteWholeFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace orvex::tools
