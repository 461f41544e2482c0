#include "tests/kit/heap_watch.h"

#include <gmock/gmock.h>

#include "driver/device_instance.h"
#include "tests/kit/scratch_folder.h"
#include "tools/host/driver_session.h"

namespace orvex {

using namespace tools;

using testing::Contains;
using testing::IsEmpty;

namespace {

// A session whose driver allocates from a watched heap.
class HeapWatchTest : public testing::Test {
  protected:
    HeapWatchTest()
        : session({.installation = installation.Path()}),
          heap(session.Driver().Module(), HeapWatch::Blocks::kGuarded) {}

    size_t LiveBlocks(size_t bytes) const {
        size_t count = 0;
        for (const auto block : heap.LiveBlocks()) count += block.size() == bytes ? 1 : 0;
        return count;
    }

    ScratchFolder installation;
    DriverSession session;
    HeapWatch heap;
    std::vector<std::pair<std::string, size_t>> asked;
};

constexpr size_t kInstanceBytes = sizeof(PDEV);

}  // namespace

TEST_F(HeapWatchTest, KnowsTheBlocksOfTheDriver) {
    {
        const auto device = session.EnablePdev({});
        ASSERT_NE(device->Instance(), nullptr);
        EXPECT_EQ(LiveBlocks(kInstanceBytes), 1u);
    }
    EXPECT_EQ(LiveBlocks(kInstanceBytes), 0u);
    EXPECT_THAT(heap.Misuses(), IsEmpty());
}

TEST_F(HeapWatchTest, RefusesChosenAllocations) {
    heap.OnAllocate([&](const char* function, size_t bytes) {
        asked.emplace_back(function, bytes);
        return bytes == kInstanceBytes;
    });
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(session.EnablePdev({})->Instance(), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
    EXPECT_THAT(asked, Contains(std::pair<std::string, size_t>("LocalAlloc", kInstanceBytes)));
    EXPECT_EQ(LiveBlocks(kInstanceBytes), 0u);
    heap.OnAllocate({});
    EXPECT_NE(session.EnablePdev({})->Instance(), nullptr);
}

#ifdef _WIN32
TEST_F(HeapWatchTest, EndsEachBlockAtAGuardPage) {
    const auto device = session.EnablePdev({});
    const auto* instance = reinterpret_cast<const uint8_t*>(device->Instance());
    MEMORY_BASIC_INFORMATION page;
    ASSERT_NE(VirtualQuery(instance + kInstanceBytes, &page, sizeof page), 0u);
    EXPECT_NE(page.Protect, DWORD{PAGE_READWRITE});
    session.DisablePdev(*device);
    ASSERT_NE(VirtualQuery(instance, &page, sizeof page), 0u);
    EXPECT_NE(page.State, DWORD{MEM_COMMIT});
}
#endif

}  // namespace orvex
