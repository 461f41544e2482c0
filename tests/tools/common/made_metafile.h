// Enhanced metafiles and spool files, written field by field from their public description.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/tools/common/byte_maker.h"

namespace orvex::tools {

// A metafile in pixels of a device that is recorded for.
class MadeMetafile {
  public:
    struct Frame {
        int32_t left, top, right, bottom;  // 0.01 mm
    };
    struct DeviceSize {
        int32_t width, height;  // pixels
        int32_t widthMm, heightMm;
    };

    MadeMetafile(Frame frame, DeviceSize device) : frame_(frame), device_(device) {}

    // Adds any record.
    MadeMetafile& Record(uint32_t type, const std::string& body) {
        ByteMaker record;
        record.U32(type).U32(8 + (body.size() + 3) / 4 * 4).Text(body).FillUpTo(4);
        records_ += record.Bytes();
        ++count_;
        return *this;
    }

    // Adds a black rectangle.
    MadeMetafile& Bar(int32_t left, int32_t top, int32_t width, int32_t height) {
        constexpr uint32_t kBitBlt = 76, kBlackness = 0x42;
        ByteMaker body;
        body.Zeros(16).U32(Bits(left)).U32(Bits(top)).U32(Bits(width)).U32(Bits(height)).U32(kBlackness);
        body.Zeros(8);
        for (const uint32_t number : {0x3F800000u, 0u, 0u, 0x3F800000u, 0u, 0u}) body.U32(number);
        return Record(kBitBlt, body.Zeros(24).Bytes());
    }

    // Adds a bitmap, rows of 0x00RRGGBB from the top, at its own size.
    MadeMetafile& Bitmap(int32_t left, int32_t top, uint32_t width, const std::vector<uint32_t>& pixels) {
        constexpr uint32_t kStretchDiBits = 81, kSourceCopy = 0x00CC0020;
        const uint32_t height = static_cast<uint32_t>(pixels.size()) / width;
        ByteMaker body;
        body.Zeros(16).U32(Bits(left)).U32(Bits(top)).U32(0).U32(0).U32(width).U32(height);
        body.U32(80).U32(40).U32(120).U32(pixels.size() * 4).U32(0).U32(kSourceCopy).U32(width).U32(height);
        body.U32(40).U32(width).U32(height).U16(1).U16(32).Zeros(24);
        for (uint32_t row = height; row-- > 0;) {
            for (uint32_t x = 0; x < width; ++x) body.U32(pixels[row * width + x]);
        }
        return Record(kStretchDiBits, body.Bytes());
    }

    // Adds text of this em height whose top left corner is given.
    MadeMetafile& Text(int32_t left, int32_t top, int32_t emPx, std::string_view family,
                       std::string_view text) {
        constexpr uint32_t kCreateFont = 82, kSelectObject = 37, kTextOut = 84, kTextAt = 76;
        ByteMaker font, name, drawn;
        name.Wide(family);
        font.U32(1).U32(Bits(-emPx)).Zeros(12).U32(400).Zeros(8).Text(name.Bytes());
        font.Zeros(4 + 320 - font.Size());
        Record(kCreateFont, font.Bytes());
        Record(kSelectObject, ByteMaker().U32(1).Bytes());
        drawn.Zeros(16).U32(2).U32(0x3F800000).U32(0x3F800000).U32(Bits(left)).U32(Bits(top));
        const size_t distancesAt = (kTextAt + text.size() * 2 + 3) / 4 * 4;
        drawn.U32(text.size()).U32(kTextAt).U32(0).Zeros(16).U32(distancesAt);
        for (const char letter : text) drawn.U16(static_cast<uint8_t>(letter));
        drawn.FillUpTo(4);
        for (size_t i = 0; i < text.size(); ++i) drawn.U32(Bits(emPx));
        return Record(kTextOut, drawn.Bytes());
    }

    // Adds a comment that begins with these bytes.
    MadeMetafile& Comment(const std::string& data) {
        return Record(70, ByteMaker().U32(data.size()).Text(data).Bytes());
    }

    // Returns the offset that a record added now gets in the file.
    size_t NextAt() const { return kHeader + records_.size(); }

    std::string File() const {
        ByteMaker end;
        end.U32(14).U32(20).U32(0).U32(16).U32(20);
        ByteMaker header;
        header.U32(1).U32(kHeader).Zeros(16);
        header.U32(Bits(frame_.left)).U32(Bits(frame_.top)).U32(Bits(frame_.right)).U32(Bits(frame_.bottom));
        header.Text(" EMF").U32(0x10000).U32(kHeader + records_.size() + end.Size()).U32(count_ + 2);
        header.U16(2).U16(0).U32(0).U32(0).U32(0);
        header.U32(Bits(device_.width)).U32(Bits(device_.height));
        header.U32(Bits(device_.widthMm)).U32(Bits(device_.heightMm)).Zeros(12);
        header.U32(Bits(device_.widthMm * 1000)).U32(Bits(device_.heightMm * 1000));
        return header.Bytes() + records_ + end.Bytes();
    }

  private:
    static constexpr size_t kHeader = 108;
    static uint32_t Bits(int32_t number) { return static_cast<uint32_t>(number); }

    Frame frame_;
    DeviceSize device_;
    std::string records_;
    uint32_t count_ = 0;
};

// A spool file.
class MadeSpoolFile {
  public:
    MadeSpoolFile(std::string_view document, std::string_view port) {
        ByteMaker names;
        names.Wide(document).FillUpTo(4);
        const size_t portAt = 16 + names.Size();
        names.Wide(port).FillUpTo(4);
        bytes_.U32(0x10000).U32(16 + names.Size()).U32(16).U32(portAt).Text(names.Bytes());
    }

    // Adds a record and returns its offset.
    size_t Record(uint32_t id, const std::string& data) {
        const size_t offset = bytes_.Size();
        bytes_.U32(id).U32(data.size()).Text(data).FillUpTo(4);
        return offset;
    }
    size_t DeviceMode(const std::string& mode) { return Record(3, mode); }

    // Adds a record that points back to another.
    void PointBack(uint32_t id, size_t target) {
        Record(id, ByteMaker().U64(bytes_.Size() - target).Bytes());
    }
    // Adds a page: its metafile, and the record that prints it.
    size_t Page(const std::string& metafile) {
        const size_t offset = Record(12, metafile);
        PointBack(13, offset);
        return offset;
    }

    size_t Size() const { return bytes_.Size(); }
    const std::string& File() const { return bytes_.Bytes(); }

  private:
    ByteMaker bytes_;
};

// Returns a font record of a spool file, as it is embedded in a comment of a metafile.
inline std::string FontComment(uint32_t id, const std::string& data) {
    return ByteMaker().U32(0).Text("FNOT").U32(id).U32(data.size()).Text(data).FillUpTo(4).Bytes();
}

// Returns the data of a font record that holds one TrueType file.
inline std::string FontData(const std::string& file) {
    return ByteMaker().U32(0).U32(1).U32(file.size()).U32(0).Text(file).FillUpTo(4).Bytes();
}

}  // namespace orvex::tools
