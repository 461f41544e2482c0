// Corrupted device modes through DrvEnablePDEV: every boundary value in every field, every flag of the public
// fields, sizes that are wrong in both directions, unterminated texts, records that end where the memory
// ends. A record is taken or refused as its size and version say. The instance's device mode equals the plain
// definition's, valid in every field if the record was taken, and the caller's record changes only where it
// gets the printer's profile and label.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <set>
#include <vector>

#include "driver/device_instance.h"
#include "tests/kit/scratch_folder.h"
#include "tests/plain/device_mode.h"
#include "tests/plain/device_mode_rules.h"
#include "tests/system/corrupted_record.h"
#include "tools/host/driver_session.h"

namespace orvex {

using namespace tools;
namespace {

#ifdef _WIN32
constexpr int kRandomRecords = 3000;
#else
constexpr int kRandomRecords = 24000;
#endif

constexpr plain::ListedLabel kLabels[] = {{258, "Label 258", 1016, 1016}, {300, "Label 300", 1005, 1005}};

class DeviceModeCorruptor : public testing::Test {
  protected:
    DeviceModeCorruptor() {
        SessionSetup setup;
        setup.installation = installation_.Path();
        setup.engine = PrintEngine();
        session_.emplace(setup);
        AddLabel("258", "4", 1);
        AddLabel("300", "100.5", 0);
        DeviceMode mode = plain::ValidDeviceMode();
        mode.pub.dmFields = 0xFFFFFFFF;
        plain_.assign(Bytes(mode).begin(), Bytes(mode).end());
        AskForDefaults();
    }

    void AskForDefaults() {
        const std::unique_ptr<Device> device = session_->EnablePdev({});
        defaults_ = reinterpret_cast<const PDEV*>(device->Instance())->devmode;
    }

    // Enables a device with the record, in memory that ends with it, and compares the result with the plain
    // definition.
    void Submit(const Record& record) {
        const bool taken = plain::IsTaken(record);
        ++(taken ? taken_ : refused_);
        const std::unique_ptr<Device> device = session_->EnablePdev(record);
        ASSERT_NE(device->Instance(), nullptr);
        const auto* pdev = reinterpret_cast<const PDEV*>(device->Instance());
        instance_ = pdev->devmode;
        // A refused record leaves the instance as if there were none.
        const DeviceMode expected = plain::Merged(defaults_, record, kLabels);
        ASSERT_EQ(plain::FirstDifference(instance_, expected), sizeof instance_);
        const char* broken = taken ? plain::BrokenRule(instance_) : nullptr;
        ASSERT_EQ(broken, nullptr) << broken;

        ASSERT_TRUE(device->Intact());
        const Record given = plain::GivenBack(defaults_, record);
        ASSERT_EQ(memcmp(device->DeviceMode(), given.data(), given.size()), 0) << "in the caller's record";

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
        RecordProperty("taken", taken_);
        RecordProperty("refused", refused_);
    }

    ScratchFolder installation_;
    Record plain_;
    DeviceMode defaults_;  // of an instance that was given no device mode
    DeviceMode instance_;  // of the last record
    int taken_ = 0;
    int refused_ = 0;

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

