#include "tests/plain/driver/profile_head.h"

#include <algorithm>

namespace orvex::plain {

namespace {

uint32_t Number(const std::string& bytes, size_t at, size_t size) {
    uint32_t value = 0;
    for (size_t i = size; i-- > 0;) value = value << 8 | static_cast<uint8_t>(bytes[at + i]);
    return value;
}

// Reads the tags of a file that begins with `bytes` and notes what they say.
void ReadTags(const std::string& bytes, size_t nameSize, bool at600Dpi, ProfileHead& head, Log& log) {
    const auto left = [&](size_t at) { return static_cast<int>(bytes.size() - std::min(at, bytes.size())); };
    if (left(12) < 3) return log.Info("error reading tag header %d<>%d", left(12), 3);
    uint64_t remaining = uint64_t{Number(bytes, 13, 2)} - 3;
    size_t at = 15;
    do {
        if (left(at) < 3) return log.Info("error reading tag %d<>%d", left(at), 3);
        const int id = static_cast<uint8_t>(bytes[at]);
        const uint32_t length = Number(bytes, at + 1, 2);
        const std::string data = bytes.substr(at + 3, length);
        if (id == 1) {
            if (length >= nameSize) return log.Info("not enough space to store profile name");
            head.name = data.substr(0, data.find('\0'));
            if (data.size() < length) return log.Info("error reading profile name");
            log.Info("Profile name:%s", head.name.c_str());
        } else if (id == 2) {
            if (length != 2) return log.Info("invalid hpres length %d", static_cast<int>(length));
            const size_t place = at600Dpi ? 1 : 0;
            head.code = data.size() > place ? static_cast<int8_t>(data[place]) : int8_t{0};
            if (data.size() < length) return log.Info("error reading hpres");
            // A list of names has no use for the code.
            if (nameSize == 512) log.Info("HP Res:%d", head.code);
        } else {
            return log.Info("invalid profile tag %d", id);
        }
        at += 3 + data.size();
        remaining -= 3 + data.size();
    } while (remaining != 0);
    head.sound = true;
    head.colorsAt = at;
}

}  // namespace

ProfileHead ReadHead(const SparseFile* file, const std::string& path, const std::string& nameBefore,
                     size_t nameSize, bool at600Dpi, bool asErrors, Log& log) {
    ProfileHead head;
    head.name = nameBefore;
    const auto fail = [&](const std::string& text) {
        asErrors ? log.Error(text) : log.Info(text);
        return head;
    };
    if (file == nullptr) return fail("Error: could not open file [" + path + "]");
    const std::string bytes = file->Beginning(1 << 20);
    if (bytes.size() < 12) return fail("error reading file " + path + " " + std::to_string(bytes.size()));
    const uint32_t size = Number(bytes, 4, 4);
    if (!bytes.starts_with("ZVC") || size != file->size) {
        return fail("invalid profile file " + path + " " + bytes.substr(0, 3) + " " +
                    std::to_string(static_cast<int32_t>(size)) + "<>" +
                    std::to_string(static_cast<int32_t>(file->size)));
    }
    head.version = static_cast<uint8_t>(bytes[3]);
    log.Info("Profile version:%d", int{head.version});
    ReadTags(bytes, nameSize, at600Dpi, head, log);
    return head;
}

}  // namespace orvex::plain
