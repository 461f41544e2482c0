// Fuzzed functions. Each takes any bytes, drives one part of the system with them and ends the program
// through REQUIRE when an invariant is broken. libFuzzer runs them, and the tests run them over their seeds.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvex::fuzz {

using Seeds = std::vector<std::string>;

struct FuzzTarget {
    const char* name;
    void (*run)(std::span<const uint8_t> input);
    Seeds (*seeds)();        // small inputs that reach deep
    const char* dictionary;  // words of the format as lines of a libFuzzer dictionary, or null
};

std::span<const FuzzTarget> FuzzTargets();

// Returns null for an unknown name.
const FuzzTarget* FindFuzzTarget(std::string_view name);

// Little CMS, which reads ICC profiles, is linked natively only.
#ifdef ORVEX_LITTLE_CMS
#define ICC_FUZZ_TARGET(ROW) ROW(icc, Icc)
#else
#define ICC_FUZZ_TARGET(ROW)
#endif

#define FUZZ_TARGETS(ROW)                                                         \
    ROW(settings, Settings)              /* settings.inf and the log's mask */    \
    ROW(profile_names, ProfileNames)     /* profilenames.inf, profiles by name */ \
    ROW(media_import, MediaImport)       /* media.inf into the printer's data */  \
    ROW(label_data, LabelData)           /* labels out of the printer's data */   \
    ROW(profile, Profile)                /* color profile files */                \
    ROW(device_mode, DeviceModeMerge)    /* a caller's device mode */             \
    ROW(output_callback, OutputCallback) /* the engine's output to the spooler */ \
    ROW(page, Page)                      /* layout and rows of a page */          \
    ROW(adjustment, Adjustment)          /* adjusted grids of inks */             \
    ROW(thumbnail, Thumbnail)            /* the picture of a first page */        \
    ROW(row_code, RowCode)               /* the stand-in engine's rows */         \
    ROW(print_file, PrintFile)           /* print files in the viewer */          \
    ROW(tool_profile, ToolProfile)       /* color profiles in their tool */       \
    ROW(recipe, Recipe)                  /* recipes of color profiles */          \
    ROW(spool_file, SpoolFile)           /* spool files and shadow files */       \
    ROW(placement, Placement)            /* a picture's place on a page */        \
    ROW(picture, Picture)                /* pictures and metafiles */             \
    ROW(registry, Registry)              /* device modes in registry exports */   \
    ICC_FUZZ_TARGET(ROW)                 /* ICC profiles of printers */

#define DECLARE_FUZZ_TARGET(name, function)              \
    void Fuzz##function(std::span<const uint8_t> input); \
    Seeds function##Seeds();
FUZZ_TARGETS(DECLARE_FUZZ_TARGET)
#undef DECLARE_FUZZ_TARGET

// Prints the condition and its place and aborts if the condition is false.
#define REQUIRE(condition) ((condition) ? void() : InvariantBroken(#condition, __FILE__, __LINE__))
[[noreturn]] void InvariantBroken(const char* condition, const char* file, int line);

}  // namespace orvex::fuzz
