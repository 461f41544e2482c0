// Makes a thumbnail with every single allocation failing. On Windows the encoder is out of reach inside the
// driver, and only the job's own faults cover it.
#ifndef _WIN32
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "driver/thumbnail.h"
#include "tests/kit/heap_watch.h"
#include "tests/kit/picture.h"

namespace orvex {

namespace {

constexpr int32_t kWidth = 20, kHeight = 13;  // more pixels than a palette holds

// The encoder writes a picture of few colors with a palette, and one of many without.
std::vector<uint32_t> Pixels(uint32_t colors) {
    std::vector<uint32_t> pixels;
    for (uint32_t i = 0; i < kWidth * kHeight; ++i) pixels.push_back(i % colors * 40503u & 0xFFFFFF);
    return pixels;
}

std::string Thumbnail(const std::vector<uint32_t>& pixels) {
    char* text = nullptr;
    size_t length = 0;
    BuildPageThumbnail(pixels.data(), kWidth, kHeight, &text, &length);
    const std::string made = text == nullptr ? "" : std::string(text, length);
    free(text);
    return made;
}

}  // namespace

TEST(ThumbnailFaults, LeaveNoPictureAndNoMemory) {
    for (const uint32_t colors : {2u, 30u, 260u}) {
        const std::vector<uint32_t> pixels = Pixels(colors);
        HeapWatch heap;
        const std::string made = Thumbnail(pixels);
        const size_t allocations = heap.Allocations();
        ASSERT_FALSE(DecodePicture(DecodeBase64(made)).rgba.empty());
        int lost = 0;
        for (size_t failing = 0; failing < allocations; ++failing) {
            heap.FailNth(failing);
            const std::string text = Thumbnail(pixels);
            heap.OnAllocate({});
            EXPECT_TRUE(text.empty() || text == made) << colors << " colors, allocation " << failing;
            lost += text.empty();
            ASSERT_TRUE(heap.LiveBlocks().empty()) << colors << " colors, allocation " << failing;
        }
        EXPECT_EQ(lost, 3) << "for want of the pixels, the encoder's workspace or the text";
    }
}

}  // namespace orvex
#endif
