// Points a function that a loaded module imports at another one, for as long as the patch lives. On Windows
// it rewrites the module's import table; in the native build it sets the slot of
// the function in platform/posix.
//
// This is how a host supplies the graphics engine and the spooler, and how tests make a platform call fail.
// Patches of one function nest; they must end in reverse order.
#pragma once

#include <string>
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

// The names of all functions that a loaded module imports, sorted, "library #3" for one without a name;
// natively all functions that have a slot.
std::vector<std::string> ImportedFunctions(HMODULE module);

#ifdef _WIN32
// Returns the names of the libraries from which a loaded module imports, sorted and each once.
std::vector<std::string> ImportedLibraries(HMODULE module);
#endif

}  // namespace orvex::tools
