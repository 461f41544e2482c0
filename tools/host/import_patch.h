// Points a function that a loaded module imports at another one, for as long as the patch lives. On Windows
// it rewrites the module's import table; in the native build it sets the slot of the function in
// platform/posix.
//
// This is how a host supplies the graphics engine and the spooler, and how tests make a platform call fail.
// Patches of one function nest; they must end in reverse order.
#pragma once

#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows.h"

namespace orvex::tools {

class ImportPatch {
  public:
    // `module` is the importing module, null for the program itself; it is ignored natively. `replacement`
    // has the signature of the function, including WINAPI. If the module does not import `function`, nothing
    // is patched and Original() is null.
    ImportPatch(HMODULE module, const char* function, void* replacement);
    ~ImportPatch();
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    // Returns the function that the import pointed at before, so that a replacement can call it.
    void* Original() const { return original_; }

  private:
    void** slot_ = nullptr;
    void* original_ = nullptr;
};

// Returns the names of all functions that a loaded module imports, sorted, "library #3" for one without a
// name; natively all functions that have a slot.
std::vector<std::string> ImportedFunctions(HMODULE module);

#ifdef _WIN32
// Returns the names of the libraries from which a loaded module imports, sorted and each once.
std::vector<std::string> ImportedLibraries(HMODULE module);
#endif

struct ImportReplacement {
    template <typename Function>
    ImportReplacement(const char* imported, Function* with)
        : function(imported), replacement(reinterpret_cast<void*>(with)) {}

    const char* function;
    void* replacement;
};

// The import patches of one service, in all modules that it serves.
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

// Base of a service that replaces functions of the modules attached to it. Only one service of a kind may
// exist at a time in a process, since its functions find it through `current`.
template <typename Kind>
class ImportService {
  public:
    ImportService(const ImportService&) = delete;
    ImportService& operator=(const ImportService&) = delete;

  protected:
    // Throws std::logic_error if there already is a service of the kind.
    ImportService() {
        if (current != nullptr) throw std::logic_error("there already is a service of this kind");
        current = static_cast<Kind*>(this);
    }
    ~ImportService() { current = nullptr; }

    inline static Kind* current = nullptr;
    PatchSet patches_;
};

}  // namespace orvex::tools
