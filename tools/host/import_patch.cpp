#include "tools/host/import_patch.h"

#include <algorithm>

#ifdef _WIN32
#include <cstring>
#include <set>
#else
#include "platform/posix/slots.h"
#endif

namespace orvex::tools {

#ifdef _WIN32

namespace {

void* Address(HMODULE module, DWORD offset) {
    return reinterpret_cast<BYTE*>(module) + offset;
}

// An import of a module.
struct Import {
    const char* library;
    const char* function;  // null if it is imported by its number
    uint16_t number;
    void** entry;
};

std::vector<Import> Imports(HMODULE module) {
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(module);
    const auto* headers =
        static_cast<const IMAGE_NT_HEADERS64*>(Address(module, static_cast<DWORD>(dos->e_lfanew)));
    const IMAGE_DATA_DIRECTORY& directory =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    std::vector<Import> imports;
    if (directory.VirtualAddress == 0) return imports;
    auto* library = static_cast<const IMAGE_IMPORT_DESCRIPTOR*>(Address(module, directory.VirtualAddress));
    for (; library->Name != 0; ++library) {
        auto* name = static_cast<const IMAGE_THUNK_DATA64*>(Address(module, library->OriginalFirstThunk));
        auto* entry = static_cast<IMAGE_THUNK_DATA64*>(Address(module, library->FirstThunk));
        for (; name->u1.AddressOfData != 0; ++name, ++entry) {
            Import import = {static_cast<const char*>(Address(module, library->Name)), nullptr, 0,
                             reinterpret_cast<void**>(&entry->u1.Function)};
            if (IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal)) {
                import.number = static_cast<uint16_t>(IMAGE_ORDINAL64(name->u1.Ordinal));
            } else {
                const auto* named = static_cast<const IMAGE_IMPORT_BY_NAME*>(
                    Address(module, static_cast<DWORD>(name->u1.AddressOfData)));
                import.function = reinterpret_cast<const char*>(named->Name);
            }
            imports.push_back(import);
        }
    }
    return imports;
}

// Returns the import table's entry for `function`, from any library; null if there is none.
void** FindImport(HMODULE module, const char* function) {
    for (const Import& import : Imports(module)) {
        if (import.function != nullptr && strcmp(import.function, function) == 0) return import.entry;
    }
    return nullptr;
}

// Sets an entry of an import table, which may be in pages that the loader left read-only.
void SetEntry(void** entry, void* target) {
    DWORD protection = 0;
    VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
    *entry = target;
    VirtualProtect(entry, sizeof *entry, protection, &protection);
}

}  // namespace

ImportPatch::ImportPatch(HMODULE module, const char* function, void* replacement)
    : slot_(FindImport(module != nullptr ? module : GetModuleHandleW(nullptr), function)) {
    if (slot_ == nullptr) return;
    original_ = *slot_;
    SetEntry(slot_, replacement);
}

ImportPatch::~ImportPatch() {
    if (slot_ != nullptr) SetEntry(slot_, original_);
}

std::vector<std::string> ImportedFunctions(HMODULE module) {
    std::vector<std::string> names;
    for (const Import& import : Imports(module)) {
        names.push_back(import.function != nullptr
                            ? import.function
                            : std::string(import.library) + " #" + std::to_string(import.number));
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> ImportedLibraries(HMODULE module) {
    std::set<std::string> names;
    for (const Import& import : Imports(module)) names.insert(import.library);
    return {names.begin(), names.end()};
}

#else

ImportPatch::ImportPatch(HMODULE, const char* function, void* replacement)
    : slot_(posix::FindSlot(function)) {
    if (slot_ == nullptr) return;
    original_ = *slot_;
    *slot_ = replacement;
}

ImportPatch::~ImportPatch() {
    if (slot_ != nullptr) *slot_ = original_;
}

std::vector<std::string> ImportedFunctions(HMODULE) {
    std::vector<std::string> names = posix::SlotNames();
    std::sort(names.begin(), names.end());
    return names;
}

#endif

}  // namespace orvex::tools
