// The files of the diagnostic log in c:\temp: the log, its control file and its backups, all named after the
// driver's module. orvexgdi.dll has the log orvexgdi.txt, the control file orvexgdi.dat, and the backups
// orvexgdi.1.txt, the newest, to orvexgdi.9.txt.
#pragma once

#include "driver/support/heap.h"

namespace orvex {

// Returns a new copy of the log's path; null when the module has no usable file name.
HeapArray<char> GetLogPath();

// Return the path of the log and of the control file, worked out on first use; null when there is none.
const char* LogPath();
const char* ControlFilePath();

// Makes a log that has grown too long the newest backup. A log that can't be renamed stays where it is.
void MoveLogToBackup(const char* path);

// Makes room for a new backup `name`, which ends in a dot, one digit, a dot and an extension: moves it, and
// every higher-numbered one in its way, up by one digit; number 9 is deleted.
void RotateLogFile(const char* name);

}  // namespace orvex
