// A run of orvexprofile in a folder of its own.
#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/orvexprofile/profile_samples.h"
#include "tools/common/png_file.h"
#include "tools/orvexprofile/orvexprofile.h"

namespace orvex::tools::profile {

class ProfileTool : public testing::Test {
  protected:
    // Runs the tool and keeps its output and errors.
    int Run(std::vector<std::string> arguments) {
        std::ostringstream out, err;
        const int status = RunProfileTool(std::move(arguments), out, err);
        out_ = out.str();
        err_ = err.str();
        return status;
    }
    std::string Path(const std::string& name) const { return (scratch_.Path() / name).string(); }
    std::string Sample(int version = 5) const {
        const std::string path = Path("sample.zvp");
        WriteProfileFile(SampleProfile(version), path);
        return path;
    }
    std::string Picture() const {
        tools::Picture picture(2, 1, 3);
        picture.samples = {255, 255, 255, 255, 0, 0};
        SavePng(picture, 96, Path("in.png"));
        return Path("in.png");
    }
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(scratch_.Path())) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

    ScratchFolder scratch_;
    std::string out_;
    std::string err_;
};

}  // namespace orvex::tools::profile
