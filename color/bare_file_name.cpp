#include "color/bare_file_name.h"

#include <algorithm>
#include <cstring>

#include "support/text.h"

bool IsBareFileName(const char* name) {
    // The system widens a narrow path before it takes it apart. In some code pages a character's second byte
    // looks like a separator, so the parts show in the wide text only.
    WCHAR wide[512];
    if (strlen(name) >= std::size(wide)) return false;
    const WideView text{wide, WidenText(wide, std::size(wide), name)};
    if (text.size == 0 || SameText(text, {L"..", 2})) return false;
    return std::none_of(text.data, text.data + text.size,
                        [](WCHAR c) { return c == L'\\' || c == L'/' || c == L':'; });
}
