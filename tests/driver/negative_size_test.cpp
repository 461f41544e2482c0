// Bitmaps of negative width or height, which no graphics engine makes. The page is refused before it reaches
// the print engine, so nothing is written outside a row without pixels, and later pages print.

#include <limits>
#include <span>

#include "tests/driver/send_page_fixture.h"

namespace orvex {

using namespace tools;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

struct Size {
    int32_t width, height;
};
constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
constexpr Size kNegativeSizes[] = {{-8, 8},   {8, -8},   {-8, -8},     {-1, 8},           {8, -1},
                                   {-500, 8}, {8, -500}, {-500, -500}, {kLowest, 8},      {8, kLowest},
                                   {-1, 0},   {0, -1},   {-1, -1},     {kLowest, kLowest}};

class NegativeSize : public SendPageTest {
  protected:
    // The engine only counts the rows, since it could not read one of negative width.
    NegativeSize() {
        engine.onRow = [this](std::span<const uint32_t>) { ++rowsTaken; };
    }

    void ExpectRefused(const Device& device, Size size) {
        const std::string name = std::to_string(size.width) + "x" + std::to_string(size.height);
        SCOPED_TRACE(name);
        const uint32_t pagesBefore = InstanceOf(device).pageCount;
        SURFOBJ surface = *device.Surface();
        surface.sizlBitmap = {size.width, size.height};
        EXPECT_TRUE(Session().Hooks().sendPage(&surface));
        EXPECT_EQ(InstanceOf(device).pageCount, pagesBefore + 1);
        EXPECT_THAT(engine.calls, IsEmpty());
        EXPECT_EQ(rowsTaken, 0);
        EXPECT_THAT(LeftOnHeap(), SizeIs(1)) << "more than the instance";
        const auto lines = LogLines();
        EXPECT_THAT(lines, Contains("[Error] Error: could not send a page of " + name + " pixels"));
        EXPECT_THAT(lines, Not(Contains(HasSubstr("thumb"))));
    }

    // Sends a first page of each size, then a page of the mode's own size, which must print.
    void ExpectAllRefused(const DeviceMode& mode) {
        const auto device = StartPage(mode);
        engine.calls.clear();
        rowsTaken = 0;
        LogLines();
        for (const Size size : kNegativeSizes) ExpectRefused(*device, size);
        ASSERT_TRUE(Session().StartPage(*device));
        ASSERT_TRUE(Session().SendPage(*device));
        EXPECT_GT(rowsTaken, 0);
        EXPECT_EQ(engine.calls.back(), "PageEnd");
        Session().EndDoc(*device);
    }

    int64_t rowsTaken = 0;
};

}  // namespace

TEST_F(NegativeSize, IsRefusedWithAndWithoutBarAndFullWidthInEveryOrientation) {
    for (int choice = 0; choice < 12; ++choice) {
        DeviceMode mode = choice & 1 ? Landscape() : Mode();
        mode.priv.kws = mode.priv.kws_fullwidth = choice & 2 ? 1 : 0;
        mode.priv.purgeBar = static_cast<int16_t>(choice >> 2);  // none, leading, trailing
        mode.priv.purgeDots = 10;
        SCOPED_TRACE(std::string(choice & 1 ? "landscape" : "portrait") + (choice & 2 ? ", full width" : "") +
                     ", purge bar " + std::to_string(mode.priv.purgeBar));
        ExpectAllRefused(mode);
    }
}

TEST_F(NegativeSize, HasNoThumbnail) {
    installation.Write("settings.inf", "[Driver]\r\nAdd_Thumb=1\r\n");
    ExpectAllRefused(Mode());
}

TEST_F(NegativeSize, IsNotTheSizeOfABitmapWithoutScanLines) {
    PrintSize(Mode(), 3, 0);
    EXPECT_EQ(rowsTaken, 3);  // without pixels
    EXPECT_EQ(engine.calls.back(), "PageEnd");
    Session().EndDoc(Current());
    rowsTaken = 0;
    PrintSize(Landscape(), 3, 0);
    EXPECT_EQ(rowsTaken, 0);
    EXPECT_EQ(engine.calls.back(), "PageEnd");
}

}  // namespace orvex
