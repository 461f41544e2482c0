#include "tools/orvexprofile/profile_reader.h"

#include <fstream>

namespace orvex::tools::profile {

namespace {

// The file as the driver's reader goes through it.
class ProfileInput {
  public:
    explicit ProfileInput(const std::filesystem::path& path) : in_(path, std::ios::binary) {}

    bool IsOpen() const { return in_.is_open(); }
    uint64_t Size() {
        in_.seekg(0, std::ios::end);
        const auto end = in_.tellg();
        in_.seekg(0);
        return end < 0 ? 0 : static_cast<uint64_t>(end);
    }
    // As many of `size` bytes as the file still has.
    std::string Take(size_t size) {
        std::string bytes(size, '\0');
        in_.read(bytes.data(), static_cast<std::streamsize>(size));
        bytes.resize(static_cast<size_t>(in_.gcount()));
        in_.clear();
        offset_ += bytes.size();
        return bytes;
    }
    uint64_t Offset() const { return offset_; }

  private:
    std::ifstream in_;
    uint64_t offset_ = 0;
};

uint32_t LittleEndian(std::string_view bytes, size_t offset, size_t size) {
    uint32_t value = 0;
    for (size_t i = 0; i < size; ++i) {
        value |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[offset + i])) << (8 * i);
    }
    return value;
}

// "%d<>%d" of the messages, as the driver's 32-bit log conversions show them.
std::string Compared(uint64_t found, uint64_t expected) {
    return std::to_string(static_cast<int32_t>(found)) + "<>" +
           std::to_string(static_cast<int32_t>(expected));
}

std::string ReadHeader(ProfileInput& in, const std::string& path, ProfileFacts& facts) {
    facts.size = in.Size();
    const std::string header = in.Take(kHeaderSize);
    facts.magic = header.substr(0, 3);
    if (header.size() < kHeaderSize)
        return "error reading file " + path + " " + std::to_string(header.size());
    facts.version = static_cast<uint8_t>(header[3]);
    facts.storedSize = LittleEndian(header, 4, 4);
    if (facts.magic != "ZVC" || facts.storedSize != facts.size) {
        return "invalid profile file " + path + " " + facts.magic + " " +
               Compared(facts.storedSize, facts.size);
    }
    const std::string tagArea = in.Take(kTagHeaderSize);
    if (tagArea.size() < kTagHeaderSize) {
        return "error reading tag header " + Compared(tagArea.size(), kTagHeaderSize);
    }
    facts.tagAreaLength = LittleEndian(tagArea, 1, 2);
    return "";
}

// Takes the data of a tag whose header is read.
std::string ReadTagData(ProfileInput& in, TagFacts& tag) {
    switch (tag.id) {
        case kNameTag:
            if (tag.length > kLongestName) return "not enough space to store profile name";
            tag.data = in.Take(tag.length);
            return tag.data.size() < tag.length ? "error reading profile name" : "";
        case kResolutionTag:
            if (tag.length != 2) return "invalid hpres length " + std::to_string(tag.length);
            tag.data = in.Take(tag.length);
            return tag.data.size() < tag.length ? "error reading hpres" : "";
        default:
            return "invalid profile tag " + std::to_string(tag.id);
    }
}

// The reader takes at least one tag and stops when the area's length is used up exactly. An area that is too
// short for its tags makes the count wrap, and the reader goes on into whatever follows.
std::string ReadTags(ProfileInput& in, ProfileFacts& facts) {
    uint64_t remaining = uint64_t{facts.tagAreaLength} - kTagHeaderSize;
    do {
        TagFacts tag;
        tag.offset = in.Offset();
        const std::string header = in.Take(kTagHeaderSize);
        if (header.size() < kTagHeaderSize)
            return "error reading tag " + Compared(header.size(), kTagHeaderSize);
        tag.id = static_cast<uint8_t>(header[0]);
        tag.length = LittleEndian(header, 1, 2);
        std::string problem = ReadTagData(in, tag);
        remaining -= kTagHeaderSize + tag.data.size();
        facts.tags.push_back(tag);
        if (!problem.empty()) return problem;
    } while (remaining != 0);
    return "";
}

std::string CheckData(ProfileInput& in, ProfileFacts& facts) {
    facts.dataOffset = in.Offset();
    if (facts.version < kFirstVersion || facts.version > kLastVersion) return "non supported profile version";
    const uint64_t found = facts.size - facts.dataOffset;
    const uint64_t expected = 2 * LayoutOf(facts.version).VariantSize();
    return found != expected ? "invalid file size " + Compared(found, expected) : "";
}

}  // namespace

std::optional<std::string> ProfileFacts::Name() const {
    std::optional<std::string> name;
    for (const TagFacts& tag : tags) {
        if (tag.id == kNameTag && tag.length <= kLongestName) name = tag.data;
    }
    return name;
}

std::optional<ResolutionCodes> ProfileFacts::Codes() const {
    std::optional<ResolutionCodes> codes;
    for (const TagFacts& tag : tags) {
        if (tag.id == kResolutionTag && tag.data.size() == 2) {
            codes = {static_cast<int8_t>(tag.data[0]), static_cast<int8_t>(tag.data[1])};
        }
    }
    return codes;
}

ProfileFacts InspectProfile(const std::filesystem::path& path) {
    ProfileFacts facts;
    ProfileInput in(path);
    std::error_code ignored;
    if (!in.IsOpen() || std::filesystem::is_directory(path, ignored)) {
        facts.problem = "Error: could not open file [" + path.string() + "]";
        return facts;
    }
    facts.problem = ReadHeader(in, path.string(), facts);
    if (facts.Accepted()) facts.problem = ReadTags(in, facts);
    if (facts.Accepted()) facts.problem = CheckData(in, facts);
    return facts;
}

}  // namespace orvex::tools::profile
