// The head of color profile files (*.zvp): the fixed header and the tags. The readers say what they find and
// what is wrong, and write no log.
//
// Numbers are little-endian.
//
//   0  "ZVC"                     the mark
//   3  1 byte                    version, 1 to 5
//   4  4 bytes                   size of the whole file
//   8  4 bytes                   not used
//  12  1 byte                    not used
//  13  2 bytes                   length of the tag area, from byte 12 on
//  15  tags                      1 byte id, 2 bytes length, data
//      colors                    the variant for 600 dpi, then the one for other resolutions
//
// The name is narrow text without a terminator. The resolution codes of the print engine are two signed
// bytes: for other resolutions, then for 600 dpi. Each version stores the colors in its own way; see the
// table in profile_colors.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "driver/support/handle.h"
#include "driver/support/log.h"

namespace orvex {

constexpr char kProfileMark[] = "ZVC";
constexpr size_t kProfileHeaderSize = 12;
constexpr size_t kTagHeaderSize = 3;  // of a tag, and of the tag area

enum TagId : uint8_t { kNameTag = 1, kResolutionTag = 2 };
constexpr size_t kResolutionTagSize = 2;

// Room for a profile's name with its terminator: in a job, and in the list of installed profiles.
constexpr size_t kProfileNameCapacity = 512;
constexpr size_t kListedNameCapacity = 100;

// The resolution code of a profile without one: the digit '0'.
constexpr signed char kDefaultResolutionCode = '0';

// A buffered reader of files, which turns many small reads into few calls of the system.
class BlockReader {
  public:
    // The bytes that it buffers. A reader fits on a small stack: profiles are listed on any thread, also
    // while a job loads one, so that the buffer can't be static.
    static constexpr size_t kBlock = 8192;

    // Opens the file for reading; the reader is false when that fails. The file is shared with readers and
    // writers, as with C's fopen, since an installer or a virus scanner may have it open for writing.
    explicit BlockReader(const char* path);
    explicit operator bool() const { return static_cast<bool>(file_); }

    // Returns the file's length in bytes, -1 when it can't be told: it is no regular file then.
    int64_t Size() const;
    // Returns the offset of the next byte.
    int64_t Position() const { return position_; }
    // Continues at another offset. If that fails, so does every later read.
    void Seek(int64_t position);
    // Returns whether a read or a seek has failed. The end of the file is no failure.
    bool Failed() const { return failed_; }

    // Reads `size` bytes and returns how many came: fewer only at the file's end or when reading fails. While
    // nothing is buffered, a large read goes straight into `destination`, in one piece.
    size_t Read(void* destination, size_t size);
    // Returns the next bytes, `atMost` or fewer, until the next call; none at the end or after a failure.
    std::span<const uint8_t> Take(size_t atMost);

  private:
    size_t ReadFromFile(void* destination, size_t size);

    OwnedHandle file_;
    int64_t position_ = 0;
    size_t next_ = 0;  // offset of the next byte in the buffer
    size_t end_ = 0;   // bytes in the buffer
    bool failed_ = false;
    uint8_t buffer_[kBlock];
};

// A kind of problem.
struct ProfileFault {
    const char* message;
    bool namesFile = false;  // the message's first argument is the path
};

// clang-format off
inline constexpr ProfileFault
    kFileNotOpened    = {"Error: could not open file [%s]", true},
    kHeaderCut        = {"error reading file %s %d", true},
    kForeignFile      = {"invalid profile file %s %c%c%c %d<>%d", true},
    kTagAreaCut       = {"error reading tag header %d<>%d"},
    kTagCut           = {"error reading tag %d<>%d"},
    kNameTooLong      = {"not enough space to store profile name"},
    kNameCut          = {"error reading profile name"},
    kWrongCodesLength = {"invalid hpres length %d"},
    kCodesCut         = {"error reading hpres"},
    kUnknownTag       = {"invalid profile tag %d"},
    kUnknownVersion   = {"non supported profile version"},
    kWrongColorsSize  = {"invalid file size %d<>%d"},
    kColorsCut        = {"error reading profile %d<>%d"};
// clang-format on

// The reason for which a profile is refused. It is false when there is none.
struct ProfileProblem {
    const ProfileFault* fault = nullptr;
    int64_t numbers[5] = {};  // in the order of the message

    explicit operator bool() const { return fault != nullptr; }
};

// A message for the log's formatter, as long as the path lives.
struct ProfileMessage {
    const char* format;
    LogArgument arguments[6];
};

ProfileMessage MessageOf(const ProfileProblem& problem, const char* path);

// Writes the message of a problem into the log; nothing when there is none. `level` is kError or kInfo.
void LogProfileProblem(const ProfileProblem& problem, const char* path, LogLevel level);

// The fields are 0 as far as the file ends before them.
struct ProfileHeader {
    int64_t fileSize = {};  // the file's own; -1 when it can't be told
    char mark[3] = {};
    size_t markSize = {};  // bytes of the mark that the file has
    uint8_t version = {};  // not judged
    uint32_t storedSize = {};
};

// Reads the header of a file just opened.
ProfileProblem ReadProfileHeader(BlockReader& file, ProfileHeader* header);

struct ProfileTag {
    int64_t offset;  // in the file
    uint8_t id;
    size_t length;  // as its header states
    bool taken;     // false when the id or the length is wrong: the data is not read then
    size_t came;    // bytes of data read; fewer than `length` at an early end of the file
    char data[kProfileNameCapacity];

    bool IsWhole() const { return taken && came == length; }
    // Returns a resolution code of a tag taken. Deliberate: where a tag is cut short, it is 0.
    signed char Code(bool at600Dpi) const {
        const size_t place = at600Dpi ? 1 : 0;
        return place < came ? static_cast<signed char>(data[place]) : static_cast<signed char>(0);
    }
};

// Walks over the tags that follow the header, and leaves the file at the colors.
class TagReader {
  public:
    // `nameCapacity` is the room for the name with its terminator, at most kProfileNameCapacity.
    TagReader(BlockReader& file, size_t nameCapacity);

    // Reads the next tag. Returns false after the last one and after a problem. A tag whose header came is
    // handed out even if the problem is in the tag itself.
    bool Next(ProfileTag* tag);
    const ProfileProblem& Problem() const { return problem_; }
    // Returns the length that the tag area's header states.
    uint32_t AreaLength() const { return areaLength_; }

  private:
    bool ReadHeader(uint8_t (&header)[kTagHeaderSize], const ProfileFault* cut);
    ProfileProblem ReadData(ProfileTag* tag);

    BlockReader& file_;
    size_t nameCapacity_;
    uint32_t areaLength_ = {};
    uint64_t remaining_ = {};  // bytes of the tag area
    bool atEnd_ = false;
    ProfileProblem problem_;
};

}  // namespace orvex
