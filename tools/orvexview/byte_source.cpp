#include "tools/orvexview/byte_source.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"

namespace orvex::tools::view {

namespace {

constexpr size_t kWindow = size_t{1} << 20;

// Returns `size` bytes from `at` on, fewer at the end.
std::span<const uint8_t> Part(const std::vector<uint8_t>& bytes, uint64_t at, size_t size) {
    if (at >= bytes.size()) return {};
    const auto start = static_cast<size_t>(at);
    return {bytes.data() + start, std::min(size, bytes.size() - start)};
}

}  // namespace

std::span<const uint8_t> MemorySource::At(uint64_t offset, size_t size) {
    return Part(bytes_, offset, size);
}

FileSource::FileSource(const std::filesystem::path& path) : name_(Utf8FromPath(path)) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        throw std::runtime_error(name_ + " is a folder; expected a print file");
    }
    errno = 0;
    file_.open(path, std::ios::binary);
    if (!file_) throw std::runtime_error(name_ + " can't be opened: " + FileReason(errno));
    if (!file_.seekg(0)) {
        throw std::runtime_error(name_ +
                                 " is a pipe or a terminal; expected a file, which can be read twice");
    }
}

std::span<const uint8_t> FileSource::At(uint64_t offset, size_t size) {
    if (offset < start_ || offset + size > start_ + window_.size()) Load(offset, size);
    return Part(window_, offset - start_, size);
}

uint64_t FileSource::Size() {
    file_.clear();
    file_.seekg(0, std::ios::end);
    return static_cast<uint64_t>(file_.tellg());
}

void FileSource::Load(uint64_t offset, size_t size) {
    window_.resize(std::max(size, kWindow));
    start_ = offset;
    file_.clear();
    errno = 0;
    file_.seekg(static_cast<std::streamoff>(offset));
    file_.read(reinterpret_cast<char*>(window_.data()), static_cast<std::streamsize>(window_.size()));
    if (file_.bad()) throw std::runtime_error(name_ + " can't be read: " + FileReason(errno));
    window_.resize(static_cast<size_t>(file_.gcount()));
}

}  // namespace orvex::tools::view
