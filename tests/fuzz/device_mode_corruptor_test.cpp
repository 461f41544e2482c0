// Corrupted device modes through DrvEnablePDEV: every boundary value in every field, sizes that are wrong in
// both directions, texts without an end, records that end where the memory ends. Whatever comes in, the
// instance's own device mode is valid in every field.

#include <gtest/gtest.h>
#include <algorithm>

#include <cstring>
#include <optional>
#include <random>
#include <set>
#include <vector>

#include "driver/device_instance.h"
#include "fuzz/device_mode_rules.h"
#include "host/driver_session.h"
#include "tests/support/scratch_folder.h"

namespace {

#ifdef _WIN32
constexpr int kRandomRecords = 4000;
constexpr size_t kFieldStep = 3;  // of the fields' values, every third one
#else
constexpr int kRandomRecords = 96000;
constexpr size_t kFieldStep = 1;
#endif

struct Field {
    size_t offset;
    size_t size;  // 1, 2 or 4
};

#define PUBLIC(field) \
    { offsetof(DEVMODEW, field), sizeof(DEVMODEW::field) }
#define PRIVATE(field) \
    { offsetof(DeviceMode, priv) + offsetof(PrivateDevMode, field), sizeof(PrivateDevMode::field) }

constexpr Field kFields[] = {
    PUBLIC(dmSpecVersion),
    PUBLIC(dmDriverVersion),
    PUBLIC(dmFields),
    PUBLIC(dmOrientation),
    PUBLIC(dmPaperSize),
    PUBLIC(dmPaperLength),
    PUBLIC(dmPaperWidth),
    PUBLIC(dmScale),
    PUBLIC(dmCopies),
    PUBLIC(dmDefaultSource),
    PUBLIC(dmPrintQuality),
    PUBLIC(dmColor),
    PUBLIC(dmDuplex),
    PUBLIC(dmYResolution),
    PUBLIC(dmTTOption),
    PUBLIC(dmCollate),
    PUBLIC(dmLogPixels),
    PUBLIC(dmBitsPerPel),
    PUBLIC(dmPelsWidth),
    PUBLIC(dmPelsHeight),
    PUBLIC(dmNup),
    PUBLIC(dmDisplayFrequency),
    PUBLIC(dmICMMethod),
    PUBLIC(dmICMIntent),
    PUBLIC(dmMediaType),
    PUBLIC(dmDitherType),
    PUBLIC(dmReserved1),
    PUBLIC(dmReserved2),
    PUBLIC(dmPanningWidth),
    PUBLIC(dmPanningHeight),
    PRIVATE(signature),
    PRIVATE(colorAdjust),
    PRIVATE(printSetting),
    PRIVATE(rotate180),
    PRIVATE(mirrorImage),
    PRIVATE(jobCapture),
    PRIVATE(noPrint),
    PRIVATE(stitched),
    PRIVATE(usePrivateCopies),
    PRIVATE(copies),
    PRIVATE(chunksize),
    PRIVATE(chunkActive),
    PRIVATE(alignment),
    PRIVATE(feedSide),
    PRIVATE(overspray),
    PRIVATE(kws),
    PRIVATE(kws_fullwidth),
    PRIVATE(purgeBar),
    PRIVATE(purgeDots),
    PRIVATE(purgeGap),
    PRIVATE(purgeFreq),
    PRIVATE(dmPaperSize),
    PRIVATE(units),
    PRIVATE(phHOffset),
    PRIVATE(phVOffset),
    PRIVATE(colorMode),
    PRIVATE(adj_brightness),
    PRIVATE(adj_colortone),
    PRIVATE(adj_saturation),
    PRIVATE(adj_cyan),
    PRIVATE(adj_magenta),
    PRIVATE(adj_yellow),
    PRIVATE(adj_black),
};

// The ends of every range and of every integer, each with its neighbours.
std::vector<int64_t> BoundaryValues() {
    std::set<int64_t> values;
    for (const int64_t edge : {0,   1,   2,   3,   5,    10,   15,   20,    30,  50,  100,   250,  254,
                               256, 258, 300, 600, 1000, 2971, 9018, 10000, 127, 255, 32767, 65535}) {
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

const std::vector<int64_t>& Values() {
    static const std::vector<int64_t> values = BoundaryValues();
    return values;
}

using Record = std::vector<uint8_t>;

void Put(Record& record, Field field, int64_t value) {
    for (size_t i = 0; i < field.size && field.offset + i < record.size(); ++i) {
        record[field.offset + i] = static_cast<uint8_t>(value >> 8 * i);
    }
}

constexpr Field kSize = PUBLIC(dmSize), kExtra = PUBLIC(dmDriverExtra), kFlags = PUBLIC(dmFields);

// A record that declares these sizes and ends there, with the private part where it then belongs. Natively
// the private size is rounded up, so that a record that ends where memory ends begins at an aligned address.
Record Resized(const Record& whole, size_t publicSize, size_t extra) {
    constexpr size_t kHeader = 72;
#ifndef _WIN32
    while ((publicSize + extra) % alignof(DEVMODEW) != 0) extra = extra < 65535 ? extra + 1 : extra - 3;
#endif
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

class DeviceModeCorruptor : public testing::Test {
  protected:
    DeviceModeCorruptor() {
        SessionSetup setup;
        setup.installation = installation_.Path();
        setup.engine = PrintEngine();
        session_.emplace(setup);
        AddLabel("258", "4", 1);
        AddLabel("300", "100.5", 0);
        DeviceMode mode = DefaultDeviceMode();
        mode.pub.dmFields = 0xFFFFFFFF;
        plain_.resize(sizeof mode);
        memcpy(plain_.data(), &mode, sizeof mode);
        const std::unique_ptr<Device> device = session_->EnablePdev({});
        defaults_ = reinterpret_cast<const PDEV*>(device->Instance())->devmode;
    }

    // Hands the record in, in memory that ends where it ends.
    void Submit(const Record& record) {
        ++submitted_;
        const std::unique_ptr<Device> device = session_->EnablePdev(record);
        ASSERT_NE(device->Instance(), nullptr);
        const auto* pdev = reinterpret_cast<const PDEV*>(device->Instance());
        // A record of no known version is refused: the instance is then as without one.
        const bool refused = memcmp(&pdev->devmode, &defaults_, sizeof defaults_) == 0;
        const char* broken = refused ? nullptr : BrokenRule(pdev->devmode);
        ASSERT_EQ(broken, nullptr) << broken;
        ASSERT_TRUE(device->Intact());
        const bool portrait = pdev->devmode.pub.dmOrientation == DMORIENT_PORTRAIT;
        const auto width = static_cast<uint32_t>(pdev->devmode.pub.dmPaperWidth);
        const auto length = static_cast<uint32_t>(pdev->devmode.pub.dmPaperLength);
        ASSERT_EQ(pdev->dwPageWidth, portrait ? width : length);
        ASSERT_EQ(pdev->dwPageLength, portrait ? length : width);
    }

    void TearDown() override {
        EXPECT_EQ(session_->PrintSpooler().OpenHandles(), 1u);
        EXPECT_TRUE(session_->PrintSpooler().Misuses().empty());
        EXPECT_EQ(session_->Graphics().LivePalettes(), 0u);
        RecordProperty("records", submitted_);
    }

    Record plain_;
    DeviceMode defaults_;  // of an instance that was given no device mode
    int submitted_ = 0;

  private:
    void AddLabel(const std::string& number, const char* size, uint32_t units) {
        PrinterData& data = session_->Printer().data;
        const std::string key = "Label Sizes\\" + number;
        data.SetNumber(key, "version", 1);
        data.SetText(key, "name", "Label " + number);
        data.SetText(key, "width", size);
        data.SetText(key, "length", size);
        data.SetNumber(key, "units", units);
    }

    ScratchFolder installation_;
    std::optional<DriverSession> session_;
};

}  // namespace

TEST_F(DeviceModeCorruptor, PutsEveryBoundaryValueIntoEveryField) {
    size_t number = 0;
    for (const Field& field : kFields) {
        for (const int64_t value : Values()) {
            if (number++ % kFieldStep != 0) continue;
            Record record = plain_;
            Put(record, field, value);
            ASSERT_NO_FATAL_FAILURE(Submit(record)) << "offset " << field.offset << " value " << value;
        }
    }
}

TEST_F(DeviceModeCorruptor, MakesBothSizesWrongInBothDirections) {
    constexpr size_t kSizes[] = {0,   1,   68,  71,  72,  73,  76,  80,  100,  187,  188,  189,
                                 211, 212, 213, 219, 220, 221, 300, 916, 4095, 4096, 65535};
    constexpr size_t kExtras[] = {0,   1,   3,   4,   32,  95,   137,  160,  161,
                                  679, 680, 695, 696, 697, 1000, 4096, 65535};
    for (const size_t size : kSizes) {
        for (const size_t extra : kExtras) {
            ASSERT_NO_FATAL_FAILURE(Submit(Resized(plain_, size, extra))) << size << " + " << extra;
        }
    }
}

TEST_F(DeviceModeCorruptor, EndsTheRecordAtEveryByte) {
    for (size_t size = 72; size <= sizeof(DEVMODEW); ++size) {
        ASSERT_NO_FATAL_FAILURE(Submit(Resized(plain_, size, 0))) << size;
    }
    for (size_t extra = 0; extra <= sizeof(PrivateDevMode); ++extra) {
        ASSERT_NO_FATAL_FAILURE(Submit(Resized(plain_, sizeof(DEVMODEW), extra))) << extra;
    }
}

TEST_F(DeviceModeCorruptor, LeavesEveryTextWithoutAnEnd) {
    constexpr Field kTexts[] = {PUBLIC(dmDeviceName),  PUBLIC(dmFormName),     PRIVATE(labelName),
                                PRIVATE(width_string), PRIVATE(length_string), PRIVATE(colorProfile)};
    for (const Field& text : kTexts) {
        for (const int filling : {0x41, 0x39, 0x25, 0x5C, 0xFF, 1}) {
            Record record = plain_;
            std::fill_n(record.begin() + static_cast<ptrdiff_t>(text.offset), text.size, filling);
            for (const int16_t paper : {256, 257, 258, 300, 301, 32767}) {
                Put(record, PUBLIC(dmPaperSize), paper);
                ASSERT_NO_FATAL_FAILURE(Submit(record)) << "offset " << text.offset << " filling " << filling;
            }
        }
    }
}

TEST_F(DeviceModeCorruptor, MixesBoundaryValuesSizesAndNoiseAtRandom) {
    std::mt19937 random(2026);
    const auto below = [&random](size_t limit) { return random() % limit; };
    for (int i = 0; i < kRandomRecords; ++i) {
        Record record = plain_;
        if (below(2) == 0) Put(record, kFlags, static_cast<int64_t>(random()));
        for (size_t fields = below(12); fields-- > 0;) {
            Put(record, kFields[below(std::size(kFields))], Values()[below(Values().size())]);
        }
        for (size_t bytes = below(8) == 0 ? 40 : 0; bytes-- > 0;) {
            record[below(record.size())] = static_cast<uint8_t>(random());
        }
        if (below(4) == 0)
            record = Resized(record, below(300), below(900));
        else
            Put(record, kSize, sizeof(DEVMODEW)), Put(record, kExtra, sizeof(PrivateDevMode));
        ASSERT_NO_FATAL_FAILURE(Submit(record)) << "record " << i;
    }
}
