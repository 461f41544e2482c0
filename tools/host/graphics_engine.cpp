#include "tools/host/graphics_engine.h"

#include <algorithm>
#include <new>

namespace orvex::tools {

namespace {

constexpr LONG kMaxExtentPx = 1 << 20;
constexpr size_t kBytesPerPixel = 4;
constexpr size_t kMaxRecords = 10000;  // erasures and complaints kept

}  // namespace

// The graphics engine's functions as a driver imports them.
struct GraphicsEngine::Replacements {
    static HBITMAP APIENTRY CreateBitmap(SIZEL size, LONG stride, ULONG format, ULONG flags, PVOID bits) {
        if (current->Fails(GraphicsService::kCreateBitmap)) return nullptr;
        if (size.cx <= 0 || size.cy <= 0 || size.cx > kMaxExtentPx || size.cy > kMaxExtentPx ||
            format != BMF_32BPP || flags != BMF_TOPDOWN || bits != nullptr ||
            stride < size.cx * static_cast<LONG>(kBytesPerPixel) || stride % 4 != 0) {
            current->Complain("EngCreateBitmap: not a 32-bit top-down bitmap");
            return nullptr;
        }
        try {
            return reinterpret_cast<HBITMAP>(AddSurface(size, stride, format));
        } catch (const std::bad_alloc&) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
    }

    static BOOL APIENTRY AssociateSurface(HSURF handle, HDEV device, FLONG hooks) {
        if (current->Fails(GraphicsService::kAssociateSurface)) return FALSE;
        DrawnSurface* surface = current->FindSurface(handle);
        const auto found = current->devices_.find(device);
        if (surface == nullptr || found == current->devices_.end()) {
            current->Complain("EngAssociateSurface: unknown surface or device");
            return FALSE;
        }
        surface->hooks = hooks;
        surface->Object().hdev = device;
        surface->Object().dhpdev = found->second;
        return TRUE;
    }

    static BOOL APIENTRY DeleteSurface(HSURF handle) {
        if (current->Fails(GraphicsService::kDeleteSurface)) return FALSE;
        const DrawnSurface* surface = current->FindSurface(handle);
        if (surface == nullptr) {
            current->Complain("EngDeleteSurface: unknown surface");
            return FALSE;
        }
        if (!surface->bits->Intact() || !surface->object->Intact()) {
            current->Complain("EngDeleteSurface: something was written in front of the surface");
        }
        current->surfaces_.erase(handle);
        return TRUE;
    }

    static BOOL APIENTRY EraseSurface(SURFOBJ* object, RECTL* area, ULONG color) {
        if (current->Fails(GraphicsService::kEraseSurface)) return FALSE;
        DrawnSurface* surface = object == nullptr ? nullptr : current->FindSurface(object->hsurf);
        if (surface == nullptr || area == nullptr || area->left < 0 || area->top < 0 ||
            area->right > surface->size.cx || area->bottom > surface->size.cy || area->left > area->right ||
            area->top > area->bottom) {
            current->Complain("EngEraseSurface: unknown surface or an area outside it");
            return FALSE;
        }
        if (current->erasures_.size() < kMaxRecords) current->erasures_.push_back({object, *area, color});
        for (LONG y = area->top; y < area->bottom; ++y) {
            auto* line = reinterpret_cast<ULONG*>(
                surface->bits->Data() + static_cast<size_t>(y) * static_cast<size_t>(surface->stride));
            std::fill(line + area->left, line + area->right, color);
        }
        return TRUE;
    }

    static HPALETTE APIENTRY CreatePalette(ULONG mode, ULONG colors, ULONG* entries, FLONG red, FLONG green,
                                           FLONG blue) {
        if (current->Fails(GraphicsService::kCreatePalette)) return nullptr;
        if (mode != PAL_RGB || colors != 0 || entries != nullptr || red != 0 || green != 0 || blue != 0) {
            current->Complain("EngCreatePalette: not an RGB palette without entries");
            return nullptr;
        }
        current->palettes_.push_back(reinterpret_cast<HPALETTE>(++current->nextHandle_));
        return current->palettes_.back();
    }

    static HSURF AddSurface(SIZEL size, LONG stride, ULONG format) {
        DrawnSurface surface;
        surface.size = size;
        surface.stride = stride;
        surface.format = format;
        surface.bits =
            std::make_unique<GuardedMemory>(static_cast<size_t>(stride) * static_cast<size_t>(size.cy));
        surface.object = std::make_unique<GuardedMemory>(sizeof(SURFOBJ));
        const auto handle = reinterpret_cast<HSURF>(++current->nextHandle_);
        SURFOBJ& object = surface.Object();
        object.hsurf = handle;
        object.sizlBitmap = size;
        object.cjBits = static_cast<ULONG>(surface.bits->Size());
        object.pvBits = surface.bits->Data();
        object.pvScan0 = surface.bits->Data();
        object.lDelta = stride;
        object.iBitmapFormat = format;
        object.iType = STYPE_BITMAP;
        object.fjBitmap = BMF_TOPDOWN;
        current->surfaces_.emplace(handle, std::move(surface));
        return handle;
    }
};

void GraphicsEngine::Attach(HMODULE module) {
    patches_.Attach(module, {{"EngCreateBitmap", &Replacements::CreateBitmap},
                             {"EngAssociateSurface", &Replacements::AssociateSurface},
                             {"EngDeleteSurface", &Replacements::DeleteSurface},
                             {"EngEraseSurface", &Replacements::EraseSurface},
                             {"EngCreatePalette", &Replacements::CreatePalette}});
}

HDEV GraphicsEngine::AddDevice() {
    const auto device = reinterpret_cast<HDEV>(++nextHandle_);
    devices_[device] = nullptr;
    return device;
}

void GraphicsEngine::SetInstance(HDEV device, DHPDEV instance) {
    devices_[device] = instance;
}

void GraphicsEngine::RemoveDevice(HDEV device) {
    devices_.erase(device);
}

DrawnSurface* GraphicsEngine::FindSurface(HSURF surface) {
    const auto found = surfaces_.find(surface);
    return found == surfaces_.end() ? nullptr : &found->second;
}

void GraphicsEngine::ReleasePalette(HPALETTE palette) {
    std::erase(palettes_, palette);
}

void GraphicsEngine::FailCall(GraphicsService service, uint32_t sparing) {
    services_[static_cast<size_t>(service)].armed = true;
    services_[static_cast<size_t>(service)].sparing = sparing;
}

bool GraphicsEngine::Fails(GraphicsService service) {
    Service& state = services_[static_cast<size_t>(service)];
    ++state.calls;
    if (!state.armed || state.sparing-- > 0) return false;
    state.armed = false;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return true;
}

void GraphicsEngine::Complain(const char* complaint) {
    if (complaints_.size() < kMaxRecords) complaints_.emplace_back(complaint);
    SetLastError(ERROR_INVALID_PARAMETER);
}

}  // namespace orvex::tools
