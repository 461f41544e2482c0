// Showing what was measured: the table for people, JSON for programs.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>

#include "bench/bench.h"

namespace orvex::bench {

// On what was measured.
struct Machine {
    std::string processor;
    unsigned processors;
    std::string system;
    std::string largePages;  // the system's setting for those that nobody asks for
    std::string compiler;
    std::string flags;
    std::string kernels;     // which of the driver's loops ran
    std::string caches;      // the processor's
    std::string references;  // the libraries held against
};

Machine ThisMachine();

void PrintReport(const Machine& machine, const Bench& bench, std::ostream& out);
void WriteJson(const Machine& machine, const Bench& bench, const std::filesystem::path& path);

}  // namespace orvex::bench
