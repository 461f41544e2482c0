// The reader of a profile's head: the fixed header and the tags. It says what it finds and what is wrong, and
// writes no log.
#pragma once

#include "driver/profiles/block_reader.h"
#include "driver/profiles/profile_format.h"
#include "driver/profiles/profile_problem.h"

namespace orvex {

// The fields are 0 as far as the file ends before them.
struct ProfileHeader {
    int64_t fileSize = 0;  // the file's own; -1 when it can't be told
    char mark[3] = {};
    size_t markSize = 0;  // bytes of the mark that the file has
    uint8_t version = 0;  // not judged
    uint32_t storedSize = 0;
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
    // Returns a resolution code of a tag taken. Deliberate: a tag that is cut short still has codes, 0 for a
    // missing one.
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
    uint32_t areaLength_ = 0;
    uint64_t remaining_ = 0;  // bytes of the tag area
    bool atEnd_ = false;
    ProfileProblem problem_;
};

}  // namespace orvex
