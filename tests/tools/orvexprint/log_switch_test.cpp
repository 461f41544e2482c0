#include "tools/orvexprint/log_switch.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/kit/scratch_folder.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

TEST(LogSwitch, TurnsTheLogOnAndRestoresTheControlFile) {
    const ScratchFolder scratch;
    const fs::path control = scratch.Write("temp/orvexgdi.dat", "1 by hand\n");
    const fs::path absent = scratch.Path() / "other" / "orvexgdi.dat";
    {
        const LogSwitch log(control, 3), another(absent, 1);
        EXPECT_EQ(ReadBytes(control), "3");
        EXPECT_EQ(ReadBytes(absent), "1");
    }
    EXPECT_EQ(ReadBytes(control), "1 by hand\n");
    EXPECT_FALSE(fs::exists(absent));
}

TEST(LogSwitch, SaysThatTheLogCannotBeTurnedOn) {
    const ScratchFolder scratch;
    const fs::path file = scratch.Write("temp", "not a folder");
    EXPECT_THROW(LogSwitch(file / "orvexgdi.dat", 3), std::runtime_error);
}

}  // namespace orvex::tools::print
