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
    uint8_t* bytes = nullptr;
    size_t size = 0;
    const unsigned error = EncodeRgbaPng(&bytes, &size, reinterpret_cast<const uint8_t*>(pixels),
                                         static_cast<unsigned>(width), static_cast<unsigned>(height));
    const HeapArray<uint8_t> png(bytes);
    LogInfo("pngencode %d", error);
    if (error != 0 || !png) {
        LogInfo("failed to generate png");
        return;
    }
    HeapArray<char> encoded = EncodeBase64(png.get(), size, length);
    if (!encoded) {
        LogInfo("failed to generate base64 png");
        return;
    }
    *text = encoded.release();
    LogInfo("generated base64 png %d->%d", size, *length);
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
