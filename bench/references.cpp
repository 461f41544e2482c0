#include "bench/references.h"

#include <stdexcept>

#include "driver/color/color_adjustment.h"
#include "driver/color/color_cache.h"

namespace orvex::bench {

namespace {

// Returns the grid as 16-bit values in Little CMS' order: red slowest, then C, M, Y, K of each point.
std::vector<cmsUInt16Number> GridTable() {
    InkGrid grid;
    CopyGridOut(g_colorCache, &grid);
    std::vector<cmsUInt16Number> table;
    table.reserve(size_t{4} * kGridPoints);
    for (const uint32_t ink : grid.inks) {
        for (const int shift : {8, 16, 24, 0}) {
            table.push_back(static_cast<cmsUInt16Number>((ink >> shift & 0xFF) * 257));
        }
    }
    return table;
}

}  // namespace

LittleCms::LittleCms() {
    const std::vector<cmsUInt16Number> table = GridTable();
    cmsPipeline* const pipeline = cmsPipelineAlloc(nullptr, 3, 4);
    cmsPipelineInsertStage(pipeline, cmsAT_END,
                           cmsStageAllocCLut16bit(nullptr, kGridSteps, 3, 4, table.data()));
    const cmsHPROFILE link = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(link, 4.3);
    cmsSetDeviceClass(link, cmsSigLinkClass);
    cmsSetColorSpace(link, cmsSigRgbData);
    cmsSetPCS(link, cmsSigCmykData);
    cmsWriteTag(link, cmsSigAToB0Tag, pipeline);
    // Little CMS would resample the grid to 33 points, which are slower.
    transform_ = cmsCreateTransform(link, TYPE_BGRA_8, nullptr, TYPE_KCMY_8, INTENT_PERCEPTUAL,
                                    cmsFLAGS_GRIDPOINTS(kGridSteps));
    cmsCloseProfile(link);
    cmsPipelineFree(pipeline);
    if (transform_ == nullptr) throw std::runtime_error("Little CMS cannot make a transform from the grid");
}

LittleCms::~LittleCms() {
    cmsDeleteTransform(transform_);
}

PixmanRotation::PixmanRotation(const BenchPage& page)
    : width_(page.height), rows_(page.width), turned_(page.pixels.size()) {
    source_ = pixman_image_create_bits(PIXMAN_x8r8g8b8, page.width, page.height,
                                       const_cast<uint32_t*>(page.pixels.data()), page.width * 4);
    target_ = pixman_image_create_bits(PIXMAN_x8r8g8b8, width_, rows_, turned_.data(), width_ * 4);
    // Maps a place of the turned page to the page: x = page width - y, y = x.
    pixman_transform_t turn;
    pixman_transform_init_identity(&turn);
    turn.matrix[0][0] = turn.matrix[1][1] = 0;
    turn.matrix[0][1] = -pixman_fixed_1;
    turn.matrix[1][0] = pixman_fixed_1;
    turn.matrix[0][2] = pixman_int_to_fixed(page.width);
    pixman_image_set_transform(source_, &turn);
}

PixmanRotation::~PixmanRotation() {
    pixman_image_unref(source_);
    pixman_image_unref(target_);
}

void PixmanRotation::Rotate() {
    pixman_image_composite32(PIXMAN_OP_SRC, source_, nullptr, target_, 0, 0, 0, 0, 0, 0, width_, rows_);
}

}  // namespace orvex::bench
