#include "driver/profiles/block_reader.h"

#include <algorithm>
#include <cstring>

namespace orvex {

BlockReader::BlockReader(const char* path)
    : file_(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                        FILE_ATTRIBUTE_NORMAL, nullptr)) {}

int64_t BlockReader::Size() const {
    LARGE_INTEGER size = {};
    return GetFileSizeEx(file_.Get(), &size) ? size.QuadPart : -1;
}

void BlockReader::Seek(int64_t position) {
    LARGE_INTEGER target;
    target.QuadPart = position;
    if (!SetFilePointerEx(file_.Get(), target, nullptr, FILE_BEGIN)) failed_ = true;
    position_ = position;
    next_ = end_ = 0;
}

size_t BlockReader::Read(void* destination, size_t size) {
    uint8_t* out = static_cast<uint8_t*>(destination);
    if (next_ == end_ && size >= kBlock) {
        const size_t came = ReadFromFile(out, size);
        position_ += static_cast<int64_t>(came);
        return came;
    }
    size_t came = 0;
    while (came < size) {
        const std::span<const uint8_t> bytes = Take(size - came);
        if (bytes.empty()) break;
        memcpy(out + came, bytes.data(), bytes.size());
        came += bytes.size();
    }
    return came;
}

std::span<const uint8_t> BlockReader::Take(size_t atMost) {
    if (next_ == end_) {
        next_ = 0;
        end_ = ReadFromFile(buffer_, kBlock);
    }
    const std::span<const uint8_t> bytes(buffer_ + next_, std::min(atMost, end_ - next_));
    next_ += bytes.size();
    position_ += static_cast<int64_t>(bytes.size());
    return bytes;
}

size_t BlockReader::ReadFromFile(void* destination, size_t size) {
    DWORD came = 0;
    if (failed_) return 0;
    if (ReadFile(file_.Get(), destination, static_cast<DWORD>(size), &came, nullptr)) return came;
    failed_ = true;
    return 0;
}

}  // namespace orvex