    std::optional<DriverSession> session_;
};

// A printer with a chosen label and profile, which records without them get.
class DeviceModeCorruptorWithChoices : public DeviceModeCorruptor {
  protected:
    DeviceModeCorruptorWithChoices() {
        installation_.Write("settings.inf", "[UI]\r\nDefault_Media=Label 300\r\n");
        installation_.Write("profiles/paper.zvp", "");
        AskForDefaults();
    }
};

}  // namespace

TEST_F(DeviceModeCorruptor, PutsEveryBoundaryValueIntoEveryField) {
    const std::vector<RecordField>& fields = AllFields();
    for (size_t number = 0; number < fields.size(); ++number) {
        const RecordField field = fields[number];
        std::set<int64_t> arrived;
        for (const int64_t value : Values()) {
            Record record = plain_;
            Put(record, field, value);
            ASSERT_NO_FATAL_FAILURE(Submit(record)) << "offset " << field.offset << " value " << value;
            if (Get(Bytes(instance_), field) == Get(record, field)) arrived.insert(Get(record, field));
        }
        // One of two values is not the one that the instance has anyway.
        if (number < std::size(kTakenFields)) {
            EXPECT_GE(arrived.size(), 2u) << "offset " << field.offset;
        } else if (field.offset != kFlags.offset) {
            EXPECT_LE(arrived.size(), 1u) << "offset " << field.offset;
        }
    }
    EXPECT_EQ(refused_, 0) << "the size is a public layout's, whatever the version";
}

TEST_F(DeviceModeCorruptor, SetsAndClearsEveryFlagOfThePublicFields) {
    struct Case {
        DWORD flags;
        RecordField field;
        int64_t value;  // a valid value that no record has by itself
    };
    const Case cases[] = {
        {DM_ORIENTATION, PUBLIC(dmOrientation), 2},
        {DM_PAPERSIZE, kPaper, 301},
        {DM_PAPERLENGTH, PUBLIC(dmPaperLength), 1234},
        {DM_PAPERWIDTH, PUBLIC(dmPaperWidth), 2345},
        {0, PUBLIC(dmScale), 50},
        {DM_COPIES, PUBLIC(dmCopies), 9},
        {DM_DEFAULTSOURCE, PUBLIC(dmDefaultSource), 7},
        {DM_PRINTQUALITY, PUBLIC(dmPrintQuality), 600},
        {DM_COLOR, PUBLIC(dmColor), 1},
        {0, PUBLIC(dmDuplex), 2},
        {0, PUBLIC(dmYResolution), 150},
        {DM_TTOPTION, PUBLIC(dmTTOption), 3},
        {DM_COLLATE, PUBLIC(dmCollate), 1},
        {DM_FORMNAME, {offsetof(DEVMODEW, dmFormName), 4}, 0x410042},
        {DM_NUP, PUBLIC(dmNup), 2},
        {DM_ICMMETHOD, PUBLIC(dmICMMethod), 2},
        {DM_ICMINTENT, PUBLIC(dmICMIntent), 3},
        {DM_MEDIATYPE, PUBLIC(dmMediaType), 4},
        {DM_DITHERTYPE, PUBLIC(dmDitherType), 5},
        {0, PUBLIC(dmLogPixels), 6},
        {0, PUBLIC(dmBitsPerPel), 7},
        {0, PUBLIC(dmPelsWidth), 8},
        {0, PUBLIC(dmPelsHeight), 9},
        {0, PUBLIC(dmDisplayFrequency), 10},
        {0, PUBLIC(dmPanningWidth), 11},
        {0, PUBLIC(dmPanningHeight), 12},
    };
    Record filled = plain_;
    for (const Case& each : cases) Put(filled, each.field, each.value);
    for (int bit = 0; bit < 32; ++bit) {
        for (const DWORD flags : {DWORD{1} << bit, ~(DWORD{1} << bit)}) {
            Record record = filled;
            Put(record, kFlags, flags);
            ASSERT_NO_FATAL_FAILURE(Submit(record)) << "flags " << flags;
            for (const Case& each : cases) {
                // A form without a name of its own is named after the custom size.
                if (each.field.offset == offsetof(DEVMODEW, dmFormName) && (flags & DM_FORMNAME) == 0)
                    continue;
                const bool arrived = Get(Bytes(instance_), each.field) == each.value;
                EXPECT_EQ(arrived, (flags & each.flags) != 0)
                    << "flags " << flags << " offset " << each.field.offset;
            }
        }
    }
}

TEST_F(DeviceModeCorruptor, TakesARecordOfAnotherSizeThatStatesAVersion) {
    for (const size_t size : kSizes) {
        for (const int version : {0, 1, 0x100, 0x31F, 0x320, 0x321, 0x400, 0x401, 0x402, 0xFFFF}) {
            Record record = Resized(plain_, size, sizeof(PrivateDevMode));
            if (size > kVersion.offset) Put(record, kVersion, version);
            ASSERT_NO_FATAL_FAILURE(Submit(record)) << "size " << size << " version " << version;
        }
    }
    EXPECT_GT(taken_, 200);
    EXPECT_GT(refused_, 40);
}

TEST_F(DeviceModeCorruptor, MakesBothSizesWrongInBothDirections) {
    for (const size_t size : kSizes) {
        for (const size_t extra : kExtras) {
            ASSERT_NO_FATAL_FAILURE(Submit(Resized(plain_, size, extra))) << size << " + " << extra;
        }
    }
    EXPECT_GT(taken_, 800);
    EXPECT_GT(refused_, 50);
}

TEST_F(DeviceModeCorruptor, EndsTheRecordAtEveryByte) {
    for (size_t size = 72; size <= sizeof(DEVMODEW); ++size) {
        ASSERT_NO_FATAL_FAILURE(Submit(Resized(plain_, size, 0))) << size;
    }
    for (size_t extra = 0; extra <= sizeof(PrivateDevMode); ++extra) {
        ASSERT_NO_FATAL_FAILURE(Submit(Resized(plain_, sizeof(DEVMODEW), extra))) << extra;
    }
    EXPECT_EQ(refused_, 0);
}

TEST_F(DeviceModeCorruptor, LeavesEveryTextWithoutAnEnd) {
    constexpr RecordField kTexts[] = {PUBLIC(dmDeviceName),  PUBLIC(dmFormName),     PRIVATE(labelName),
                                      PRIVATE(width_string), PRIVATE(length_string), PRIVATE(colorProfile)};
    for (const RecordField& text : kTexts) {
        for (const int filling : {0x41, 0x39, 0x25, 0x5C, 0xFF, 1}) {
            Record record = plain_;
            std::fill_n(record.begin() + static_cast<ptrdiff_t>(text.offset), text.size, filling);
            for (const int16_t paper : {256, 257, 258, 300, 301, 32767}) {
                Put(record, kPaper, paper);
                ASSERT_NO_FATAL_FAILURE(Submit(record)) << "offset " << text.offset << " filling " << filling;
            }
        }
    }
    EXPECT_EQ(refused_, 0);
}

TEST_F(DeviceModeCorruptorWithChoices, GivesARecordThePrintersProfileAndLabelAsFarAsItReaches) {
    ASSERT_EQ(defaults_.priv.dmPaperSize, 300);
    ASSERT_EQ(defaults_.priv.colorProfile[0], L'p');
    // The public part ends around the paper's number, length and width, and at valid places.
    for (const size_t size : {71, 72, 79, 81, 83, 84, 188, 213, 220, 221}) {
        for (const size_t extra : kExtras) {
            ASSERT_NO_FATAL_FAILURE(Submit(Resized(plain_, size, extra))) << size << " + " << extra;
        }
    }
}

TEST_F(DeviceModeCorruptorWithChoices, LeavesARecordItsOwnProfileAndLabel) {
    for (const int64_t label : {-32768, -1, 0, 257, 258, 259, 300, 32767}) {
        for (const int64_t paper : {1, 256, 257, 258, 300, 301}) {
            for (const int64_t signature : {0x18284000, 0}) {
                for (const int64_t profile : {0, 0x41}) {
                    Record record = plain_;
                    Put(record, kLabel, label);
                    Put(record, kPaper, paper);
                    Put(record, kSignature, signature);
                    Put(record, {kProfile.offset, 2}, profile);
                    ASSERT_NO_FATAL_FAILURE(Submit(record)) << label << " " << paper << " " << profile;
                }
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
            Put(record, AllFields()[below(AllFields().size())], Values()[below(Values().size())]);
        }
        for (size_t bytes = below(8) == 0 ? 40 : 0; bytes-- > 0;) {
            record[below(record.size())] = static_cast<uint8_t>(random());
        }
        if (below(4) == 0) {
            if (below(2) == 0) Put(record, kVersion, 0);
            record = Resized(record, below(300), below(900));
        } else {
            Put(record, kSize, sizeof(DEVMODEW));
            Put(record, kExtra, sizeof(PrivateDevMode));
        }
        ASSERT_NO_FATAL_FAILURE(Submit(record)) << "record " << i;
    }
    EXPECT_GT(taken_, kRandomRecords * 3 / 4);
    EXPECT_GT(refused_, kRandomRecords / 10);
}

}  // namespace orvex
