#include "driver/render/base64.h"

#include <algorithm>
#include <cstring>

namespace orvex {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Writes the four characters of a group of one to three bytes.
char* EncodeGroup(const uint8_t* bytes, size_t count, char* out) {
    uint8_t padded[3] = {};
    memcpy(padded, bytes, count);
    const uint32_t group = uint32_t{padded[0]} << 16 | uint32_t{padded[1]} << 8 | padded[2];
    *out++ = kAlphabet[group >> 18];
    *out++ = kAlphabet[group >> 12 & 63];
    *out++ = count > 1 ? kAlphabet[group >> 6 & 63] : '=';
    *out++ = count > 2 ? kAlphabet[group & 63] : '=';
    return out;
}

}  // namespace

HeapArray<char> EncodeBase64(const uint8_t* bytes, size_t size, size_t* length) {
    const size_t capacity = size * 4 / 3 + 5;
    if (capacity < size) return nullptr;
    HeapArray<char> text = AllocateArray<char>(capacity);
    if (!text) return nullptr;
    char* out = text.get();
    for (size_t i = 0; i < size; i += 3) out = EncodeGroup(bytes + i, std::min<size_t>(size - i, 3), out);
    *out = '\0';
    *length = static_cast<size_t>(out - text.get());
    return text;
}

}  // namespace orvex
