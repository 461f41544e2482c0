// JPEG, BMP and GIF files for tests, and what is put into them beside the pixels.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/tools/common/byte_maker.h"
#include "tools/common/picture.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

namespace orvex::tools {

inline void AppendTo(void* file, void* data, int size) {
    static_cast<std::string*>(file)->append(static_cast<const char*>(data), static_cast<size_t>(size));
}

// Encodes a picture with all samples of its colors. `quality` is 1 to 100.
inline std::string MakeJpeg(const Picture& picture, int quality = 95) {
    std::string file;
    stbi_write_jpg_to_func(&AppendTo, &file, static_cast<int>(picture.width),
                           static_cast<int>(picture.height), static_cast<int>(picture.channels),
                           picture.samples.data(), quality);
    return file;
}

// Returns a JPEG whose JFIF segment states a density; unit 1 is the inch, 2 the centimeter.
inline std::string WithJfifDensity(std::string jpeg, int unit, int x, int y) {
    return jpeg.replace(
        13, 5,
        std::string(1, static_cast<char>(unit)) +
            ByteMaker().Big16(static_cast<uint64_t>(x)).Big16(static_cast<uint64_t>(y)).Bytes());
}

// Returns a JPEG with a further segment before its tables.
inline std::string WithSegment(std::string jpeg, uint8_t marker, const std::string& data) {
    constexpr size_t kAfterJfif = 20;
    const std::string head = std::string("\xFF") + static_cast<char>(marker);
    return jpeg.insert(kAfterJfif, head + ByteMaker().Big16(data.size() + 2).Bytes() + data);
}

// Returns the data of an EXIF segment with an orientation and a density of `x` by `y` / 10 pixels per inch.
inline std::string MakeExif(int orientation, int x = 0, int y = 0) {
    ByteMaker tiff;
    tiff.Text("MM").Big16(42).Big32(8).Big16(4);
    tiff.Big16(0x112).Big16(3).Big32(1).Big16(static_cast<uint64_t>(orientation)).Big16(0);
    tiff.Big16(0x11A).Big16(5).Big32(1).Big32(62);
    tiff.Big16(0x11B).Big16(5).Big32(1).Big32(70);
    tiff.Big16(0x128).Big16(3).Big32(1).Big16(2).Big16(0).Big32(0);
    tiff.Big32(static_cast<uint64_t>(x)).Big32(10).Big32(static_cast<uint64_t>(y)).Big32(10);
    return std::string("Exif\0\0", 6) + tiff.Bytes();
}

// Encodes a picture of 3 or 4 channels; a density is in pixels per meter.
inline std::string MakeBmp(const Picture& picture, uint32_t density = 0) {
    std::string file;
    stbi_write_bmp_to_func(&AppendTo, &file, static_cast<int>(picture.width),
                           static_cast<int>(picture.height), static_cast<int>(picture.channels),
                           picture.samples.data());
    return file.replace(38, 8, ByteMaker().U32(density).U32(density).Bytes());
}

// Encodes pixels that are indexes into a table of four colors 0xRRGGBB. `transparent` is one of them, or 4
// for none.
inline std::string MakeGif(uint32_t width, uint32_t height, const std::vector<uint8_t>& pixels,
                           const std::vector<uint32_t>& colors, uint8_t transparent = 4) {
    constexpr uint32_t kClear = 4, kEnd = 5, kCodeBits = 3;
    ByteMaker file;
    file.Text("GIF89a").U16(width).U16(height).Text(std::string("\x81\0\0", 3));
    for (const uint32_t color : colors) file.Big16(color >> 8).Text(std::string(1, static_cast<char>(color)));
    if (transparent < 4)
        file.Text(std::string("\x21\xF9\x04\x01\0\0", 6) + static_cast<char>(transparent)).Zeros(1);
    file.Text(",").Zeros(4).U16(width).U16(height).Zeros(1).Text("\x02");
    std::string data;
    uint32_t bits = 0, count = 0;
    const auto put = [&](uint32_t code) {
        bits |= code << count;
        for (count += kCodeBits; count >= 8; count -= 8, bits >>= 8) data += static_cast<char>(bits);
    };
    // A cleared table before every second pixel keeps all codes at three bits.
    for (size_t i = 0; i < pixels.size(); ++i) {
        if (i % 2 == 0) put(kClear);
        put(pixels[i]);
    }
    put(kEnd);
    data += static_cast<char>(bits);
    for (size_t at = 0; at < data.size(); at += 255) {
        const std::string block = data.substr(at, 255);
        file.Text(std::string(1, static_cast<char>(block.size())) + block);
    }
    return file.Zeros(1).Text(";").Bytes();
}

}  // namespace orvex::tools
