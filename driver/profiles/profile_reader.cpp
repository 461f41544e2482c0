#include "driver/profiles/profile_reader.h"

#include <algorithm>
#include <cstring>

namespace orvex {

namespace {

uint32_t Number16(const uint8_t* bytes) {
    return bytes[0] | uint32_t{bytes[1]} << 8;
}
uint32_t Number32(const uint8_t* bytes) {
    return Number16(bytes) | Number16(bytes + 2) << 16;
}

ProfileProblem CutShort(ProfileFault fault, size_t came) {
    return {fault, {static_cast<int64_t>(came), static_cast<int64_t>(kTagHeaderSize)}};
}

}  // namespace

ProfileProblem ReadProfileHeader(BlockReader& file, ProfileHeader* header) {
    if (!file) return {ProfileFault::kNotOpened};
    uint8_t bytes[kProfileHeaderSize] = {};
    header->fileSize = file.Size();
    // Without a size it is no regular file, and reading from it might never end.
    const size_t came = header->fileSize < 0 ? 0 : file.Read(bytes, sizeof bytes);
    header->markSize = std::min(came, sizeof header->mark);
    memcpy(header->mark, bytes, header->markSize);
    if (came < sizeof bytes) return {ProfileFault::kHeaderCut, {static_cast<int64_t>(came)}};
    header->version = bytes[3];
    header->storedSize = Number32(bytes + 4);
    if (memcmp(bytes, kProfileMark, sizeof header->mark) != 0 || header->storedSize != header->fileSize) {
        return {ProfileFault::kForeign, {bytes[0], bytes[1], bytes[2], header->storedSize, header->fileSize}};
    }
    return {};
}

bool TagReader::Next(ProfileTag* tag) {
    // Deliberate: there is always one tag, and tags that overrun their area let the count wrap below zero.
    // The walk then goes on until a tag is wrong or the file ends.
    if (problem_ || (inArea_ ? remaining_ == 0 : !ReadArea())) return false;
    uint8_t header[kTagHeaderSize];
    tag->offset = file_.Position();
    const size_t came = file_.Read(header, sizeof header);
    if (came < sizeof header) {
        problem_ = CutShort(ProfileFault::kTagCut, came);
        return false;
    }
    tag->id = header[0];
    tag->length = Number16(header + 1);
    tag->taken = false;
    tag->came = 0;
    problem_ = ReadData(tag);
    remaining_ -= sizeof header + tag->came;
    return true;
}

bool TagReader::ReadArea() {
    uint8_t header[kTagHeaderSize];
    const size_t came = file_.Read(header, sizeof header);
    if (came < sizeof header) {
        problem_ = CutShort(ProfileFault::kTagAreaCut, came);
        return false;
    }
    areaLength_ = Number16(header + 1);
    remaining_ = areaLength_ - uint64_t{kTagHeaderSize};
    inArea_ = true;
    return true;
}

ProfileProblem TagReader::ReadData(ProfileTag* tag) {
    ProfileFault cut = ProfileFault::kNameCut;
    if (tag->id == kNameTag) {
        if (tag->length >= nameCapacity_) return {ProfileFault::kNameTooLong};
    } else if (tag->id == kResolutionTag) {
        if (tag->length != kResolutionTagSize)
            return {ProfileFault::kCodesLength, {static_cast<int64_t>(tag->length)}};
        cut = ProfileFault::kCodesCut;
    } else {
        return {ProfileFault::kUnknownTag, {tag->id}};
    }
    tag->taken = true;
    tag->came = file_.Read(tag->data, tag->length);
    return {tag->IsWhole() ? ProfileFault::kNone : cut};
}

}  // namespace orvex
