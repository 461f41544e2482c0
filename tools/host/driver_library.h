// The driver as a graphics engine sees it: the module and its table of hooks.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/windows.h"

namespace orvex::tools {

// Why a driver can't be used, in words.
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
    // Loads the driver's file, asks DrvEnableDriver for the table and checks it: version, number and order of
    // the hooks, no null entry. Natively the driver is linked into the program and the file's name plays no
    // part. Throws DriverError.
    explicit DriverLibrary(const std::filesystem::path& file);
    ~DriverLibrary();
    DriverLibrary(const DriverLibrary&) = delete;
    DriverLibrary& operator=(const DriverLibrary&) = delete;

    HMODULE Module() const { return module_; }
    const DriverHooks& Hooks() const { return hooks_; }
    PFN_DrvEnableDriver EnableDriver() const { return enableDriver_; }
    PFN_DrvQueryDriverInfo QueryDriverInfo() const { return queryDriverInfo_; }

    // The diagnostic log of this driver and the control file that turns it on, as paths of this machine.
    std::filesystem::path LogPath() const;
    std::filesystem::path LogControlPath() const;
    // The log as the driver names it: "c:\temp\orvexgdi.txt".
    std::string LogName() const;

  private:
    HMODULE module_ = nullptr;
    PFN_DrvEnableDriver enableDriver_ = nullptr;
    PFN_DrvQueryDriverInfo queryDriverInfo_ = nullptr;
    DriverHooks hooks_ = {};
};

// The driver's table as hooks. Throws DriverError when it is not the one that a graphics engine of this host
// expects.
DriverHooks ReadHookTable(const DRVENABLEDATA& table);

// The driver that stands beside the program.
std::filesystem::path DefaultDriverFile();

// The folder that the running program's file lies in.
std::filesystem::path ProgramFolder();

}  // namespace orvex::tools
