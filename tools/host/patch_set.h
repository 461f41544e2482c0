// The import patches of one service, in all modules that it serves.
#pragma once

#include <initializer_list>
#include <memory>
#include <string_view>
#include <vector>

#include "tools/host/import_patch.h"

namespace orvex::tools {

struct ImportReplacement {
    template <typename Function>
    ImportReplacement(const char* imported, Function* with)
        : function(imported), replacement(reinterpret_cast<void*>(with)) {}

    const char* function;
    void* replacement;
};

class PatchSet {
  public:
    PatchSet() = default;
    ~PatchSet() {
        while (!patches_.empty()) patches_.pop_back();
    }
    PatchSet(const PatchSet&) = delete;
    PatchSet& operator=(const PatchSet&) = delete;

    // Patches `module`; null is the program itself. Natively all modules share one slot per function, so only
    // the first call patches.
    void Attach(HMODULE module, std::initializer_list<ImportReplacement> replacements) {
#ifndef _WIN32
        if (!patches_.empty()) return;
#endif
        for (const ImportReplacement& each : replacements) {
            patches_.push_back(std::make_unique<Patch>(module, each));
        }
    }

    // Returns the function that the modules imported under `name` before, or null if none of them imports it.
    // The second argument only gives its type.
    template <typename Function>
    Function* Original(const char* name, Function*) const {
        for (const auto& each : patches_) {
            if (each->function == name && each->patch.Original() != nullptr) {
                return reinterpret_cast<Function*>(each->patch.Original());
            }
        }
        return nullptr;
    }

  private:
    struct Patch {
        Patch(HMODULE module, const ImportReplacement& with)
            : function(with.function), patch(module, with.function, with.replacement) {}
        std::string_view function;
        ImportPatch patch;
    };
    std::vector<std::unique_ptr<Patch>> patches_;
};

}  // namespace orvex::tools
