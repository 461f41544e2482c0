// A page sent through the driver: painted, printed, and its rows compared with the ink of its pixels.
#pragma once

#include "driver/device_instance.h"
#include "tests/driver/driver_fixture.h"

namespace orvex {

using namespace tools;
using Row = std::vector<uint32_t>;
using Rows = std::vector<Row>;

class SendPageTest : public DriverTest {
  protected:
    ~SendPageTest() override;

    static constexpr int32_t kW = kWidthPx, kH = kHeightPx;  // the page of the fixture, upright
    static DeviceMode Landscape();

    // Paints random colours of the profile's grid over the page.
    static void Paint(SURFOBJ& surface);

    // Sends one page of a new job; the rows that the engine got.
    Rows Print(const DeviceMode& mode, bool painted = true);
    // The same for a white page of `width` x `height` pixels, whatever size the device mode says.
    Rows PrintSize(const DeviceMode& mode, int32_t width, int32_t height);

    // The printed page.
    Device& Current() { return *device_; }
    uint32_t PageCount() const { return reinterpret_cast<PDEV*>(device_->Instance())->pageCount; }
    // The ink of one of its pixels.
    uint32_t Ink(int32_t x, int32_t y) const;

    // Checks every row against `at(row, i)`, the ink of pixel i of image row `row`, the first-row marker
    // applied.
    template <typename InkAt>
    void ExpectRows(const Rows& rows, int32_t count, int32_t width, InkAt at) {
        ASSERT_EQ(rows.size(), static_cast<size_t>(count));
        for (int32_t row = 0; row < count; ++row) {
            ASSERT_EQ(rows[row].size(), static_cast<size_t>(width));
            for (int32_t i = 0; i < width; ++i) {
                uint32_t ink = at(row, i);
                if (row == 0 && i == 0 && ink == 0) ink = 2;
                ASSERT_EQ(rows[row][i], ink) << "row " << row << " pixel " << i;
            }
        }
    }

  private:
    std::unique_ptr<Device> device_;
    bool at600Dpi_ = false;
};

}  // namespace orvex
