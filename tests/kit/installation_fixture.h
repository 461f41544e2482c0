// A test's own installation folder, in place of the machine's.
#pragma once

#include <string_view>

#include "tests/kit/scratch_folder.h"
#include "tools/host/import_patch.h"

namespace orvex {

class InstallationFixture {
  public:
    // Answers the question for the folder that `module` asks; null is the program itself.
    explicit InstallationFixture(HMODULE module = nullptr);
    ~InstallationFixture();
    InstallationFixture(const InstallationFixture&) = delete;
    InstallationFixture& operator=(const InstallationFixture&) = delete;

    // Returns the installation folder, which exists.
    const std::filesystem::path& Folder() const { return folder_; }
    // Writes a file below the installation folder.
    void Write(const std::filesystem::path& name, std::string_view bytes) const;
    void WriteSettings(std::string_view text) const { Write("settings.inf", text); }

  private:
    ScratchFolder scratch_;
    std::filesystem::path folder_;
    tools::ImportPatch patch_;
};

}  // namespace orvex
