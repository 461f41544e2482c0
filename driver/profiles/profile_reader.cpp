#include "driver/profiles/profile_reader.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace orvex {

namespace {

uint32_t Number16(const uint8_t* bytes) {
    return bytes[0] | uint32_t{bytes[1]} << 8;
}
uint32_t Number32(const uint8_t* bytes) {
    return Number16(bytes) | Number16(bytes + 2) << 16;
}

}  // namespace

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
    DWORD came = {};
    if (failed_) return 0;
    if (ReadFile(file_.Get(), destination, static_cast<DWORD>(size), &came, nullptr)) return came;
    failed_ = true;
    return 0;
}

ProfileMessage MessageOf(const ProfileProblem& problem, const char* path) {
    ProfileMessage message = {problem.fault->message, {}};
    LogArgument* argument = message.arguments;
    if (problem.fault->namesFile) *argument++ = path;
    for (const int64_t number : problem.numbers) *argument++ = number;
    return message;
}

void LogProfileProblem(const ProfileProblem& problem, const char* path, LogLevel level) {
    if (!problem || !(logMask & kLogMaskErrors)) return;  // that bit asks for both levels
    const ProfileMessage message = MessageOf(problem, path);
    WriteLogLine(level, message.format, message.arguments, std::size(message.arguments));
}

ProfileProblem ReadProfileHeader(BlockReader& file, ProfileHeader* header) {
    if (!file) return {&kFileNotOpened};
    uint8_t bytes[kProfileHeaderSize] = {};
    header->fileSize = file.Size();
    // A file without a size is not a regular one, and reading it might never end.
    const size_t came = header->fileSize < 0 ? 0 : file.Read(bytes, sizeof bytes);
    header->markSize = std::min(came, sizeof header->mark);
    memcpy(header->mark, bytes, header->markSize);
    if (came < sizeof bytes) return {&kHeaderCut, {static_cast<int64_t>(came)}};
    header->version = bytes[3];
    header->storedSize = Number32(bytes + 4);
    if (memcmp(bytes, kProfileMark, sizeof header->mark) != 0 || header->storedSize != header->fileSize) {
        return {&kForeignFile, {bytes[0], bytes[1], bytes[2], header->storedSize, header->fileSize}};
    }
    return {};
}

TagReader::TagReader(BlockReader& file, size_t nameCapacity) : file_(file), nameCapacity_(nameCapacity) {
    uint8_t header[kTagHeaderSize] = {};
    ReadHeader(header, &kTagAreaCut);  // a problem leaves no tag to read
    areaLength_ = Number16(header + 1);
    remaining_ = areaLength_ - uint64_t{kTagHeaderSize};
}

bool TagReader::Next(ProfileTag* tag) {
    if (problem_ || atEnd_) return false;
    uint8_t header[kTagHeaderSize];
    tag->offset = file_.Position();
    if (!ReadHeader(header, &kTagCut)) return false;
    tag->id = header[0];
    tag->length = Number16(header + 1);
    tag->taken = false;
    tag->came = 0;
    problem_ = ReadData(tag);
    // Deliberate: there is always one tag, and tags that overrun their area let the count wrap below zero.
    // The walk then goes on until a tag is wrong or the file ends.
    remaining_ -= sizeof header + tag->came;
    atEnd_ = remaining_ == 0;
    return true;
}

bool TagReader::ReadHeader(uint8_t (&header)[kTagHeaderSize], const ProfileFault* cut) {
    const size_t came = file_.Read(header, sizeof header);
    if (came < sizeof header) problem_ = {cut, {static_cast<int64_t>(came), sizeof header}};
    return !problem_;
}

ProfileProblem TagReader::ReadData(ProfileTag* tag) {
    const ProfileFault* cut = &kNameCut;
    if (tag->id == kNameTag) {
        if (tag->length >= nameCapacity_) return {&kNameTooLong};
    } else if (tag->id == kResolutionTag) {
        if (tag->length != kResolutionTagSize)
            return {&kWrongCodesLength, {static_cast<int64_t>(tag->length)}};
        cut = &kCodesCut;
    } else {
        return {&kUnknownTag, {tag->id}};
    }
    tag->taken = true;
    tag->came = file_.Read(tag->data, tag->length);
    return {tag->IsWhole() ? nullptr : cut};
}

}  // namespace orvex
