// The driver as the graphics engine sees it: the module and its table of hooks.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/windows.h"

namespace orvex::tools {

// The reason why a driver can't be used, in words.
class DriverError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct DriverHooks {
    PFN_DrvEnablePDEV enablePdev;
    PFN_DrvResetPDEV resetPdev;
    PFN_DrvCompletePDEV completePdev;
    PFN_DrvDisablePDEV disablePdev;
    PFN_DrvEnableSurface enableSurface;
    PFN_DrvDisableSurface disableSurface;
    PFN_DrvStartPage startPage;
    PFN_DrvSendPage sendPage;
    PFN_DrvStartDoc startDoc;
    PFN_DrvEndDoc endDoc;
};

class DriverLibrary {
  public:
    // Loads the driver's file, gets the table from DrvEnableDriver and checks it: the version, the number and
    // order of the hooks, no null entry. Natively the driver is linked into the program and `file` is
    // ignored. Throws DriverError.
    explicit DriverLibrary(const std::filesystem::path& file);
    ~DriverLibrary();
    DriverLibrary(const DriverLibrary&) = delete;
    DriverLibrary& operator=(const DriverLibrary&) = delete;

    HMODULE Module() const { return module_; }
    const DriverHooks& Hooks() const { return hooks_; }
    PFN_DrvEnableDriver EnableDriver() const { return enableDriver_; }
    PFN_DrvQueryDriverInfo QueryDriverInfo() const { return queryDriverInfo_; }

    // Return paths of this machine: the driver's diagnostic log, and the control file that turns it on.
    std::filesystem::path LogPath() const;
    std::filesystem::path LogControlPath() const;
    // Return the same paths as the driver has them: "c:\temp\orvexgdi.txt".
    std::string LogName() const;
    std::string LogControlName() const;

  private:
    std::string LogFileName(const char* extension) const;

    HMODULE module_ = nullptr;
    PFN_DrvEnableDriver enableDriver_ = nullptr;
    PFN_DrvQueryDriverInfo queryDriverInfo_ = nullptr;
    DriverHooks hooks_ = {};
};

// Returns the hooks of the driver's table. Throws DriverError if it is not the table that is expected.
DriverHooks ReadHookTable(const DRVENABLEDATA& table);

// Returns the path of the driver beside the program.
std::filesystem::path DefaultDriverFile();

// Returns the folder of the running program's file.
std::filesystem::path ProgramFolder();

}  // namespace orvex::tools
