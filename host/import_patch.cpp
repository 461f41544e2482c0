#include "host/import_patch.h"

#ifdef _WIN32

#include <cstring>

namespace {

void* Address(HMODULE module, DWORD offset) {
    return reinterpret_cast<BYTE*>(module) + offset;
}

// The import table's entry for `function`, whichever library it comes from; null when there is none.
void** FindImport(HMODULE module, const char* function) {
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(module);
    const auto* headers =
        static_cast<const IMAGE_NT_HEADERS64*>(Address(module, static_cast<DWORD>(dos->e_lfanew)));
    const IMAGE_DATA_DIRECTORY& directory =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0) return nullptr;
    auto* library = static_cast<const IMAGE_IMPORT_DESCRIPTOR*>(Address(module, directory.VirtualAddress));
    for (; library->Name != 0; ++library) {
        auto* name = static_cast<const IMAGE_THUNK_DATA64*>(Address(module, library->OriginalFirstThunk));
        auto* entry = static_cast<IMAGE_THUNK_DATA64*>(Address(module, library->FirstThunk));
        for (; name->u1.AddressOfData != 0; ++name, ++entry) {
            if (IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal)) continue;
            const auto* import = static_cast<const IMAGE_IMPORT_BY_NAME*>(
                Address(module, static_cast<DWORD>(name->u1.AddressOfData)));
            if (strcmp(reinterpret_cast<const char*>(import->Name), function) == 0) {
                return reinterpret_cast<void**>(&entry->u1.Function);
            }
        }
    }
    return nullptr;
}

// Import tables may lie in pages that are read-only once the loader is done.
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

#else

#include "tests/doubles/double.h"

ImportPatch::ImportPatch(HMODULE, const char* function, void* replacement)
    : slot_(doubles::FindSlot(function)) {
    if (slot_ == nullptr) return;
    original_ = *slot_;
    *slot_ = replacement;
}

ImportPatch::~ImportPatch() {
    if (slot_ != nullptr) *slot_ = original_;
}

#endif
