// Building blocks of corrupted device modes: their fields, values for them, and records that end anywhere.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <set>
#include <span>
#include <vector>

#include "driver/config/device_mode.h"

namespace orvex {

struct RecordField {
    size_t offset;
    size_t size;  // 1, 2 or 4
};

#define PUBLIC(field) \
    { offsetof(DEVMODEW, field), sizeof(DEVMODEW::field) }
#define PRIVATE(field) \
    { offsetof(DeviceMode, priv) + offsetof(PrivateDevMode, field), sizeof(PrivateDevMode::field) }

// Fields in which a valid value arrives in the instance.
// clang-format off
inline constexpr RecordField kTakenFields[] = {
    PUBLIC(dmOrientation), PUBLIC(dmPaperSize), PUBLIC(dmPaperLength), PUBLIC(dmPaperWidth),
    PUBLIC(dmCopies), PUBLIC(dmDefaultSource), PUBLIC(dmPrintQuality), PUBLIC(dmColor), PUBLIC(dmTTOption),
    PUBLIC(dmCollate), PUBLIC(dmNup), PUBLIC(dmICMMethod), PUBLIC(dmICMIntent), PUBLIC(dmMediaType),
    PUBLIC(dmDitherType), PRIVATE(colorAdjust), PRIVATE(printSetting), PRIVATE(rotate180),
    PRIVATE(mirrorImage), PRIVATE(jobCapture), PRIVATE(noPrint), PRIVATE(stitched),
    PRIVATE(usePrivateCopies), PRIVATE(copies), PRIVATE(chunksize), PRIVATE(chunkActive),
    PRIVATE(alignment), PRIVATE(feedSide), PRIVATE(overspray), PRIVATE(kws), PRIVATE(kws_fullwidth),
    PRIVATE(purgeBar), PRIVATE(purgeDots), PRIVATE(purgeGap), PRIVATE(purgeFreq), PRIVATE(dmPaperSize),
    PRIVATE(units), PRIVATE(phHOffset), PRIVATE(phVOffset), PRIVATE(colorMode), PRIVATE(adj_brightness),
    PRIVATE(adj_colortone), PRIVATE(adj_saturation), PRIVATE(adj_cyan), PRIVATE(adj_magenta),
    PRIVATE(adj_yellow), PRIVATE(adj_black)};
// clang-format on

// Fields that do not arrive: the instance has the printer's own value, or one that follows from other fields.
inline constexpr RecordField kOwnFields[] = {
    PUBLIC(dmSpecVersion),  PUBLIC(dmDriverVersion),    PUBLIC(dmScale),      PUBLIC(dmDuplex),
    PUBLIC(dmYResolution),  PUBLIC(dmLogPixels),        PUBLIC(dmBitsPerPel), PUBLIC(dmPelsWidth),
    PUBLIC(dmPelsHeight),   PUBLIC(dmDisplayFrequency), PUBLIC(dmReserved1),  PUBLIC(dmReserved2),
    PUBLIC(dmPanningWidth), PUBLIC(dmPanningHeight),    PRIVATE(signature)};

inline constexpr RecordField kVersion = PUBLIC(dmSpecVersion), kSize = PUBLIC(dmSize),
                             kExtra = PUBLIC(dmDriverExtra), kFlags = PUBLIC(dmFields),
                             kPaper = PUBLIC(dmPaperSize), kSignature = PRIVATE(signature),
                             kLabel = PRIVATE(dmPaperSize), kProfile = PRIVATE(colorProfile);

inline const std::vector<RecordField>& AllFields() {
    static const std::vector<RecordField> fields = [] {
        std::vector<RecordField> all(std::begin(kTakenFields), std::end(kTakenFields));
        all.insert(all.end(), std::begin(kOwnFields), std::end(kOwnFields));
        all.push_back(kFlags);
        return all;
    }();
    return fields;
}

// Returns the ends of every range and of every integer, and the versions of public layouts, each with its
// neighbors.
inline std::vector<int64_t> BoundaryValues() {
    std::set<int64_t> values;
    for (const int64_t edge :
         {0,   1,   2,   3,    5,    10,   15,    20,  30,  50,    100,   250,   254,  256,
          258, 300, 600, 1000, 2971, 9018, 10000, 127, 255, 32767, 65535, 0x320, 0x401}) {
        for (const int64_t value : {edge - 1, edge, edge + 1}) {
            values.insert(value);
            values.insert(-value);
        }
    }
    for (const int64_t edge :
         {int64_t{INT32_MAX}, int64_t{INT32_MIN}, int64_t{UINT32_MAX}, int64_t{0x18284000}}) {
        values.insert({edge - 1, edge, edge + 1});
    }
    return {values.begin(), values.end()};
}

inline const std::vector<int64_t>& Values() {
    static const std::vector<int64_t> values = BoundaryValues();
    return values;
}

using Record = std::vector<uint8_t>;

inline void Put(Record& record, RecordField field, int64_t value) {
    for (size_t i = 0; i < field.size && field.offset + i < record.size(); ++i) {
        record[field.offset + i] = static_cast<uint8_t>(value >> 8 * i);
    }
}

inline int64_t Get(std::span<const uint8_t> record, RecordField field) {
    uint64_t value = 0;
    for (size_t i = 0; i < field.size; ++i) value |= uint64_t{record[field.offset + i]} << 8 * i;
    return static_cast<int64_t>(value);
}

inline std::span<const uint8_t> Bytes(const DeviceMode& mode) {
    return {reinterpret_cast<const uint8_t*>(&mode), sizeof mode};
}

// Returns a record that declares these sizes and ends there, with the private part where it then belongs.
inline Record Resized(const Record& whole, size_t publicSize, size_t extra) {
    constexpr size_t kHeader = 72;
    const bool hasPrivate = publicSize >= kHeader;
    Record record(hasPrivate ? publicSize + extra : kHeader, 0xCC);
    std::copy_n(whole.begin(), std::min({publicSize, sizeof(DEVMODEW), record.size()}), record.begin());
    if (hasPrivate) {
        const auto privateBegin = whole.begin() + sizeof(DEVMODEW);
        std::copy_n(privateBegin, std::min<size_t>(extra, whole.end() - privateBegin),
                    record.begin() + static_cast<ptrdiff_t>(publicSize));
    }
    Put(record, kSize, static_cast<int64_t>(publicSize));
    Put(record, kExtra, static_cast<int64_t>(extra));
    return record;
}

// Sizes of the public and the private part: around the sizes of real records and the ends of fields.
inline constexpr size_t kSizes[] = {0,   1,   65,  66,  67,  68,  70,   71,   72,   73,  76,
                                    79,  80,  81,  83,  84,  100, 187,  188,  189,  211, 212,
                                    213, 219, 220, 221, 300, 916, 4095, 4096, 65535};
inline constexpr size_t kExtras[] = {0,   1,   3,   4,   5,   32,  33,  95,   96,   97,
                                     136, 137, 138, 139, 144, 159, 160, 161,  162,  479,
                                     679, 680, 694, 695, 696, 697, 699, 1000, 4096, 65535};

}  // namespace orvex
