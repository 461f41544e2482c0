#include "driver/render/raster_loop.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "driver/color/color_cache.h"
#include "tests/kit/allocation_failure.h"

namespace orvex {

using testing::ElementsAre;

namespace {

// Sink that records its calls, and refuses the row of a given number.
struct Recorder final : RowSink {
    void Begin(RasterStage stage) override { Note("<", stage); }
    void End(RasterStage stage) override { Note(">", stage); }
    bool Take(int32_t number, const uint32_t* row) override {
        calls += "#" + std::to_string(number);
        rows.emplace_back(row, row + width);
        return number != refused;
    }
    void Note(const char* mark, RasterStage stage) { calls += mark + std::string(1, "RCE"[int(stage)]); }

    size_t width = 2;
    int32_t refused = -1;
    std::string calls;
    std::vector<std::vector<uint32_t>> rows;
};

// A landscape page of three rows: a white one and two gray ones.
constexpr uint32_t kPixels[] = {0xFFFFFF, 0xFFFFFF, 0x808080, 0x808080, 0x808080, 0x808080};
const PageBitmap kBitmap = {reinterpret_cast<const uint8_t*>(kPixels), 2, 3, 8, 4};

PageLayoutInput Input() {
    PageLayoutInput input = {};
    input.bitmapWidth = 2;
    input.bitmapHeight = 3;
    input.dpi = 300;
    input.landscape = true;
    input.alignment = kAlignCenter;
    return input;
}

RasterSettings Settings() {
    return {{true, false, false}, false, 0, false};
}

bool Send(const PageLayout& layout, const RasterSettings& settings, Recorder& recorder) {
    g_colorCache[0xFFFFFF] = 0;
    g_colorCache[0x808080] = 0x80;
    SetCacheKind(kEntries);
    RasterLoop loop(kBitmap, layout, settings);
    EXPECT_TRUE(loop);
    return loop.Send(recorder);
}

}  // namespace

TEST(RasterLoop, PassesEachRowThroughItsStagesAndConvertsNoRepeatedRow) {
    Recorder recorder;
    EXPECT_TRUE(Send(ComputePageLayout(Input()), Settings(), recorder));
    EXPECT_EQ(recorder.calls, "<R>R<C>C<E#0>E<R>R<C>C<E#1>E<R>R<E#2>E");
    EXPECT_THAT(recorder.rows,
                ElementsAre(ElementsAre(2, 0), ElementsAre(0x80, 0x80), ElementsAre(0x80, 0x80)));
}

TEST(RasterLoop, SurroundsTheImageWithFillRowsThatPassNoStage) {
    PageLayout layout = ComputePageLayout(Input());
    layout.fullWidth = true;
    layout.placed = {0, 2, 1};
    RasterSettings settings = Settings();
    settings.kws = true;
    Recorder recorder;
    EXPECT_TRUE(Send(layout, settings, recorder));
    EXPECT_EQ(recorder.calls, "#0#1<R>R<C>C<E#2>E<R>R<C>C<E#3>E<R>R<E#4>E#5");
    for (const size_t fill : {0, 1, 5}) EXPECT_THAT(recorder.rows[fill], ElementsAre(4, 0x400));
}

TEST(RasterLoop, EndsAtARefusedRowAndLeavesItsStage) {
    PageLayout layout = ComputePageLayout(Input());
    layout.fullWidth = true;
    layout.placed = {0, 1, 1};
    const std::string image = "#0<R>R<C>C<E#1>E<R>R<C>C<E#2>E<R>R<E#3>E";
    const std::pair<int32_t, std::string> cases[] = {
        {0, "#0"}, {1, image.substr(0, 16)}, {3, image}, {4, image + "#4"}};
    for (const auto& [refused, calls] : cases) {
        Recorder recorder;
        recorder.refused = refused;
        EXPECT_FALSE(Send(layout, Settings(), recorder));
        EXPECT_EQ(recorder.calls, calls) << refused;
    }
}

TEST(RasterLoop, IsFalseWithoutMemoryForItsRow) {
    const PageLayout layout = ComputePageLayout(Input());
    const AllocationFailure memory(2 * 4);
    EXPECT_FALSE(RasterLoop(kBitmap, layout, Settings()));
    EXPECT_EQ(memory.Count(), 1);
}

}  // namespace orvex
