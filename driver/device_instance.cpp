#include "driver/device_instance.h"

#include "driver/config/spooler.h"

namespace orvex {

PDEV* ValidInstance(DHPDEV dhpdev) {
    PDEV* pdev = reinterpret_cast<PDEV*>(dhpdev);
    if (pdev == nullptr) return nullptr;
    return pdev->signature == kPdevSignature && pdev->signatureTail == kPdevSignature ? pdev : nullptr;
}

PDEV* RequireInstance(DHPDEV dhpdev) {
    PDEV* pdev = ValidInstance(dhpdev);
    if (pdev == nullptr) SetLastError(ERROR_INVALID_PARAMETER);
    return pdev;
}

PDEV* RequireInstance(const SURFOBJ* surface) {
    return RequireInstance(surface != nullptr ? surface->dhpdev : nullptr);
}

void AskForDriverName(const PDEV& pdev) {
    GetPrinterDriverName(pdev.hPrinter);
}

}  // namespace orvex
