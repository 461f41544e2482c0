// Bounded copies and conversions of narrow and wide text. Wide text is UTF-16.
#pragma once

#include <algorithm>
#include <string_view>

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// Wide text of known length, not necessarily terminated. The standard's traits of wchar_t call the C library,
// which natively expects 4-byte characters.
using WideView = std::basic_string_view<WCHAR, __gnu_cxx::char_traits<WCHAR>>;

// Counts the characters before the terminator, `capacity` at most.
template <typename Character>
size_t TextLength(const Character* text, size_t capacity) {
    return static_cast<size_t>(std::find(text, text + capacity, Character{}) - text);
}

// Counts the characters before the terminator; null has none.
size_t TextLength(const WCHAR* text);

// Returns the text of a fixed-size field, which may lack its terminator.
template <size_t N>
std::string_view FieldText(const char (&field)[N]) {
    return {field, TextLength(field, N)};
}
template <size_t N>
WideView FieldText(const WCHAR (&field)[N]) {
    return {field, TextLength(field, N)};
}

// Copies as much as fits into `capacity` characters, the terminator included, and terminates the copy.
void CopyText(char* destination, size_t capacity, std::string_view source);
void CopyText(WCHAR* destination, size_t capacity, WideView source);
template <size_t N>
void CopyText(char (&destination)[N], std::string_view source) {
    CopyText(destination, N, source);
}
template <size_t N>
void CopyText(WCHAR (&destination)[N], WideView source) {
    CopyText(destination, N, source);
}

// Returns the text after its first `count` characters, which it must have. substr() would link the C++
// runtime's exceptions into the driver, with locks whose handles leak when the driver is unloaded.
template <typename View>
View After(View text, size_t count) {
    text.remove_prefix(count);
    return text;
}

// Cuts blanks, tabs, line ends, vertical tabs and form feeds off both ends of a text, in place.
void TrimWhitespace(char* text);

// Converts wide text to the narrow code page, cut at a whole character so that it fits into `capacity` bytes
// with its terminator. A character that the code page lacks becomes its default one. Returns the length.
size_t NarrowText(char* destination, size_t capacity, WideView source);

// Converts text of the narrow code page to wide text, cut so that it fits with its terminator. Returns the
// length.
size_t WidenText(WCHAR* destination, size_t capacity, std::string_view source);

// Return a copy on the heap, narrow text widened; null when `text` is null or the process is out of memory.
HeapArray<WCHAR> DuplicateText(const WCHAR* text);
HeapArray<WCHAR> DuplicateWidened(const char* text);

}  // namespace orvex
