#include "tools/host/guarded_memory.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#ifdef _WIN32
#include "platform/windows.h"
#else
#include <unistd.h>
#endif

namespace orvex::tools {

namespace {

// Returns whether a byte is readable. Asks the system, because reading a guard page would fault.
bool Readable(const uint8_t* address) {
#ifdef _WIN32
    MEMORY_BASIC_INFORMATION page;
    return VirtualQuery(address, &page, sizeof page) != 0 && page.State == MEM_COMMIT &&
           page.Protect == PAGE_READWRITE;
#else
    int ends[2];
    if (pipe(ends) != 0) return false;
    const bool readable = write(ends[1], address, 1) == 1;
    close(ends[0]);
    close(ends[1]);
    return readable;
#endif
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kPaddingIsPoisoned = true;
#else
constexpr bool kPaddingIsPoisoned = false;
#endif

}  // namespace

TEST(GuardedMemory, EndsAtAGuardPage) {
    for (const size_t size : {1u, 80u, 916u, 4095u, 4096u, 4097u, 1u << 20}) {
        const GuardedMemory memory(size);
        ASSERT_EQ(memory.Size(), size);
        EXPECT_TRUE(Readable(memory.Data())) << size;
        EXPECT_TRUE(Readable(memory.Data() + size - 1)) << size;
        EXPECT_FALSE(Readable(memory.Data() + size)) << size;
    }
}

TEST(GuardedMemory, BeginsAfterAGuardPage) {
    const GuardedMemory memory(1 << 16);
    EXPECT_FALSE(Readable(memory.Data() - 1));
    const GuardedMemory record(916);
    EXPECT_FALSE(Readable(record.Data() - 4096));
}

TEST(GuardedMemory, IsUnreadableIfItHasNoBytes) {
    const GuardedMemory memory(0);
    EXPECT_EQ(memory.Size(), 0u);
    EXPECT_FALSE(Readable(memory.Data()));
}

TEST(GuardedMemory, StartsWithZerosOrACopy) {
    const GuardedMemory zeros(5000);
    EXPECT_EQ(std::accumulate(zeros.Data(), zeros.Data() + zeros.Size(), 0u), 0u);
    const std::vector<uint8_t> bytes = {1, 2, 3, 250};
    const GuardedMemory copy(bytes);
    EXPECT_EQ(std::vector<uint8_t>(copy.Bytes().begin(), copy.Bytes().end()), bytes);
}

TEST(GuardedMemory, NoticesAWriteBeforeItsBeginning) {
    const GuardedMemory memory(916);
    EXPECT_TRUE(memory.Intact());
    if (!kPaddingIsPoisoned) {
        memory.Data()[-1] = 0;
        EXPECT_FALSE(memory.Intact());
    }
}

TEST(GuardedMemory, EndsAsCloseToTheGuardPageAsItsAlignmentAllows) {
    for (const size_t size : {1u, 72u, 913u, 914u, 915u, 916u, 4097u}) {
        const GuardedMemory memory(size, 4);
        ASSERT_EQ(memory.Size(), size);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(memory.Data()) % 4, 0u) << size;
        EXPECT_FALSE(Readable(memory.Data() + (size + 3) / 4 * 4)) << size;
        EXPECT_TRUE(memory.Intact()) << size;
        if (!kPaddingIsPoisoned && size % 4 != 0) {
            memory.Data()[size] = 0;
            EXPECT_FALSE(memory.Intact()) << size;
        }
    }
}

#if defined(__SANITIZE_ADDRESS__)
TEST(GuardedMemoryDeathTest, EndsTheProgramWhenAnAlignedBlockIsReadPastItsEnd) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const GuardedMemory memory(913, 4);
    EXPECT_DEATH(static_cast<void>(*const_cast<volatile uint8_t*>(memory.Data() + 913)), "AddressSanitizer");
}
#endif

TEST(GuardedMemory, IsUnreadableOnceClosed) {
    GuardedMemory memory(5000);
    memory.Close();
    EXPECT_FALSE(Readable(memory.Data()));
    EXPECT_FALSE(Readable(memory.Data() + 4999));
}

TEST(GuardedMemory, ThrowsIfTheSizeIsImpossible) {
    EXPECT_THROW(GuardedMemory(SIZE_MAX), std::bad_alloc);
    EXPECT_THROW(GuardedMemory(SIZE_MAX / 2), std::bad_alloc);
}

}  // namespace orvex::tools
