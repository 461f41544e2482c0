// The C runtime starts a DLL with a pass over the data that it imports without saying so. The driver has
// none, and is linked so that the linker refuses any. The runtime's own pass would bring the functions into
// the import table with which it reports errors to a file: fwrite, vfprintf, and abort.

namespace orvex {

extern "C" void _pei386_runtime_relocator() {}

}  // namespace orvex
