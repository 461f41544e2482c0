// The row loop of a page: every line of the bitmap becomes one row of ink values.
#pragma once

#include <cstdint>

#include "driver/color/ink.h"
#include "driver/render/page_layout.h"
#include "driver/render/page_rows.h"
#include "driver/support/heap.h"

namespace orvex {

struct RasterSettings {
    RowOrder order;
    bool kws;            // pixels without ink get the blank-pixel pattern, and so do fill rows
    uint32_t colorMode;  // a ColorMode
    bool purges;         // this page carries the purge dots
};

// The stages that an image row passes through, in this order.
enum class RasterStage { kReformat, kConvert, kEncode };

// Receiver of a page's rows.
class RowSink {
  public:
    // Reports that an image row enters or leaves a stage. A row like the one before is not converted again.
    virtual void Begin(RasterStage stage) = 0;
    virtual void End(RasterStage stage) = 0;

    // Takes row `number` of the raster block, as many ink values as a row has, valid until it returns. An
    // image row is taken inside its last stage. Returns false to refuse it and all that follow.
    virtual bool Take(int32_t number, const InkValue* row) = 0;

  protected:
    ~RowSink() = default;
};

// Hands out a page's rows: fill rows, image rows with the purge bar, fill rows. It owns their memory.
class RasterLoop {
  public:
    // No side of the bitmap may be negative. The layout is used until the rows have been sent.
    RasterLoop(const PageBitmap& bitmap, const PageLayout& layout, const RasterSettings& settings);

    // False when out of memory; no row can be sent then.
    explicit operator bool() const { return output_ && reader_; }

    // Sends all rows, once. Returns false when the sink refused one.
    bool Send(RowSink& sink);

  private:
    void WritePurgeDots();
    void FillImageArea(bool withPattern);
    bool SendFillRows(int32_t count, int64_t firstNumber, RowSink& sink);
    bool SendImageRows(RowSink& sink);

    InkValue* ImageArea() { return output_.get() + (layout_.purgeLead ? layout_.purgeLen : 0); }

    const PageLayout& layout_;
    const RasterSettings settings_;
    RowReader reader_;
    // Purge dots and gap are written once: conversion writes the image area only.
    HeapArray<InkValue> output_;
};

}  // namespace orvex
