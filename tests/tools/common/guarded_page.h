// Pages for drawing tests.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/common/canvas.h"
#include "tools/host/guarded_memory.h"

namespace orvex::tools {

// A white page whose pixels end at a guard page.
class GuardedPage {
  public:
    GuardedPage(int width, int height)
        : memory(static_cast<size_t>(width) * static_cast<size_t>(height) * 4),
          canvas(Pixels(), width, height, static_cast<size_t>(width)) {
        canvas.Fill(0, 0, width, height, kWhite);
    }
    uint32_t* Pixels() { return reinterpret_cast<uint32_t*>(memory.Data()); }
    uint32_t At(int x, int y) { return Pixels()[y * canvas.Width() + x]; }
    std::vector<uint32_t> All() { return {Pixels(), Pixels() + memory.Size() / 4}; }

    GuardedMemory memory;
    Canvas canvas;
};

}  // namespace orvex::tools
