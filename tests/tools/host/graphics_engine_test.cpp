#include "tools/host/graphics_engine.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace orvex::tools {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The graphics engine as this program imports it.
class GraphicsEngineTest : public testing::Test {
  protected:
    GraphicsEngineTest() { engine.Attach(nullptr); }

    static HBITMAP CreateBitmap(LONG width, LONG height) {
        return EngCreateBitmap({width, height}, width * 4, BMF_32BPP, BMF_TOPDOWN, nullptr);
    }
    static HPALETTE CreatePalette() { return EngCreatePalette(PAL_RGB, 0, nullptr, 0, 0, 0); }

    GraphicsEngine engine;
};

}  // namespace

TEST_F(GraphicsEngineTest, MakesABitmapWhoseBitsEndAtAGuardPage) {
    const HSURF surface = reinterpret_cast<HSURF>(CreateBitmap(30, 20));
    ASSERT_NE(surface, nullptr);
    DrawnSurface* const found = engine.FindSurface(surface);
    ASSERT_NE(found, nullptr);
    const SURFOBJ& object = found->Object();
    EXPECT_EQ(object.hsurf, surface);
    EXPECT_EQ(object.sizlBitmap.cx, 30);
    EXPECT_EQ(object.sizlBitmap.cy, 20);
    EXPECT_EQ(object.lDelta, 120);
    EXPECT_EQ(object.cjBits, 2400u);
    EXPECT_EQ(object.pvBits, found->bits->Data());
    EXPECT_EQ(object.pvScan0, object.pvBits);
    EXPECT_EQ(object.iBitmapFormat, static_cast<ULONG>(BMF_32BPP));
    EXPECT_EQ(object.fjBitmap, BMF_TOPDOWN);
    EXPECT_EQ(engine.LiveSurfaces(), 1u);
    EXPECT_TRUE(EngDeleteSurface(surface));
    EXPECT_EQ(engine.LiveSurfaces(), 0u);
    EXPECT_THAT(engine.Complaints(), IsEmpty());
}

TEST_F(GraphicsEngineTest, AssociatesASurfaceWithAKnownDevice) {
    const HSURF surface = reinterpret_cast<HSURF>(CreateBitmap(2, 2));
    const HDEV device = engine.AddDevice();
    const auto instance = reinterpret_cast<DHPDEV>(uintptr_t{0x1234});
    engine.SetInstance(device, instance);
    EXPECT_TRUE(EngAssociateSurface(surface, device, 0));
    EXPECT_EQ(engine.FindSurface(surface)->Object().dhpdev, instance);
    EXPECT_EQ(engine.FindSurface(surface)->Object().hdev, device);
    engine.RemoveDevice(device);
    EXPECT_FALSE(EngAssociateSurface(surface, device, 0));
    EXPECT_THAT(engine.Complaints(), ElementsAre("EngAssociateSurface: unknown surface or device"));
}

TEST_F(GraphicsEngineTest, ErasesAnAreaAndRefusesOneOutsideTheSurface) {
    const HSURF surface = reinterpret_cast<HSURF>(CreateBitmap(4, 3));
    SURFOBJ* const object = &engine.FindSurface(surface)->Object();
    RECTL inside = {1, 1, 3, 3};
    ASSERT_TRUE(EngEraseSurface(object, &inside, 0xFFFFFF));
    const auto* pixels = static_cast<const ULONG*>(object->pvBits);
    EXPECT_EQ(std::count(pixels, pixels + 12, 0xFFFFFFu), 4);
    EXPECT_EQ(pixels[1 * 4 + 1], 0xFFFFFFu);
    EXPECT_EQ(pixels[2 * 4 + 2], 0xFFFFFFu);
    ASSERT_EQ(engine.Erasures().size(), 1u);
    EXPECT_EQ(engine.Erasures()[0].color, 0xFFFFFFu);
    EXPECT_EQ(engine.Erasures()[0].area.right, 3);
    for (RECTL outside : {RECTL{0, 0, 5, 3}, RECTL{0, 0, 4, 4}, RECTL{-1, 0, 1, 1}, RECTL{2, 0, 1, 1}}) {
        EXPECT_FALSE(EngEraseSurface(object, &outside, 0));
    }
    EXPECT_FALSE(EngEraseSurface(nullptr, &inside, 0));
    EXPECT_EQ(engine.Complaints().size(), 5u);
}

TEST_F(GraphicsEngineTest, RefusesBitmapsThatTheDriverNeverCreates) {
    EXPECT_EQ(CreateBitmap(0, 5), nullptr);
    EXPECT_EQ(CreateBitmap(5, -1), nullptr);
    EXPECT_EQ(EngCreateBitmap({10, 10}, 36, BMF_32BPP, BMF_TOPDOWN, nullptr), nullptr);
    EXPECT_EQ(EngCreateBitmap({10, 10}, 40, BMF_24BPP, BMF_TOPDOWN, nullptr), nullptr);
    EXPECT_EQ(EngCreateBitmap({10, 10}, 40, BMF_32BPP, 0, nullptr), nullptr);
    EXPECT_EQ(engine.Complaints().size(), 5u);
    EXPECT_EQ(engine.LiveSurfaces(), 0u);
}

TEST_F(GraphicsEngineTest, DeletesASurfaceOnce) {
    const HSURF surface = reinterpret_cast<HSURF>(CreateBitmap(4, 3));
    EXPECT_TRUE(EngDeleteSurface(surface));
    EXPECT_FALSE(EngDeleteSurface(surface));
    EXPECT_EQ(engine.Calls(GraphicsService::kDeleteSurface), 2u);
    EXPECT_THAT(engine.Complaints(), ElementsAre("EngDeleteSurface: unknown surface"));
}

TEST_F(GraphicsEngineTest, CountsPalettesUntilTheyAreReleased) {
    const HPALETTE palette = CreatePalette();
    ASSERT_NE(palette, nullptr);
    EXPECT_EQ(engine.LivePalettes(), 1u);
    engine.ReleasePalette(palette);
    EXPECT_EQ(engine.LivePalettes(), 0u);
    EXPECT_EQ(EngCreatePalette(PAL_BGR, 0, nullptr, 0, 0, 0), nullptr);
}

TEST_F(GraphicsEngineTest, FailsAChosenCall) {
    engine.FailCall(GraphicsService::kCreatePalette, 1);
    EXPECT_NE(CreatePalette(), nullptr);
    EXPECT_EQ(CreatePalette(), nullptr);
    EXPECT_NE(CreatePalette(), nullptr);
    EXPECT_EQ(engine.Calls(GraphicsService::kCreatePalette), 3u);
    engine.FailCall(GraphicsService::kCreateBitmap);
    EXPECT_EQ(CreateBitmap(1, 1), nullptr);
    EXPECT_NE(CreateBitmap(1, 1), nullptr);
    EXPECT_THAT(engine.Complaints(), IsEmpty());
}

}  // namespace orvex::tools
