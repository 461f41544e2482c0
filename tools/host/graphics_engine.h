// The part of the graphics engine that a printer driver calls: surfaces and palettes. The bits of a surface
// and the SURFOBJ that hooks receive are in guarded memory.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/windows.h"
#include "tools/host/guarded_memory.h"
#include "tools/host/import_patch.h"

namespace orvex::tools {

// Functions of the graphics engine that are counted and can fail.
enum class GraphicsService {
    kCreateBitmap,
    kAssociateSurface,
    kDeleteSurface,
    kEraseSurface,
    kCreatePalette
};
constexpr size_t kGraphicsServices = 5;

// A surface that pages are drawn on.
struct DrawnSurface {
    SIZEL size;
    LONG stride;      // bytes per scan line
    ULONG format;     // BMF_...
    FLONG hooks = 0;  // from the last EngAssociateSurface
    std::unique_ptr<GuardedMemory> bits;
    std::unique_ptr<GuardedMemory> object;  // the SURFOBJ

    SURFOBJ& Object() const { return *reinterpret_cast<SURFOBJ*>(object->Data()); }
};

// One call to erase an area.
struct Erasure {
    SURFOBJ* surface;
    RECTL area;
    ULONG color;
};

class GraphicsEngine : public ImportService<GraphicsEngine> {
  public:
    // Serves the functions of the graphics engine that `module` imports.
    void Attach(HMODULE module);

    // Add a device, note the instance that the driver made for it, and remove it. Surfaces can be associated
    // only with devices that exist.
    HDEV AddDevice();
    void SetInstance(HDEV device, DHPDEV instance);
    void RemoveDevice(HDEV device);

    // Returns null if the handle names no live surface.
    DrawnSurface* FindSurface(HSURF surface);
    size_t LiveSurfaces() const { return surfaces_.size(); }
    // Palettes live until ReleasePalette(), which is called when their device is disabled.
    size_t LivePalettes() const { return palettes_.size(); }
    void ReleasePalette(HPALETTE palette);

    // Makes one call of the service fail, after `sparing` calls that succeed.
    void FailCall(GraphicsService service, uint32_t sparing = 0);

    uint32_t Calls(GraphicsService service) const { return services_[static_cast<size_t>(service)].calls; }
    const std::vector<Erasure>& Erasures() const { return erasures_; }
    // Returns in words which calls had arguments that no graphics engine would accept.
    const std::vector<std::string>& Complaints() const { return complaints_; }

  private:
    struct Replacements;

    struct Service {
        uint32_t calls = 0;
        bool armed = false;
        uint32_t sparing = 0;
    };
    // Counts a call and returns whether it must fail.
    bool Fails(GraphicsService service);
    // Records a complaint and sets the last error of a failing call.
    void Complain(const char* complaint);

    std::map<HSURF, DrawnSurface> surfaces_;
    std::map<HDEV, DHPDEV> devices_;
    std::vector<HPALETTE> palettes_;
    std::vector<Erasure> erasures_;
    std::vector<std::string> complaints_;
    Service services_[kGraphicsServices];
    uintptr_t nextHandle_ = 0x1000;
};

}  // namespace orvex::tools
