#include "tests/kit/picture.h"

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#include <stb/stb_image.h>

namespace orvex {

Picture DecodePicture(std::string_view png) {
    Picture picture;
    int channels = 0;
    uint8_t* pixels =
        stbi_load_from_memory(reinterpret_cast<const uint8_t*>(png.data()), static_cast<int>(png.size()),
                              &picture.width, &picture.height, &channels, 4);
    if (pixels == nullptr) return {};
    picture.rgba.assign(pixels, pixels + size_t{4} * static_cast<size_t>(picture.width * picture.height));
    stbi_image_free(pixels);
    return picture;
}

std::string DecodeBase64(std::string_view text) {
    constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    if (text.size() % 4 != 0) return {};
    std::string bytes;
    uint32_t bits = 0;
    int count = 0;
    for (const char c : text.substr(0, text.find('='))) {
        const size_t value = kAlphabet.find(c);
        if (value == std::string_view::npos) return {};
        bits = bits << 6 | static_cast<uint32_t>(value);
        count += 6;
        if (count >= 8) bytes += static_cast<char>(bits >> (count -= 8) & 0xFF);
    }
    return bytes;
}

}  // namespace orvex
