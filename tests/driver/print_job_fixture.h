// Jobs that must leave the current directory as it was.
#pragma once

#include <filesystem>

#include "tests/kit/driver_fixture.h"

namespace orvex {

class PrintJobTest : public DriverTest {
  protected:
    ~PrintJobTest() override { EXPECT_EQ(std::filesystem::current_path(), directoryBefore_); }

    bool Start(tools::Device& device, const std::string& title = "title") {
        return Session().StartDoc(device, title, 42);
    }

    // Prints a job of an empty page and returns the header that it wrote.
    std::string HeaderOf(const DeviceMode& mode, const std::string& title = "title") {
        const auto device = StartPage(mode, title);
        EXPECT_EQ(engine.Output("@PJL COMMENT x\n"), 1);
        EXPECT_TRUE(Session().EndDoc(*device));
        return Printer().written;
    }

  private:
    const std::filesystem::path directoryBefore_ = std::filesystem::current_path();
};

}  // namespace orvex
