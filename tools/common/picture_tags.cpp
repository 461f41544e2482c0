#include "tools/common/picture_tags.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>

#include "tools/common/number_text.h"

namespace orvex::tools {

namespace {

using Bytes = std::span<const uint8_t>;

constexpr double kMetersPerCentimeter = 0.01;

// Returns the number of `size` bytes at the offset; bytes past the end are 0.
uint32_t NumberAt(Bytes bytes, size_t offset, size_t size, bool bigFirst) {
    uint32_t number = 0;
    for (size_t i = 0; i < size; ++i) {
        const size_t at = offset + (bigFirst ? i : size - 1 - i);
        number = number << 8 | (at < bytes.size() ? bytes[at] : 0u);
    }
    return number;
}
uint32_t Big16(Bytes bytes, size_t offset) {
    return NumberAt(bytes, offset, 2, true);
}
uint32_t Little(Bytes bytes, size_t offset, size_t size) {
    return NumberAt(bytes, offset, size, false);
}

Bytes From(Bytes bytes, size_t offset) {
    return bytes.subspan(std::min(offset, bytes.size()));
}

bool StartsWith(Bytes bytes, std::string_view start) {
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin(),
                                                      [](char a, uint8_t b) { return uint8_t(a) == b; });
}

[[noreturn]] void FailAsCut(const char* kind) {
    throw PageError(std::string("is a damaged ") + kind + " file: it ends before its picture does");
}

void SetDensity(PictureTags& tags, double x, double y, double metersPerUnit) {
    if (x > 0 && y > 0) tags.density = PixelDensity{x / metersPerUnit, y / metersPerUnit};
}

// The first directory of the TIFF data that EXIF is.
class ExifReader {
  public:
    explicit ExifReader(Bytes tiff) : tiff_(tiff), bigFirst_(StartsWith(tiff, "MM")) {}

    void Read(PictureTags& tags) const {
        constexpr uint32_t kOrientation = 0x112, kAcross = 0x11A, kDown = 0x11B, kUnit = 0x128;
        constexpr uint32_t kCentimeters = 3;
        if (!bigFirst_ && !StartsWith(tiff_, "II")) return;
        const size_t directory = Number(4, 4);
        const uint32_t count = Number(directory, 2);
        uint32_t unit = 0;
        double across = 0, down = 0;
        for (uint32_t i = 0; i < count; ++i) {
            const size_t entry = directory + 2 + size_t{i} * kEntryBytes;
            if (entry >= tiff_.size()) break;
            const uint32_t tag = Number(entry, 2), word = Number(entry + kValueAt, 2);
            if (tag == kOrientation && word >= 1 && word <= 8) tags.orientation = static_cast<int>(word);
            if (tag == kUnit) unit = word;
            if (tag == kAcross) across = Fraction(entry);
            if (tag == kDown) down = Fraction(entry);
        }
        if (tags.density || unit < 2 || unit > kCentimeters) return;
        SetDensity(tags, across, down, unit == kCentimeters ? kMetersPerCentimeter : kMetersPerInch);
    }

  private:
    static constexpr size_t kEntryBytes = 12;
    static constexpr size_t kValueAt = 8;

    uint32_t Number(size_t offset, size_t size) const { return NumberAt(tiff_, offset, size, bigFirst_); }
    double Fraction(size_t entry) const {
        const size_t at = Number(entry + kValueAt, 4);
        const uint32_t divisor = Number(at + 4, 4);
        return divisor == 0 ? 0 : static_cast<double>(Number(at, 4)) / divisor;
    }

    Bytes tiff_;
    bool bigFirst_;
};

// A walk over the segments of a JPEG file to the end of its picture.
class JpegReader {
  public:
    explicit JpegReader(Bytes file) : file_(file) {}

    PictureTags Read() {
        constexpr uint8_t kEndOfImage = 0xD9;
        for (size_t at = 2;;) {
            at = NextMarker(at);
            const uint8_t marker = file_[at + 1];
            at += 2;
            if (marker == kEndOfImage) break;
            const size_t length = Big16(file_, at);
            if (length < 2 || length > file_.size() - at) FailAsCut("JPEG");
            Take(marker, file_.subspan(at + 2, length - 2));
            at += length;
        }
        // JFIF says how the picture was meant; EXIF, how it was taken.
        ExifReader(exif_).Read(tags_);
        for (const auto& [number, part] : profile_)
            tags_.profile.insert(tags_.profile.end(), part.begin(), part.end());
        return std::move(tags_);
    }

  private:
    // Returns the offset of the next marker of a segment; compressed pixels are passed over.
    size_t NextMarker(size_t at) const {
        for (; at + 1 < file_.size(); ++at) {
            const uint8_t next = file_[at + 1];
            const bool alone = next == 0 || next == 1 || next == 0xFF || (next >= 0xD0 && next <= 0xD8);
            if (file_[at] == 0xFF && !alone) return at;
        }
        FailAsCut("JPEG");
    }

    static constexpr uint8_t kHuffmanTables = 0xC4;

