// The problems of profile files and the messages about them.
#pragma once

#include <cstdint>

#include "driver/support/log.h"

namespace orvex {

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

}  // namespace orvex
