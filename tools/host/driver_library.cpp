#include "tools/host/driver_library.h"

#include <cstddef>
#include <cstring>
#include <iterator>

#include "tools/common/wide_text.h"

namespace orvex::tools {

#ifndef _WIN32

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);
#endif

namespace fs = std::filesystem;

namespace {

constexpr ULONG kGraphicsEngineVersion = 0x30000;
constexpr char kDriverFile[] = "orvexgdi.dll";
constexpr char kLogFolder[] = "c:\\temp\\";

struct HookEntry {
    ULONG index;
    const char* name;
    size_t offset;
};
// The hooks in the order of the driver's table.
constexpr HookEntry kHookTable[] = {
    {INDEX_DrvEnablePDEV, "DrvEnablePDEV", offsetof(DriverHooks, enablePdev)},
    {INDEX_DrvResetPDEV, "DrvResetPDEV", offsetof(DriverHooks, resetPdev)},
    {INDEX_DrvCompletePDEV, "DrvCompletePDEV", offsetof(DriverHooks, completePdev)},
    {INDEX_DrvDisablePDEV, "DrvDisablePDEV", offsetof(DriverHooks, disablePdev)},
    {INDEX_DrvEnableSurface, "DrvEnableSurface", offsetof(DriverHooks, enableSurface)},
    {INDEX_DrvDisableSurface, "DrvDisableSurface", offsetof(DriverHooks, disableSurface)},
    {INDEX_DrvStartPage, "DrvStartPage", offsetof(DriverHooks, startPage)},
    {INDEX_DrvSendPage, "DrvSendPage", offsetof(DriverHooks, sendPage)},
    {INDEX_DrvStartDoc, "DrvStartDoc", offsetof(DriverHooks, startDoc)},
    {INDEX_DrvEndDoc, "DrvEndDoc", offsetof(DriverHooks, endDoc)},
};

#ifdef _WIN32

std::string ModuleFileName(HMODULE module) {
    std::u16string name(32768, u'\0');
    const DWORD length = GetModuleFileNameW(module, AsWchar(name), static_cast<DWORD>(name.size()));
    name.resize(length);
    return Utf8(name);
}

template <typename Function>
Function Export(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

#else

std::string ModuleFileName(HMODULE module) {
    char name[MAX_PATH];
    return std::string(name, GetModuleFileNameA(module, name, sizeof name));
}

#endif

}  // namespace

DriverHooks ReadHookTable(const DRVENABLEDATA& table) {
    if (table.iDriverVersion != kGraphicsEngineVersion)
        throw DriverError("the driver is of another driver version");
    if (table.c != std::size(kHookTable) || table.pdrvfn == nullptr) {
        throw DriverError("the driver's table holds " + std::to_string(table.c) + " hooks, not " +
                          std::to_string(std::size(kHookTable)));
    }
    DriverHooks hooks = {};
    for (size_t i = 0; i < std::size(kHookTable); ++i) {
        const DRVFN& entry = table.pdrvfn[i];
        if (entry.iFunc != kHookTable[i].index || entry.pfn == nullptr) {
            throw DriverError("entry " + std::to_string(i + 1) + " of the driver's table is not " +
                              kHookTable[i].name);
        }
        memcpy(reinterpret_cast<uint8_t*>(&hooks) + kHookTable[i].offset, &entry.pfn, sizeof entry.pfn);
    }
    return hooks;
}

DriverLibrary::DriverLibrary(const fs::path& file) {
#ifdef _WIN32
    module_ = LoadLibraryW(file.c_str());
    if (module_ == nullptr) {
        throw DriverError("the driver " + Utf8FromPath(file) + " can't be loaded (error " +
                          std::to_string(GetLastError()) + ")");
    }
    enableDriver_ = Export<PFN_DrvEnableDriver>(module_, "DrvEnableDriver");
    queryDriverInfo_ = Export<PFN_DrvQueryDriverInfo>(module_, "DrvQueryDriverInfo");
#else
    (void)file;
    static const char image[1] = {};  // a module's handle is the address of its image
    module_ = reinterpret_cast<HMODULE>(const_cast<char*>(image));
    DllMain(module_, DLL_PROCESS_ATTACH, nullptr);
    enableDriver_ = &DrvEnableDriver;
    queryDriverInfo_ = &DrvQueryDriverInfo;
#endif
    try {
        if (enableDriver_ == nullptr) throw DriverError(Utf8FromPath(file) + " is no printer driver");
        DRVENABLEDATA table = {};
        if (!enableDriver_(kGraphicsEngineVersion, sizeof table, &table))
            throw DriverError("the driver refuses this graphics engine");
        hooks_ = ReadHookTable(table);
    } catch (const DriverError&) {
#ifdef _WIN32
        FreeLibrary(module_);
#endif
        throw;
    }
}

DriverLibrary::~DriverLibrary() {  // NOLINT(modernize-use-equals-default): empty natively only
#ifdef _WIN32
    FreeLibrary(module_);
#endif
}

std::string DriverLibrary::LogName() const {
    return LogFileName("txt");
}

std::string DriverLibrary::LogControlName() const {
    return LogFileName("dat");
}

std::string DriverLibrary::LogFileName(const char* extension) const {
    const std::string file = ModuleFileName(module_);
    const std::string name = file.substr(file.rfind('\\') + 1);
    return kLogFolder + name.substr(0, name.size() - strlen("dll")) + extension;
}

fs::path DriverLibrary::LogPath() const {
    return MachinePath(LogName());
}

fs::path DriverLibrary::LogControlPath() const {
    return MachinePath(LogControlName());
}

fs::path DefaultDriverFile() {
    return ProgramFolder() / kDriverFile;
}

fs::path ProgramFolder() {
#ifdef _WIN32
    return PathFromUtf8(ModuleFileName(nullptr)).parent_path();
#else
    return fs::read_symlink("/proc/self/exe").parent_path();
#endif
}

}  // namespace orvex::tools
