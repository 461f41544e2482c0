#include "support/log.h"

#include <gmock/gmock.h>

#include "tests/support/log_capture.h"

using testing::ElementsAre;

TEST(Log, FormatsAsTheDriverSays) {
    LogCapture log;
    LogError("docname:%S %d %lu %08.3lf|%-5s|%5s|%x %p %c%%", L"Etikett", -3, 4000000000u, 1.5, "ab", "cd",
             -1, reinterpret_cast<void*>(0x1234), '!');
    EXPECT_THAT(
        log.TakeLines(),
        ElementsAre(
            "[Error] docname:Etikett -3 4000000000 0001.500|ab   |   cd|ffffffff 0000000000001234 !%"));
}
