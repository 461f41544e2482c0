// Reports of what was measured: a table for people, JSON for programs.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>

#include "bench/bench.h"

namespace orvex::bench {

// The machine, compiler and libraries of a run.
struct Machine {
    std::string processor;
    unsigned processors;
    std::string system;
    std::string largePages;  // the system's transparent huge pages
    std::string compiler;
    std::string flags;
    std::string kernels;     // instruction set of the driver's loops
    std::string caches;      // the processor's
    std::string references;  // versions of the libraries that are compared with
};

Machine ThisMachine();

void PrintReport(const Machine& machine, const Bench& bench, std::ostream& out);
void WriteJson(const Machine& machine, const Bench& bench, const std::filesystem::path& path);

}  // namespace orvex::bench
