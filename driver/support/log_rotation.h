// Backups of the diagnostic log: number 1 is the newest, number 9 the oldest.
#pragma once

namespace orvex {

// Moves a log that has grown too long out of the way: c:\temp\orvexgdi.txt becomes c:\temp\orvexgdi.1.txt. A
// log that can't be renamed stays where it is.
void MoveLogToBackup(const char* path);

// Makes room for a new backup `name`, which ends in a dot, one digit, a dot and an extension: moves it, and
// every higher-numbered one in its way, up by one digit; number 9 is deleted.
void RotateLogFile(const char* name);

}  // namespace orvex
