// Windows paths and the POSIX paths that they name.
#pragma once

#include <string>

#include "platform/windows.h"

namespace orvex::posix {

// Returns the folder that is drive C. It is made below the system's temporary folder on first use and removed
// at exit, unless the environment names one in ORVEX_DRIVE_C.
const std::string& DriveC();

// Converts a path: "c:\temp\x" is the file "temp/x" of drive C; one without a drive keeps its folders.
std::string PosixPath(const char* path);
std::string PosixPath(const WCHAR* path);

// Converts a path back.
std::u16string WindowsPath(const std::string& posixPath);

}  // namespace orvex::posix
