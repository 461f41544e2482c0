#include "driver/profiles/profile_header.h"

#include <cstring>

namespace orvex {

namespace {

constexpr size_t kTagHeaderSize = 3;  // of a tag, and of the tag area
constexpr size_t kResolutionCodes = 2;

enum TagId : uint8_t { kNameTag = 1, kResolutionTag = 2 };

// Lines of the levels Error and Info are wanted together.
template <typename... Arguments>
void LogAt(LogLevel level, const char* format, const Arguments&... arguments) {
    if (logMask & kLogMaskErrors) [[unlikely]]
        LogWrite(level, format, arguments...);
}

uint32_t Number16(const uint8_t* bytes) {
    return bytes[0] | uint32_t{bytes[1]} << 8;
}
uint32_t Number32(const uint8_t* bytes) {
    return Number16(bytes) | Number16(bytes + 2) << 16;
}

bool ReadNameTag(BlockReader& file, size_t length, const TagTargets& targets, uint64_t* remaining) {
    if (length >= targets.nameSize) {
        LogInfo("not enough space to store profile name");
        return false;
    }
    const size_t came = file.Read(targets.name, length);
    targets.name[came] = '\0';
    *remaining -= came;
    if (came < length) {
        LogInfo("error reading profile name");
        return false;
    }
    LogInfo("Profile name:%s", targets.name);
    return true;
}

bool ReadResolutionTag(BlockReader& file, size_t length, const TagTargets& targets, uint64_t* remaining) {
    if (length != kResolutionCodes) {
        LogInfo("invalid hpres length %d", length);
        return false;
    }
    signed char codes[kResolutionCodes] = {};  // for other resolutions, for 600 dpi
    const size_t came = file.Read(codes, sizeof codes);
    *remaining -= came;
    // Deliberate: a code is taken even out of a tag that is cut short.
    if (targets.resolutionCode != nullptr) *targets.resolutionCode = codes[targets.at600Dpi ? 1 : 0];
    if (came < sizeof codes) {
        LogInfo("error reading hpres");
        return false;
    }
    if (targets.resolutionCode != nullptr) LogInfo("HP Res:%d", *targets.resolutionCode);
    return true;
}

// Reads one tag and takes its bytes off `remaining`.
bool ReadTag(BlockReader& file, const TagTargets& targets, uint64_t* remaining) {
    uint8_t header[kTagHeaderSize];
    const size_t came = file.Read(header, sizeof header);
    if (came < sizeof header) {
        LogInfo("error reading tag %d<>%d", came, sizeof header);
        return false;
    }
    *remaining -= sizeof header;
    const size_t length = Number16(header + 1);
    switch (header[0]) {
        case kNameTag:
            return ReadNameTag(file, length, targets, remaining);
        case kResolutionTag:
            return ReadResolutionTag(file, length, targets, remaining);
    }
    LogInfo("invalid profile tag %d", header[0]);
    return false;
}

}  // namespace

bool ReadProfileHeader(BlockReader& file, const char* path, LogLevel errors, ProfileHeader* header) {
    if (!file) {
        LogAt(errors, "Error: could not open file [%s]", path);
        return false;
    }
    uint8_t bytes[12];
    header->fileSize = file.Size();
    // What has no size is no file, and reading from it might never end.
    const size_t came = header->fileSize < 0 ? 0 : file.Read(bytes, sizeof bytes);
    if (came < sizeof bytes) {
        LogAt(errors, "error reading file %s %d", path, came);
        return false;
    }
    const uint32_t storedSize = Number32(bytes + 4);
    if (memcmp(bytes, "ZVC", 3) != 0 || storedSize != header->fileSize) {
        LogAt(errors, "invalid profile file %s %c%c%c %d<>%d", path, bytes[0], bytes[1], bytes[2], storedSize,
              header->fileSize);
        return false;
    }
    header->version = bytes[3];
    LogInfo("Profile version:%d", header->version);
    return true;
}

bool ReadProfileTags(BlockReader& file, const TagTargets& targets) {
    uint8_t area[kTagHeaderSize];
    const size_t came = file.Read(area, sizeof area);
    if (came < sizeof area) {
        LogInfo("error reading tag header %d<>%d", came, sizeof area);
        return false;
    }
    // Deliberate: there is always one tag, and tags that overrun their area let the count wrap below zero.
    // The walk then goes on until a tag is wrong or the file ends.
    uint64_t remaining = Number16(area + 1) - uint64_t{kTagHeaderSize};
    do {
        if (!ReadTag(file, targets, &remaining)) return false;
    } while (remaining != 0);
    return true;
}

}  // namespace orvex
