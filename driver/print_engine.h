// Binding of the print engine's library for the duration of a job.
#pragma once

#include "platform/windows.h"

namespace orvex {

// Makes the installation folder the current directory until the job ends, loads hpcrlib.dll and resolves its
// seven entry points into g_engine. If the folder can't be entered, the library is loaded from wherever the
// system finds it. On failure the reason is logged, nothing stays loaded, the current directory is what it
// was, and the last error is that of the call that failed.
bool BindPrintEngine();

// Unloads the library and restores the current directory. Does nothing while no library is bound.
void UnbindPrintEngine();

// Ends the print engine's job, logs it if the engine fails to, and unbinds the library in any case. Does
// nothing while no library is bound.
void EndEngineJob();

}  // namespace orvex
