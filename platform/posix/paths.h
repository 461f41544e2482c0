// Windows paths and the POSIX paths that they name.
#pragma once

#include <string>

#include "platform/windows.h"

namespace orvex::posix {

// Returns the folder that is drive C. It is made below the system's temporary folder on first use and removed
// at exit, unless the environment names one in ORVEX_DRIVE_C.
const std::string& DriveC();

// Makes drive C a folder in the user's cache that nobody else can enter and that stays after the run, so that
// the driver's log can be read, unless the environment names one or the folder can't be made. Must come
// before the first use of drive C.
void KeepDriveC();

// Converts a path: "c:\temp\x" is the file "temp/x" of drive C; one without a drive keeps its folders.
std::string PosixPath(const char* path);
std::string PosixPath(const WCHAR* path);

// Converts a path back.
std::u16string WindowsPath(const std::string& posixPath);

}  // namespace orvex::posix
