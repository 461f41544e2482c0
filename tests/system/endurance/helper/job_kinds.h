// The kinds of jobs that a long run mixes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

#include "tools/host/driver_session.h"

namespace orvex {

struct JobKind {
    const char* name;
    const char* profile;  // a file of the profiles folder; empty for the generic conversion
    int16_t dpi;
    bool landscape;
    bool turned;     // rotated and mirrored
    bool thumbnail;  // in the header
    bool reset;      // the device is reset in the middle of the job
    int32_t colorMode;
    int8_t brightness;
    int16_t purgeBar;
};

constexpr size_t kPagesAJob = 10;

std::span<const JobKind> JobKinds();

// Writes the profiles of all kinds.
void InstallJobProfiles(const std::filesystem::path& installation);

// Returns the setup for such jobs: the driver with the stand-in engine's library.
tools::SessionSetup JobSession(const std::filesystem::path& installation);

// Prints one job of the kind, hook by hook, and returns the bytes that reached the printer. The same page of
// each job is drawn alike. Throws std::runtime_error if a hook refuses.
std::string PrintJob(tools::DriverSession& session, const std::filesystem::path& installation,
                     const JobKind& kind);

}  // namespace orvex
