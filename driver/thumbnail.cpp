#include "driver/thumbnail.h"

#include "driver/render/base64.h"
#include "driver/render/pixel_reduction.h"
#include "driver/render/png_encoder/png_encoder.h"
#include "driver/support/heap.h"
#include "driver/support/log.h"
#include "driver/support/settings_file.h"

namespace orvex {

namespace {

void EncodePng(const uint32_t* pixels, int32_t width, int32_t height, char** text, size_t* length) {
    const unsigned columns = static_cast<unsigned>(width), lines = static_cast<unsigned>(height);
    const size_t size = PngWorkspaceSize(columns, lines);
    const HeapArray<uint8_t> workspace = AllocateArray<uint8_t>(size);
    const EncodedPng png = EncodeRgbaPng({workspace.get(), workspace ? size : 0},
                                         reinterpret_cast<const uint8_t*>(pixels), columns, lines);
    LogInfo("pngencode %d", png.error);
    if (png.error != 0) {
        LogInfo("failed to generate png");
        return;
    }
    HeapArray<char> encoded = EncodeBase64(png.bytes.data(), png.bytes.size(), length);
    if (!encoded) {
        LogInfo("failed to generate base64 png");
        return;
    }
    *text = encoded.release();
    LogInfo("generated base64 png %d->%d", png.bytes.size(), *length);
}

}  // namespace

int32_t BuildPageThumbnail(const uint32_t* pixels, int32_t width, int32_t height, char** text,
                           size_t* length) {
    LogInfo("add page thumb %dx%d", width, height);
    const double maxWidth = LookupNumber("[Driver]", "thumb_max_width=", 800);
    const double maxHeight = LookupNumber("[Driver]", "thumb_max_height=", 600);
    const int32_t scale = ThumbnailScale(width, height, maxWidth, maxHeight);
    const int32_t scaledWidth = width >> scale;
    const int32_t scaledHeight = height >> scale;
    LogInfo("thumb scale %d", scale);
    if (scale > 0) LogInfo("scaled image %dx%d %d\n", scaledWidth, scaledHeight, 1 << scale);

    const HeapArray<uint32_t> scaled =
        AllocateArray<uint32_t>(static_cast<size_t>(scaledWidth) * static_cast<size_t>(scaledHeight));
    if (!scaled) {
        LogInfo("failed to alloc thumbnail bytes");
        return 0;
    }
    ReducePixels(pixels, width, height, scale, scaled.get());
    EncodePng(scaled.get(), scaledWidth, scaledHeight, text, length);
    return 1;
}

}  // namespace orvex
