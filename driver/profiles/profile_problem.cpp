#include "driver/profiles/profile_problem.h"

#include <iterator>

namespace orvex {

ProfileMessage MessageOf(const ProfileProblem& problem, const char* path) {
    ProfileMessage message = {problem.fault->message, {}};
    LogArgument* argument = message.arguments;
    if (problem.fault->namesFile) *argument++ = path;
    for (const int64_t number : problem.numbers) *argument++ = number;
    return message;
}

void LogProfileProblem(const ProfileProblem& problem, const char* path, LogLevel level) {
    if (!problem || !(logMask & kLogMaskErrors)) return;  // that bit asks for both levels
    const ProfileMessage message = MessageOf(problem, path);
    WriteLogLine(level, message.format, message.arguments, std::size(message.arguments));
}

}  // namespace orvex
