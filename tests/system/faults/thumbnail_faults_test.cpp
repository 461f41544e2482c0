#ifndef _WIN32
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "driver/thumbnail.h"
#include "tests/kit/picture.h"
#include "tools/host/debug_heap.h"
#endif

namespace orvex {

using namespace tools;
// The making of a thumbnail with every single allocation failing. On Windows the encoder is out of reach
// inside the driver, and only the allocations that the jobs choose fail.
#ifndef _WIN32

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

TEST(ThumbnailFaults, LeaveNoBrokenPictureAndNothingBehind) {
    for (const uint32_t colors : {2u, 30u, 260u}) {
        const std::vector<uint32_t> pixels = Pixels(colors);
        DebugHeap heap(nullptr);
        const std::vector<uint8_t> whole = DecodePicture(DecodeBase64(Thumbnail(pixels))).rgba;
        ASSERT_FALSE(whole.empty());
        size_t failures = 0;
        for (bool failed = true; failed; ++failures) {
            failed = false;
            size_t left = failures;
            heap.OnAllocate([&](const char*, size_t) { return left-- == 0 && (failed = true); });
            const std::string text = Thumbnail(pixels);
            heap.OnAllocate({});
            EXPECT_TRUE(text.empty() || DecodePicture(DecodeBase64(text)).rgba == whole)
                << colors << " colours, allocation " << failures;
            ASSERT_EQ(heap.LiveBlocks().size(), 0u) << colors << " colours, allocation " << failures;
        }
        EXPECT_GT(failures, 50u);
        std::cout << failures - 1 << " faults\n";
    }
}

#endif

}  // namespace orvex
