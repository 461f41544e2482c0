#include "engine/engine_job.h"

#include <cstring>

#include "engine/print_stream.h"
#include "engine/row_encoder.h"

namespace orvex::engine {

using namespace print_stream;

bool EngineJob::Output() {
    if (stream_.Flush()) return true;
    Break();
    return false;
}

bool EngineJob::OpenStream() {
    stream_.PutText({reinterpret_cast<const char*>(kFramingChunk), sizeof kFramingChunk});
    if (!Output()) return false;
    stream_.PutText(kPjlOpening);
    if (!Output()) return false;
    stream_.PutRecord(RecordType::kJobStart, {kVersion, resolutionMode_});
    return true;
}

bool EngineJob::StartPage(uint32_t width, uint32_t length) {
    if (stage_ != Stage::kBetweenPages || width == 0 || length == 0) return false;
    if (pages_ == 0 && !OpenStream()) return false;
    ++pages_;
    pageWidth_ = width;
    pageLength_ = length;
    stream_.PutText(kDpi[resolutionMode_] == 600 ? kResolutionCommand600Dpi : kResolutionCommandOther);
    stream_.PutRecord(RecordType::kPageStart, {pages_, width, length});
    stage_ = Stage::kBeforeBlock;
    return Output();
}

bool EngineJob::StartBlock(uint32_t top, uint32_t rowWidth, uint32_t rows) {
    if (stage_ != Stage::kBeforeBlock || top > kMaxBlockRows) return false;
    if (rowWidth == 0 || rowWidth > kMaxRowWidth || rows == 0 || rows > kMaxBlockRows) return false;
    const uint32_t unit = UnitsPerPixel(resolutionMode_);
    if (rowWidth * unit > pageWidth_ || (top + rows) * unit > pageLength_) return false;
    above_.assign(rowWidth, 0);
    top_ = top;
    rowWidth_ = rowWidth;
    announcedRows_ = rows;
    rows_ = 0;
    stream_.PutRecord(RecordType::kBlockStart, {top, rowWidth, rows});
    stage_ = Stage::kInBlock;
    return Output();
}

uint32_t EngineJob::BlockSlack() const {
    const bool spansHead = top_ == 0 && announcedRows_ == HeadRows(resolutionMode_);
    return spansHead ? HeadBlockSlack(resolutionMode_) : 0;
}

void EngineJob::EncodeRowIntoStream(const uint32_t* row) {
    if (!stream_.InRecord()) stream_.BeginRecord(RecordType::kRows);
    stream_.Commit(
        EncodeRow(above_.data(), row, rowWidth_, stream_.Reserve(row_code::MaxEncodedRowSize(rowWidth_))));
    memcpy(above_.data(), row, rowWidth_ * sizeof *row);
}

bool EngineJob::PutRow(const uint32_t* row) {
    if (stage_ != Stage::kInBlock || !row || rows_ == announcedRows_ + BlockSlack()) return false;
    EncodeRowIntoStream(row);
    ++rows_;
    if (stream_.RecordSize() < kRowsRecordSize) return true;
    stream_.EndRecord();
    return Output();
}

bool EngineJob::EndBlock() {
    if (stage_ != Stage::kInBlock || rows_ + BlockSlack() < announcedRows_) return false;
    if (stream_.InRecord()) stream_.EndRecord();
    stream_.PutRecord(RecordType::kBlockEnd, {rows_});
    stage_ = Stage::kAfterBlock;
    return Output();
}

bool EngineJob::EndPage() {
    if (stage_ != Stage::kAfterBlock) return false;
    stream_.PutRecord(RecordType::kPageEnd, {pages_});
    stage_ = Stage::kBetweenPages;
    return Output();
}

bool EngineJob::End() {
    if (stage_ != Stage::kBetweenPages) return false;
    if (pages_ == 0) return true;
    stream_.PutRecord(RecordType::kJobEnd, {pages_});
    stream_.PutText(kUniversalExit);
    return Output();
}

}  // namespace orvex::engine
