// Binding of the print engine's library for the time of a job.
#pragma once

#include "platform/windows.h"

namespace orvex {

// Makes the installation folder current, which it stays until the job ends, loads hpcrlib.dll and resolves
// its seven entry points into g_engine. A folder that can't be entered is no failure: the library is loaded
// from wherever the system finds it. On failure the reason is logged, nothing stays loaded, the current
// directory is what it was, and the last error is that of the call that failed.
bool BindPrintEngine();

// Unloads the library and restores the current directory. Does nothing while no library is bound.
void UnbindPrintEngine();

// Ends the engine's job and unbinds its library; a failure of the engine is logged. Does nothing while none
// is bound.
void EndEngineJob();

}  // namespace orvex
