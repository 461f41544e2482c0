#include "fuzz/profile_model.h"

#include <algorithm>

namespace {

uint32_t Number(std::string_view bytes) {
    uint32_t value = 0;
    for (size_t i = bytes.size(); i-- > 0;) value = value << 8 | static_cast<uint8_t>(bytes[i]);
    return value;
}

}  // namespace

TagWalk WalkTags(std::string_view file, size_t nameSize, bool at600Dpi) {
    TagWalk walk;
    if (file.size() < 15 || !file.starts_with("ZVC") || Number(file.substr(4, 4)) != file.size()) return walk;
    size_t at = 15;
    int64_t left = int64_t{Number(file.substr(13, 2))} - 3;  // what overruns it never comes to 0 again
    do {
        if (file.size() - at < 3) return walk;
        const char id = file[at];
        const size_t length = Number(file.substr(at + 1, 2));
        at += 3;
        if (id != 1 && id != 2) return walk;
        if (id == 1 ? length >= nameSize : length != 2) return walk;
        const std::string_view data = file.substr(at, length);
        if (id == 1) walk.name = data.substr(0, data.find('\0'));
        // A code out of a tag that is cut short counts; what is missing of it is 0.
        if (id == 2) walk.code = static_cast<signed char>(data.size() > at600Dpi ? data[at600Dpi] : 0);
        if (data.size() < length) return walk;
        at += length;
        left -= static_cast<int64_t>(3 + length);
    } while (left != 0);
    walk.accepted = true;
    walk.colorsAt = at;
    return walk;
}

bool HoldsColors(std::string_view file, size_t colorsAt) {
    constexpr size_t kSizes[] = {134217728, 134217728, 16777216, 16777216, 39304};
    const auto version = static_cast<uint8_t>(file[3]);
    return version >= 1 && version <= 5 && file.size() - colorsAt == kSizes[version - 1];
}
