// An installation folder of a test's own, in place of the machine's.
#pragma once

#include <string_view>

#include "tests/kit/scratch_folder.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
class InstallationFixture {
  public:
    // `module` is the one whose question for the folder is answered: null for this program's own code.
    explicit InstallationFixture(HMODULE module = nullptr);
    ~InstallationFixture();
    InstallationFixture(const InstallationFixture&) = delete;
    InstallationFixture& operator=(const InstallationFixture&) = delete;

    // The installation folder itself. It exists.
    const std::filesystem::path& Folder() const { return folder_; }
    // Writes a file below the installation folder.
    void Write(const std::filesystem::path& name, std::string_view bytes) const;
    void WriteSettings(std::string_view text) const { Write("settings.inf", text); }

  private:
    ScratchFolder scratch_;
    std::filesystem::path folder_;
    ImportPatch patch_;
};

}  // namespace orvex
