#include "driver/support/text.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace orvex {

namespace {

template <typename Character, typename View>
void CopyBounded(Character* destination, size_t capacity, View source) {
    if (capacity == 0) return;
    const size_t copied = std::min(source.size(), capacity - 1);
    if (copied > 0) memmove(destination, source.data(), copied * sizeof(Character));
    destination[copied] = 0;
}

// White space of the "C" locale.
constexpr std::string_view kWhitespace = " \t\n\v\f\r";

// The conversion functions count in signed 32-bit numbers.
int ClampedLength(size_t length) {
    return static_cast<int>(std::min<size_t>(length, INT_MAX));
}

}  // namespace

size_t TextLength(const WCHAR* text) {
    return text == nullptr ? 0 : WideView(text).size();
}

void CopyText(char* destination, size_t capacity, std::string_view source) {
    CopyBounded(destination, capacity, source);
}

void CopyText(WCHAR* destination, size_t capacity, WideView source) {
    CopyBounded(destination, capacity, source);
}

void TrimWhitespace(char* text) {
    std::string_view kept = text;
    kept.remove_prefix(std::min(kept.find_first_not_of(kWhitespace), kept.size()));
    kept = kept.substr(0, kept.find_last_not_of(kWhitespace) + 1);
    CopyText(text, strlen(text) + 1, kept);
}

size_t NarrowText(char* destination, size_t capacity, WideView source) {
    if (capacity == 0) return 0;
    size_t used = 0;
    for (size_t i = 0; i < source.size();) {
        const bool pair =
            IS_HIGH_SURROGATE(source[i]) && i + 1 < source.size() && IS_LOW_SURROGATE(source[i + 1]);
        const int units = pair ? 2 : 1;
        char character[MB_LEN_MAX];
        const int bytes = WideCharToMultiByte(CP_ACP, 0, source.data() + i, units, character,
                                              static_cast<int>(sizeof character), nullptr, nullptr);
        if (bytes == 0 || used + static_cast<size_t>(bytes) >= capacity) break;
        memcpy(destination + used, character, static_cast<size_t>(bytes));
        used += static_cast<size_t>(bytes);
        i += static_cast<size_t>(units);
    }
    destination[used] = '\0';
    return used;
}

size_t WidenText(WCHAR* destination, size_t capacity, std::string_view source) {
    if (capacity == 0) return 0;
    // A narrow character never becomes more wide ones than it has bytes, so this much of the source fits.
    const int length = ClampedLength(std::min(source.size(), capacity - 1));
    const int written = length == 0 ? 0
                                    : MultiByteToWideChar(CP_ACP, 0, source.data(), length, destination,
                                                          ClampedLength(capacity - 1));
    destination[written] = 0;
    return static_cast<size_t>(written);
}

HeapArray<WCHAR> DuplicateText(const WCHAR* text) {
    if (text == nullptr) return nullptr;
    const WideView source = text;
    HeapArray<WCHAR> copy = AllocateArray<WCHAR>(source.size() + 1);
    if (copy) CopyText(copy.get(), source.size() + 1, source);
    return copy;
}

HeapArray<WCHAR> DuplicateWidened(const char* text) {
    if (text == nullptr) return nullptr;
    const std::string_view source = text;
    HeapArray<WCHAR> copy = AllocateArray<WCHAR>(source.size() + 1);
    if (copy) WidenText(copy.get(), source.size() + 1, source);
    return copy;
}

}  // namespace orvex
