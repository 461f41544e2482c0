// The shell's and the system's answers to the driver, so that the host chooses the installation folder and
// the language, and those of the machine stay untouched.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/windows.h"
#include "tools/host/import_patch.h"

namespace orvex::tools {

class ShellAnswers : public ImportService<ShellAnswers> {
  public:
    // `installation` is the folder itself, whatever its name. Throws std::runtime_error if its path is too
    // long for the driver.
    explicit ShellAnswers(const std::filesystem::path& installation);

    void Attach(HMODULE module);

    // Sets the abbreviated name of the system's language, such as "DEU"; empty: the machine's own.
    void SetLanguage(std::optional<std::string> abbreviation);

    // Makes the attached modules get the file at `path`, which must be absolute, when they open `name`, so
    // that a file is installed for one session and the installation folder stays as it is. `name` is a path
    // in the narrow code page, exactly as the driver gives it to CreateFileA.
    void LendFile(const std::string& name, const std::filesystem::path& path);
    // Returns the path of the file that is lent; empty if there is none.
    const std::filesystem::path& LentFile() const { return lentFile_; }

    // Makes the query for the folder fail with an error code; 0 ends the failing.
    void FailFolder(DWORD code) { folderError_ = code; }

  private:
    struct Replacements;

    std::u16string folder_;
    std::optional<std::u16string> language_;
    DWORD folderError_ = 0;
    std::vector<HMODULE> modules_;
    std::string lentName_;
    std::filesystem::path lentFile_;
    PatchSet lending_;
};

}  // namespace orvex::tools
