#include "driver/profiles/bare_file_name.h"

#include <algorithm>
#include <cstring>

#include "driver/support/text.h"

namespace orvex {

namespace {

// The system opens these names as devices in every folder; # is the number of a port.
constexpr WCHAR kDeviceNames[][8] = {L"CON", L"PRN", L"AUX", L"NUL", L"COM#", L"LPT#", L"CONIN$", L"CONOUT$"};

bool IsPortNumber(WCHAR c) {
    return (c >= L'1' && c <= L'9') || c == 0xB9 || c == 0xB2 || c == 0xB3;  // superscript 1, 2 and 3
}

bool MatchesCharacter(WCHAR wanted, WCHAR c) {
    if (wanted == L'#') return IsPortNumber(c);
    const bool isLetter = wanted >= L'A';
    return c == wanted || (isLetter && c == wanted - L'A' + L'a');
}

// Tells whether the system opens a device under this name. The system looks at the text before the first dot,
// without the blanks at its end.
bool IsDeviceName(WideView name) {
    const WCHAR* end = std::find(name.data, name.data + name.size, L'.');
    while (end != name.data && end[-1] == L' ') --end;
    return std::any_of(std::begin(kDeviceNames), std::end(kDeviceNames), [&](const WCHAR(&device)[8]) {
        const WideView wanted = FieldText(device);
        return std::equal(wanted.data, wanted.data + wanted.size, name.data, end, MatchesCharacter);
    });
}

}  // namespace

bool IsBareFileName(const char* name) {
    // The system widens a narrow path before it splits it. In some code pages a character's second byte looks
    // like a separator, so only the wide text shows the parts.
    WCHAR wide[512];
    if (strlen(name) >= std::size(wide)) return false;
    const WideView text{wide, WidenText(wide, std::size(wide), name)};
    if (text.size == 0 || SameText(text, {L"..", 2}) || IsDeviceName(text)) return false;
    return std::none_of(text.data, text.data + text.size,
                        [](WCHAR c) { return c == L'\\' || c == L'/' || c == L':'; });
}

}  // namespace orvex
