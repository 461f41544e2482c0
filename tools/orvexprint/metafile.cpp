#include "tools/orvexprint/metafile.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "tools/common/number_text.h"

namespace orvex::tools::print {

namespace {

constexpr size_t kOldestHeader = 88;   // bytes
constexpr size_t kRecordHead = 8;      // type and size
constexpr size_t kSignatureAt = 40;    // of " EMF" in the header
constexpr size_t kCommentDataAt = 12;  // of a comment's data, after their size

// The first bytes of a comment's data.
constexpr uint32_t kSpoolComment = 0;
constexpr uint32_t kFontRecords = 0x544F4E46;  // of a spool comment, after that
constexpr uint32_t kPlusComment = 0x2B464D45;  // "EMF+"

constexpr uint16_t kPlusHeader = 0x4001;  // type of the first GDI+ record
constexpr uint16_t kPlusDual = 1;         // flag: the GDI records draw the whole page as well

constexpr double kHundredthsMmPerInch = 2540;
constexpr double kFarthestPx = 1 << 27;  // GDI calculates with coordinates up to here

[[noreturn]] void Damaged(const std::string& problem) {
    throw PageError("is damaged: " + problem);
}

int32_t Signed32(ByteSpan bytes, size_t offset) {
    return static_cast<int32_t>(Number32(bytes, offset));
}

Metafile ReadHeader(ByteSpan bytes) {
    if (!IsMetafile(bytes) || bytes.size() < kOldestHeader) throw PageError("is no enhanced metafile");
    Metafile metafile;
    const auto field = [&](size_t offset) { return Signed32(bytes, offset); };
    metafile.frame = {field(24), field(28), field(32), field(36)};
    metafile.device = {field(72), field(76)};
    metafile.deviceMm = {field(80), field(84)};
    const uint32_t size = Number32(bytes, offsetof(ENHMETAHEADER, nBytes));
    if (size < kOldestHeader || size > bytes.size()) {
        Damaged("its header says " + std::to_string(size) + " bytes, and there are " +
                std::to_string(bytes.size()));
    }
    metafile.bytes = bytes.first(size);
    if (metafile.frame.right <= metafile.frame.left || metafile.frame.bottom <= metafile.frame.top) {
        throw PageError("has an empty frame, so that its size is not known");
    }
    return metafile;
}

// Notes what a comment says to others than GDI. `offset` is that of its data in the metafile.
void ReadComment(ByteSpan data, size_t offset, Metafile& metafile) {
    if (data.size() < kRecordHead) return;
    const uint32_t kind = Number32(data, 0);
    if (kind == kSpoolComment && Number32(data, 4) == kFontRecords) {
        SplitSpoolRecords(data.subspan(kRecordHead), offset + kRecordHead, metafile.embedded);
    } else if (kind == kPlusComment && Number16(data, 4) == kPlusHeader) {
        metafile.plusOnly = (Number16(data, 6) & kPlusDual) == 0;
    }
}

void ReadRecords(Metafile& metafile) {
    const ByteSpan bytes = metafile.bytes;
    for (size_t at = 0, number = 1;; ++number) {
        const std::string record = "record " + std::to_string(number) + " at offset " + std::to_string(at);
        if (!IsWithin(at, kRecordHead, bytes.size())) Damaged("it has no end record");
        const uint32_t type = Number32(bytes, at);
        const uint32_t size = Number32(bytes, at + 4);
        if (size < kRecordHead || size % 4 != 0 || !IsWithin(at, size, bytes.size())) {
            Damaged(record + " has a size of " + std::to_string(size) + " bytes");
        }
        if (type == EMR_EOF) return;
        if (type == EMR_GDICOMMENT && size >= kCommentDataAt) {
            const uint32_t dataSize = Number32(bytes, at + kRecordHead);
            if (!IsWithin(kCommentDataAt, dataSize, size)) Damaged(record + " is a comment past its end");
            ReadComment(bytes.subspan(at + kCommentDataAt, dataSize), at + kCommentDataAt, metafile);
        }
        at += size;
    }
}

LONG Pixel(double position) {
    return static_cast<LONG>(std::lround(std::clamp(position, -kFarthestPx, kFarthestPx)));
}

}  // namespace

bool IsMetafile(ByteSpan bytes) {
    return bytes.size() >= kSignatureAt + 4 && Number32(bytes, 0) == EMR_HEADER &&
           Number32(bytes, kSignatureAt) == ENHMETA_SIGNATURE;
}

Metafile ReadMetafile(ByteSpan bytes) {
    Metafile metafile = ReadHeader(bytes);
    ReadRecords(metafile);
    return metafile;
}

uint64_t SplitSpoolRecords(ByteSpan bytes, uint64_t base, std::vector<SpoolRecord>& records) {
    size_t at = 0;
    while (IsWithin(at, kRecordHead, bytes.size())) {
        const uint32_t size = Number32(bytes, at + 4);
        if (!IsWithin(at + kRecordHead, size, bytes.size())) break;
        records.push_back({Number32(bytes, at), base + at, bytes.subspan(at + kRecordHead, size)});
        at += kRecordHead + size;
        at = std::min(bytes.size(), (at + 3) / 4 * 4);
    }
    return base + at;
}

PictureSize SizeOf(const Metafile& metafile, uint32_t dpi) {
    const auto pixels = [&](double hundredths) {
        const double count = std::round(hundredths / kHundredthsMmPerInch * dpi);
        return static_cast<uint32_t>(std::clamp(count, 1.0, kFarthestPx));
    };
    const auto density = [](uint32_t count, double hundredths) { return count / (hundredths / 100000); };
    const double across = static_cast<double>(metafile.frame.right) - metafile.frame.left;
    const double down = static_cast<double>(metafile.frame.bottom) - metafile.frame.top;
    const uint32_t width = pixels(across);
    const uint32_t height = pixels(down);
    return {width, height, PixelDensity{density(width, across), density(height, down)}};
}

RECT FrameOnPage(const Metafile& metafile, uint32_t pageWidth, uint32_t pageHeight, uint32_t dpi) {
    double across = dpi / kHundredthsMmPerInch;
    double down = across;
    if (metafile.device.cx == static_cast<LONG>(pageWidth) &&
        metafile.device.cy == static_cast<LONG>(pageHeight) && metafile.deviceMm.cx > 0 &&
        metafile.deviceMm.cy > 0) {
        across = pageWidth / (metafile.deviceMm.cx * 100.0);
        down = pageHeight / (metafile.deviceMm.cy * 100.0);
    }
    return {Pixel(metafile.frame.left * across), Pixel(metafile.frame.top * down),
            Pixel(metafile.frame.right * across), Pixel(metafile.frame.bottom * down)};
}

}  // namespace orvex::tools::print
