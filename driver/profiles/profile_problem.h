// The problems of profile files and the messages about them.
#pragma once

#include <cstdint>

#include "driver/support/log.h"

namespace orvex {

enum class ProfileFault : uint8_t {
    kNone,
    kNotOpened,
    kHeaderCut,
    kForeign,
    kTagAreaCut,
    kTagCut,
    kNameTooLong,
    kNameCut,
    kCodesLength,
    kCodesCut,
    kUnknownTag,
    kUnknownVersion,
    kColorsSize,
    kColorsCut,
};

// The reason for which a profile is refused. It is true when there is one.
struct ProfileProblem {
    ProfileFault fault = ProfileFault::kNone;
    int64_t numbers[5] = {};  // in the order of the message

    explicit operator bool() const { return fault != ProfileFault::kNone; }
};

// A message for the log's formatter, as long as `path` lives.
struct ProfileMessage {
    const char* format;
    LogArgument arguments[6];
};

ProfileMessage MessageOf(const ProfileProblem& problem, const char* path);

// Writes the message of a problem into the log; nothing when there is none. `level` is kError or kInfo.
void LogProfileProblem(const ProfileProblem& problem, const char* path, LogLevel level);

}  // namespace orvex
