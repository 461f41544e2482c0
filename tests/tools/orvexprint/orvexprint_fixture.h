// The command orvexprint, run by tests.
#pragma once

#include <gmock/gmock.h>

#include <sstream>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/png_maker.h"
#include "tests/tools/host/refusing_engine.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/orvexprint.h"

namespace orvex::tools::print {

// The command with the built driver and stand-in engine, and the test's own installation.
class OrvexPrintTest : public testing::Test {
  protected:
    OrvexPrintTest() {
        RefusingEngine::Reset();
        scratch.Write("install/settings.inf", "[UI]\r\n");
        std::filesystem::create_directories(Path("install/profiles"));
        scratch.Write("install/media.inf",
                      "[Media]\r\n\"Shipping\", \"4\", \"6\", 1\r\n\"Small\", \"50\", \"30\", 0\r\n");
    }

    std::filesystem::path Path(std::string_view name) const { return scratch.Path() / PathFromUtf8(name); }
    std::string Text(std::string_view name) const { return Utf8FromPath(Path(name)); }

    // Runs the command with the test's installation, and keeps its outputs in `out` and `error`.
    int Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--install", Text("install")});
        return RunPlain(arguments);
    }

    void RunWell(const std::vector<std::string>& arguments) {
        ASSERT_EQ(Run(arguments), kExitPrinted) << error;
    }

    // Prints a page of 20 mm x 10 mm on a label of 30 mm x 40 mm into "out.prn", with these options.
    int Print(std::vector<std::string> options = {}) {
        options.insert(options.end(), {"--size", "30x40mm", "-o", Text("out.prn"), WritePage("a.png")});
        return Run(options);
    }

    int RunPlain(const std::vector<std::string>& arguments) {
        std::ostringstream outStream;
        std::ostringstream errorStream;
        const std::filesystem::path before = std::filesystem::current_path();
        PrintEnvironment environment{.out = outStream, .error = errorStream, .terminal = terminal};
        environment.engine = engine;
        if (!programFolder.empty()) environment.programFolder = programFolder;
        const int status = RunOrvexPrint(arguments, environment);
        out = outStream.str();
        error = errorStream.str();
        EXPECT_EQ(std::filesystem::current_path(), before);
        return status;
    }

    // Writes a page of 20 mm x 10 mm and returns its name.
    std::string WritePage(std::string_view name, uint32_t rgb = 0x000000) const {
        WriteBytes(Path(name), AsText(MakePlainPng(236, 118, 11811, rgb)));
        return Text(name);
    }

    std::string OutputBytes() const { return ReadBytes(Path("out.prn")); }
    // Returns whether there is neither an output nor an unfinished one.
    bool NothingWasWritten() const {
        for (const auto& entry : std::filesystem::directory_iterator(scratch.Path())) {
            if (entry.path().filename().string().starts_with("out.prn")) return false;
        }
        return true;
    }

    ScratchFolder scratch;
    std::optional<PrintEngine> engine;
    std::filesystem::path programFolder;
    bool terminal = false;
    std::string out;
    std::string error;
};

}  // namespace orvex::tools::print
