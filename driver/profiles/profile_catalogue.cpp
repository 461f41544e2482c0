#include "driver/profiles/profile_catalogue.h"

#include "driver/profiles/display_name.h"
#include "driver/profiles/profile_language.h"
#include "driver/profiles/profile_search.h"
#include "driver/support/installation.h"
#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

int ListProfiles(void* context, HeapArray<WCHAR>* fileNames, HeapArray<WCHAR>* displayNames) {
    (void)context;
    fileNames->reset();
    displayNames->reset();
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    if (!folder) {
        LogError("Error: could get app path");
        return 0;
    }
    const ScanResult result = QRV_ScanDirectoryWithPattern(folder.get(), L"*.zvp", fileNames);
    int fromSettings = 0;
    const WCHAR* section = LanguageSection(QRV_Get_Locale(&fromSettings));
    size_t bytes = 0;
    if (const WCHAR* name = fileNames->get()) {
        for (; *name != 0; name += TextLength(name) + 1) {
            GetQRVProfileName(name, displayNames, &bytes, folder.get(), section);
        }
    }
    return result == kScanned ? 1 : 0;
}

}  // namespace orvex
