// The size of a page whose label the caller chose by its number in the printer's list.

#include "driver/device_instance.h"
#include "tests/driver/config/printer_test.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;

namespace {

class DeviceLabel : public DriverTest {
  protected:
    void AddLabel(int number, const char* name, const char* width, const char* length, DWORD units) {
        orvex::AddLabel(Printer().data, number, name, width, length, units);
    }

    // Enables a device for label `number`, whose private part describes label `described`.
    void ExpectPage(int16_t number, uint32_t width, uint32_t length, int16_t described = kPaperDefault) {
        DeviceMode mode = Mode();
        mode.pub.dmPaperSize = number;
        mode.priv.dmPaperSize = described;
        const auto device = Enable(mode);
        EXPECT_EQ(InstanceOf(*device).dwPageWidth, width) << number;
        EXPECT_EQ(InstanceOf(*device).dwPageLength, length) << number;
    }
};

}  // namespace

TEST_F(DeviceLabel, KeepsItsSizeEvenWhereAFreeSizeWouldBeReplaced) {
    for (const int16_t number : {kPaperDefault, kPaperFirstLabel}) {
        AddLabel(number, "Tiny", "10", "20", kUnitsMillimeters);
        ExpectPage(number, 100, 200, 300);
    }
}

TEST_F(DeviceLabel, IsNotLookedUpWhenThePrivatePartDescribesIt) {
    AddLabel(258, "Changed since", "10", "20", kUnitsMillimeters);
    ExpectPage(258, 300, 400, 258);
}

TEST_F(DeviceLabel, IsNotLookedUpForAFreeSize) {
    AddLabel(kPaperCustom, "Not free", "10", "20", kUnitsMillimeters);
    ExpectPage(kPaperCustom, 300, 400);
}

TEST_F(DeviceLabel, IsNotUsedUnlessItCanBeReadWhole) {
    AddLabel(258, "Whole", "80", "90", kUnitsMillimeters);
    PrinterData& data = Printer().data;
    data.SetNumber("Label Sizes\\259", "version", 1);
    data.SetText("Label Sizes\\259", "name", "Without a length");
    data.SetText("Label Sizes\\259", "width", "100");
    ExpectPage(259, 300, 400);
}

TEST_F(DeviceLabel, GivesThePageItsSizeWhateverItsUnits) {
    AddLabel(258, "Small", "4", "6.5", kUnitsInches);
    AddLabel(259, "Metric", "80", "120.25", kUnitsMillimeters);
    AddLabel(260, "Tenths", "777", "888", 7);
    AddLabel(261, "Past 16 bits", "9000", "6653.6", kUnitsMillimeters);
    ExpectPage(258, 1016, 1651);
    ExpectPage(259, 800, 1203);
    ExpectPage(260, 777, 888);
    ExpectPage(261, 24464, 1000);
}

}  // namespace orvex
