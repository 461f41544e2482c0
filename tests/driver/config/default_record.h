// A printer's default record as it stands without any installation, written out by offset and value.
#pragma once

#include <cstring>
#include <string_view>
#include <vector>

#include "driver/config/device_mode.h"

namespace orvex {

class RecordBytes {
  public:
    void Put8(size_t offset, int value) { Put(offset, 1, value); }
    void Put16(size_t offset, int value) { Put(offset, 2, value); }
    void Put32(size_t offset, int64_t value) { Put(offset, 4, value); }
    void PutText(size_t offset, std::string_view text) { memcpy(&bytes_[offset], text.data(), text.size()); }
    void PutText(size_t offset, std::u16string_view text) {
        memcpy(&bytes_[offset], text.data(), text.size() * 2);
    }

    // The record that these bytes are.
    DeviceMode Record() const {
        DeviceMode record;
        memcpy(static_cast<void*>(&record), bytes_.data(), sizeof record);
        return record;
    }

  private:
    void Put(size_t offset, size_t size, int64_t value) {
        for (size_t i = 0; i < size; ++i) bytes_[offset + i] = static_cast<BYTE>(value >> 8 * i);
    }

    std::vector<BYTE> bytes_ = std::vector<BYTE>(916);
};

// Offsets of the private part count from 220.
inline RecordBytes DefaultRecordBytes() {
    RecordBytes bytes;
    bytes.Put16(64, 0x0401);             // dmSpecVersion
    bytes.Put16(66, 0x0401);             // dmDriverVersion
    bytes.Put16(68, 220);                // dmSize
    bytes.Put16(70, 696);                // dmDriverExtra
    bytes.Put32(72, 0x0001CF03);         // dmFields
    bytes.Put16(76, 1);                  // dmOrientation
    bytes.Put16(78, 257);                // dmPaperSize
    bytes.Put16(80, 2159);               // dmPaperLength
    bytes.Put16(82, 2794);               // dmPaperWidth
    bytes.Put16(86, 1);                  // dmCopies
    bytes.Put16(88, 15);                 // dmDefaultSource
    bytes.Put16(90, 300);                // dmPrintQuality
    bytes.Put16(92, 2);                  // dmColor
    bytes.Put16(94, 1);                  // dmDuplex
    bytes.Put16(96, 300);                // dmYResolution
    bytes.Put16(98, 1);                  // dmTTOption
    bytes.PutText(102, u"Custom");       // dmFormName
    bytes.Put32(220, 405291008);         // signature
    bytes.Put32(220 + 8, 1);             // printSetting
    bytes.PutText(220 + 32, "A4");       // labelName
    bytes.Put16(220 + 100, 1);           // copies
    bytes.Put16(220 + 102, 500);         // chunksize
    bytes.Put16(220 + 136, 257);         // dmPaperSize
    bytes.Put32(220 + 140, 1);           // units
    bytes.PutText(220 + 144, "8.500");   // width_string
    bytes.PutText(220 + 152, "11.000");  // length_string
    bytes.Put16(220 + 680, 20);          // phHOffset
    return bytes;
}

inline DeviceMode DefaultRecord() {
    return DefaultRecordBytes().Record();
}

inline bool SameRecord(const DeviceMode& a, const DeviceMode& b) {
    return memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace orvex