    void Take(uint8_t marker, Bytes data) {
        using namespace std::string_view_literals;
        constexpr auto kJfif = "JFIF\0"sv, kExif = "Exif\0\0"sv, kProfile = "ICC_PROFILE\0"sv;
        constexpr uint8_t kApp0 = 0xE0, kApp1 = 0xE1, kApp2 = 0xE2;
        if (marker == kApp0 && StartsWith(data, kJfif)) TakeJfif(From(data, kJfif.size()));
        if (marker == kApp1 && StartsWith(data, kExif) && exif_.empty()) exif_ = From(data, kExif.size());
        if (marker == kApp2 && StartsWith(data, kProfile) && data.size() > kProfile.size() + 2)
            profile_[data[kProfile.size()]] = From(data, kProfile.size() + 2);
        if (marker == kHuffmanTables) CheckTables(data);
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != kHuffmanTables && marker != 0xC8 && marker != 0xCC;
        if (isFrame && data.size() > 5) tags_.isCmyk = data[5] == 4;
    }

    // Refuses tables with more codes than there are bytes, which the decoder would write past its own.
    static void CheckTables(Bytes data) {
        constexpr size_t kTableHead = 17, kMostCodes = 256;
        for (size_t at = 0; at < data.size();) {
            size_t codes = 0;
            for (size_t i = 1; i < kTableHead; ++i) codes += NumberAt(data, at + i, 1, true);
            at += kTableHead + codes;
            if (codes > kMostCodes || at > data.size())
                throw PageError("is a damaged JPEG file: it has a table of too many codes");
        }
    }

    void TakeJfif(Bytes data) {
        constexpr uint32_t kInches = 1, kCentimeters = 2;
        const uint32_t unit = NumberAt(data, 2, 1, true);
        if (unit != kInches && unit != kCentimeters) return;
        SetDensity(tags_, Big16(data, 3), Big16(data, 5),
                   unit == kCentimeters ? kMetersPerCentimeter : kMetersPerInch);
    }

    Bytes file_;
    PictureTags tags_;
    Bytes exif_;
    std::map<uint8_t, Bytes> profile_;  // its parts by their numbers
};

PictureTags ReadBmp(Bytes file) {
    constexpr uint32_t kOldHeader = 12;
    PictureTags tags;
    const uint64_t pixelsAt = Little(file, 10, 4);
    const bool old = Little(file, 14, 4) == kOldHeader;
    const uint64_t width = Little(file, 18, old ? 2 : 4);
    const auto height = static_cast<int32_t>(Little(file, old ? 20 : 22, old ? 2 : 4));
    const uint64_t bits = Little(file, old ? 24 : 28, 2);
    const uint64_t rows = static_cast<uint64_t>(std::abs(int64_t{height}));
    const uint64_t rowBytes = (width * bits + 31) / 32 * 4;
    const bool compressed = !old && (Little(file, 30, 4) == 1 || Little(file, 30, 4) == 2);
    if (!compressed && rowBytes != 0 &&
        (pixelsAt > file.size() || rows > (file.size() - pixelsAt) / rowBytes))
        FailAsCut("BMP");
    if (old) return tags;
    SetDensity(tags, static_cast<int32_t>(Little(file, 38, 4)), static_cast<int32_t>(Little(file, 42, 4)), 1);
    return tags;
}

// Walks over a GIF's blocks to the end of its first picture.
PictureTags ReadGif(Bytes file) {
    constexpr uint32_t kExtension = 0x21, kImage = 0x2C, kColorTable = 0x80;
    const auto byte = [&](size_t at) {
        if (at >= file.size()) FailAsCut("GIF");
        return uint32_t{file[at]};
    };
    const auto tableBytes = [](uint32_t flags) {
        return (flags & kColorTable) == 0 ? size_t{0} : size_t{3} << ((flags & 7) + 1);
    };
    const auto passBlocks = [&](size_t at) {
        while (byte(at) != 0) at += 1 + byte(at);
        return at + 1;
    };
    size_t at = 13 + tableBytes(byte(10));
    while (byte(at) == kExtension) at = passBlocks(at + 2);
    if (byte(at) == kImage) passBlocks(at + 11 + tableBytes(byte(at + 9)));
    return {};
}

}  // namespace

PictureKind KindOfPicture(Bytes start) {
    using namespace std::string_view_literals;
    if (StartsWith(start, "\xFF\xD8\xFF"sv)) return PictureKind::kJpeg;
    if (StartsWith(start, "BM"sv)) return PictureKind::kBmp;
    if (StartsWith(start, "GIF8"sv)) return PictureKind::kGif;
    if (StartsWith(start, "II*\0"sv) || StartsWith(start, "MM\0*"sv)) return PictureKind::kTiff;
    if (StartsWith(start, "RIFF"sv) && StartsWith(From(start, 8), "WEBP"sv)) return PictureKind::kWebp;
    return PictureKind::kOther;
}

PictureTags ReadPictureTags(PictureKind kind, Bytes file) {
    if (kind == PictureKind::kJpeg) return JpegReader(file).Read();
    return kind == PictureKind::kBmp ? ReadBmp(file) : ReadGif(file);
}

}  // namespace orvex::tools
