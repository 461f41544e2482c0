// A page sent through the driver: painted, printed, and its rows compared with the ink of its pixels.
#pragma once

#include "driver/device_instance.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

using Row = std::vector<uint32_t>;
using Rows = std::vector<Row>;

class SendPageTest : public DriverTest {
  protected:
    ~SendPageTest() override;

    static constexpr int32_t kW = kWidthPx, kH = kHeightPx;  // the fixture's page in portrait
    static DeviceMode Landscape();

    // Paints random colors of the profile's grid over the page.
    static void Paint(SURFOBJ& surface);

    // Sends one page of a new job and returns the rows that the print engine got.
    Rows Print(const DeviceMode& mode, bool painted = true);
    // Sends a white page of `width` x `height` pixels, whatever the size in the device mode.
    Rows PrintSize(const DeviceMode& mode, int32_t width, int32_t height);

    // Returns the device of the last page.
    tools::Device& Current() { return *device_; }
    uint32_t PageCount() const { return reinterpret_cast<PDEV*>(device_->Instance())->pageCount; }
    // Returns the ink of a pixel of that page.
    uint32_t Ink(int32_t x, int32_t y) const;

    // Verifies that pixel i of every row is `at(row, i)`, apart from the first-row marker.
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
    std::unique_ptr<tools::Device> device_;
    bool at600Dpi_ = false;
};

}  // namespace orvex
