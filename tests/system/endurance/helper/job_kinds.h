// The kinds of jobs that a long run mixes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

#include "tools/host/driver_session.h"

namespace orvex {

using namespace tools;
struct JobKind {
    const char* name;
    const char* profile;  // a file of the profiles folder; empty: the generic conversion
    int16_t dpi;
    bool landscape;
    bool turned;     // rotated and mirrored
    bool thumbnail;  // of the first page, in the header
    bool reset;      // the device is reset in the middle of the job
    int32_t colorMode;
    int8_t brightness;
    int16_t purgeBar;
};

constexpr size_t kPagesAJob = 10;

std::span<const JobKind> JobKinds();

// Writes the profiles of all kinds.
void InstallJobProfiles(const std::filesystem::path& installation);

// What such jobs run in: the driver with the stand-in engine's library.
SessionSetup JobSession(const std::filesystem::path& installation);

// Prints one job of the kind, hook by hook, and returns all that reached the printer. The pages are drawn by
// rule. Throws std::runtime_error when a hook refuses.
std::string PrintJob(DriverSession& session, const std::filesystem::path& installation, const JobKind& kind);

}  // namespace orvex
