// Runs of orvexview in a folder of their own, with print files of the stand-in engine.
#pragma once

#include <gmock/gmock.h>

#include <sstream>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/orvexview/made_files.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/viewing.h"

namespace orvex::tools::view {

class CommandTest : public testing::Test {
  protected:
    std::string Name(const std::string& name) const {
        return Utf8FromPath(folder_.Path() / PathFromUtf8(name));
    }

    // Writes a print file at 300 dpi and returns its name.
    std::string WriteJob(const std::string& name, const std::vector<Rows>& pages,
                         const std::string& lines = "") const {
        WriteBytes(PathFromUtf8(Name(name)), MakeFile(pages, lines, kMode300Dpi));
        return Name(name);
    }

    int Run(const std::vector<std::string>& arguments) {
        out_.str("");
        error_.str("");
        return RunOrvexView(arguments, out_, error_);
    }

    std::string Read(const std::string& name) const { return ReadBytes(PathFromUtf8(Name(name))); }

    ScratchFolder folder_;
    std::ostringstream out_;
    std::ostringstream error_;
};

}  // namespace orvex::tools::view
