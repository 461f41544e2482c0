// The graphics engine's half of a driver's life: surfaces and palettes. The bits of a surface and the SURFOBJ
// that hooks receive lie in guarded memory.
//
// One graphics engine exists at a time in a process.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/windows.h"
#include "tools/host/guarded_memory.h"
#include "tools/host/patch_set.h"

namespace orvex::tools {

enum class EngineService { kCreateBitmap, kAssociateSurface, kDeleteSurface, kEraseSurface, kCreatePalette };
constexpr size_t kEngineServices = 5;

// What the engine knows of one surface.
struct EngineSurface {
    SIZEL size;
    LONG stride;      // bytes a scan line
    ULONG format;     // BMF_...
    FLONG hooks = 0;  // of the last EngAssociateSurface
    std::unique_ptr<GuardedMemory> bits;
    std::unique_ptr<GuardedMemory> object;  // the SURFOBJ

    SURFOBJ& Object() const { return *reinterpret_cast<SURFOBJ*>(object->Data()); }
};

// One erased area, as a driver asked for it.
struct Erasure {
    SURFOBJ* surface;
    RECTL area;
    ULONG color;
};

class GraphicsEngine {
  public:
    GraphicsEngine();
    ~GraphicsEngine();
    GraphicsEngine(const GraphicsEngine&) = delete;
    GraphicsEngine& operator=(const GraphicsEngine&) = delete;

    // Serves what `module` imports of the graphics engine.
    void Attach(HMODULE module);

    // A device's handle, and the instance that the driver made for it. Surfaces can be associated with known
    // devices.
    HDEV AddDevice();
    void SetInstance(HDEV device, DHPDEV instance);
    void RemoveDevice(HDEV device);

    // Null for a handle that names no live surface.
    EngineSurface* FindSurface(HSURF surface);
    size_t LiveSurfaces() const { return surfaces_.size(); }
    // Palettes live until the engine is told that the device which names them is gone.
    size_t LivePalettes() const { return palettes_.size(); }
    void ReleasePalette(HPALETTE palette);

    // Makes one call of the service fail: the next one, or after `sparing` calls that work.
    void FailCall(EngineService service, uint32_t sparing = 0);

    uint32_t Calls(EngineService service) const { return services_[static_cast<size_t>(service)].calls; }
    const std::vector<Erasure>& Erasures() const { return erasures_; }
    // Calls whose arguments no graphics engine would take, in words.
    const std::vector<std::string>& Complaints() const { return complaints_; }

  private:
    friend struct EngineReplacements;

    struct Service {
        uint32_t calls = 0;
        bool armed = false;
        uint32_t sparing = 0;
    };
    // Counts a call and tells whether it is to fail.
    bool Fails(EngineService service);
    // A failing call's last error, and its complaint.
    void Complain(const char* complaint);

    std::map<HSURF, EngineSurface> surfaces_;
    std::map<HDEV, DHPDEV> devices_;
    std::vector<HPALETTE> palettes_;
    std::vector<Erasure> erasures_;
    std::vector<std::string> complaints_;
    Service services_[kEngineServices];
    uintptr_t nextHandle_ = 0x1000;
    PatchSet patches_;
};

}  // namespace orvex::tools
