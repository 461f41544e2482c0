// Answers the questions that the driver asks of the shell and the system, so that the installation folder and
// the user's language are the host's choice and the machine's own stay untouched.
//
// One such set of answers exists at a time in a process.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/windows.h"
#include "tools/host/patch_set.h"

namespace orvex::tools {

class ShellAnswers {
  public:
    // `installation` is the folder itself, whatever its name. Throws std::runtime_error when its path is
    // longer than the driver takes.
    explicit ShellAnswers(const std::filesystem::path& installation);
    ~ShellAnswers();
    ShellAnswers(const ShellAnswers&) = delete;
    ShellAnswers& operator=(const ShellAnswers&) = delete;

    void Attach(HMODULE module);

    // The abbreviated name of the system's language, such as "DEU"; none: the machine's own answer.
    void SetLanguage(std::optional<std::string> abbreviation);

    // Makes the question for the folder fail with that code, or the first or second of the two names that are
    // put behind it; 0 ends it.
    void FailFolder(DWORD code) { folderError_ = code; }
    void FailAppend(int nth) { failingAppend_ = nth; }

  private:
    friend struct ShellReplacements;

    std::u16string folder_;
    std::optional<std::u16string> language_;
    DWORD folderError_ = 0;
    int failingAppend_ = 0;
    PatchSet patches_;
};

}  // namespace orvex::tools
