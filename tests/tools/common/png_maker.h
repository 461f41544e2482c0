// PNG files of every kind for tests, also those that the tools never write.
#pragma once

#include <lodepng.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace orvex::tools {

struct PngRecipe {
    unsigned width = 1;
    unsigned height = 1;
    LodePNGColorType color = LCT_RGBA;
    unsigned bitDepth = 8;
    bool interlaced = false;
    unsigned densityX = 0;  // pixels per unit; 0: no pHYs chunk
    unsigned densityY = 0;
    unsigned densityUnit = 1;                           // 1: meter
    std::function<void(LodePNGInfo&)> embed = nullptr;  // adds further chunks
};

// Encodes samples in the layout of the recipe's color type.
inline std::vector<uint8_t> MakePng(const PngRecipe& recipe, const std::vector<uint8_t>& samples) {
    LodePNGState state;
    lodepng_state_init(&state);
    state.encoder.auto_convert = 0;
    state.info_raw.colortype = state.info_png.color.colortype = recipe.color;
    state.info_raw.bitdepth = state.info_png.color.bitdepth = recipe.bitDepth;
    if (recipe.color == LCT_PALETTE) {
        for (const unsigned value : {0u, 255u}) {
            const auto gray = static_cast<unsigned char>(value);
            lodepng_palette_add(&state.info_raw, gray, 0, 0, 255);
            lodepng_palette_add(&state.info_png.color, gray, 0, 0, 255);
        }
    }
    state.info_png.interlace_method = recipe.interlaced ? 1 : 0;
    if (recipe.densityX != 0 || recipe.densityY != 0) {
        state.info_png.phys_defined = 1;
        state.info_png.phys_x = recipe.densityX;
        state.info_png.phys_y = recipe.densityY;
        state.info_png.phys_unit = recipe.densityUnit;
    }
    if (recipe.embed) recipe.embed(state.info_png);
    unsigned char* encoded = nullptr;
    size_t size = 0;
    const unsigned code =
        lodepng_encode(&encoded, &size, samples.data(), recipe.width, recipe.height, &state);
    std::vector<uint8_t> file(encoded, encoded + (code == 0 ? size : 0));
    free(encoded);
    lodepng_state_cleanup(&state);
    return file;
}

// Makes an RGBA picture of one color.
inline std::vector<uint8_t> MakePlainPng(unsigned width, unsigned height, unsigned density,
                                         uint32_t rgb = 0x000000) {
    std::vector<uint8_t> samples;
    for (unsigned i = 0; i < width * height; ++i) {
        for (const uint32_t each : {rgb >> 16, rgb >> 8, rgb, 255u})
            samples.push_back(static_cast<uint8_t>(each));
    }
    return MakePng({.width = width, .height = height, .densityX = density, .densityY = density}, samples);
}

inline std::string AsText(const std::vector<uint8_t>& bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace orvex::tools
