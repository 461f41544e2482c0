#include "driver/profiles/profile_problem.h"

#include <iterator>

namespace orvex {

namespace {

struct FaultText {
    const char* format;
    bool namesFile;  // the first argument is the path
};

// One row for each ProfileFault, in its order.
constexpr FaultText kFaultTexts[] = {
    {"", false},
    {"Error: could not open file [%s]", true},
    {"error reading file %s %d", true},
    {"invalid profile file %s %c%c%c %d<>%d", true},
    {"error reading tag header %d<>%d", false},
    {"error reading tag %d<>%d", false},
    {"not enough space to store profile name", false},
    {"error reading profile name", false},
    {"invalid hpres length %d", false},
    {"error reading hpres", false},
    {"invalid profile tag %d", false},
    {"non supported profile version", false},
    {"invalid file size %d<>%d", false},
    {"error reading profile %d<>%d", false},
};
static_assert(std::size(kFaultTexts) == static_cast<size_t>(ProfileFault::kColorsCut) + 1);

}  // namespace

ProfileMessage MessageOf(const ProfileProblem& problem, const char* path) {
    const FaultText& text = kFaultTexts[static_cast<size_t>(problem.fault)];
    ProfileMessage message = {text.format, {}};
    LogArgument* argument = message.arguments;
    if (text.namesFile) *argument++ = path;
    for (const int64_t number : problem.numbers) *argument++ = number;
    return message;
}

void LogProfileProblem(const ProfileProblem& problem, const char* path, LogLevel level) {
    if (!problem || !(logMask & kLogMaskErrors)) return;  // which asks for both levels
    const ProfileMessage message = MessageOf(problem, path);
    WriteLogLine(level, message.format, message.arguments, std::size(message.arguments));
}

}  // namespace orvex
