#include "driver/printer_output.h"

namespace orvex {

bool WriteToPrinter(HANDLE printer, std::string_view bytes) {
    if (bytes.empty()) return true;
    DWORD written = 0;
    return WritePrinter(printer, const_cast<char*>(bytes.data()), static_cast<DWORD>(bytes.size()),
                        &written) != FALSE;
}

}  // namespace orvex
