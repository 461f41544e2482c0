#include "tools/orvexprint/test_page.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <vector>

#include "tests/tools/common/guarded_page.h"
#include "tools/orvexprint/barcode.h"

namespace orvex::tools::print {

namespace {

// Reads back bars: runs of modules, nine of which make a character.
std::string ReadCode39(const std::string& modules) {
    std::vector<size_t> runs;
    for (size_t at = 0; at < modules.size();) {
        const size_t end = std::min(modules.find_first_not_of(modules[at], at), modules.size());
        runs.push_back(end - at);
        at = end;
    }
    static const std::vector<std::pair<char, std::vector<size_t>>> kKnown = {
        {'*', {1, 3, 1, 1, 3, 1, 3, 1, 1}}, {'0', {1, 1, 1, 3, 3, 1, 3, 1, 1}},
        {'3', {3, 1, 3, 3, 1, 1, 1, 1, 1}}, {'9', {1, 1, 3, 3, 1, 1, 3, 1, 1}},
        {'A', {3, 1, 1, 1, 1, 3, 1, 1, 3}}, {'X', {1, 3, 1, 1, 3, 1, 1, 1, 3}},
        {'-', {1, 3, 1, 1, 1, 1, 3, 1, 3}}, {' ', {1, 3, 3, 1, 1, 1, 3, 1, 1}}};
    std::string text;
    for (size_t at = 0; at + 9 <= runs.size(); at += 10) {
        const std::vector<size_t> symbol(runs.begin() + static_cast<ptrdiff_t>(at),
                                         runs.begin() + static_cast<ptrdiff_t>(at) + 9);
        const auto known =
            std::find_if(kKnown.begin(), kKnown.end(), [&](const auto& k) { return k.second == symbol; });
        text += known == kKnown.end() ? '#' : known->first;
        if (at + 9 < runs.size() && runs[at + 9] != 1) text += '!';
    }
    return text;
}

}  // namespace

TEST(Barcode, ReadsBackAsItWasWritten) {
    EXPECT_EQ(ReadCode39(Code39("A0 X39")), "*A0 X39*");
    EXPECT_EQ(ReadCode39(Code39("ax")), "*AX*") << "small letters";
    EXPECT_EQ(ReadCode39(Code39("3$9")), "*3-9*") << "characters it lacks";
    EXPECT_EQ(ReadCode39(Code39("")), "**");
}

TEST(TestPage, MarksAllFourCorners) {
    GuardedPage page(1181, 1772);
    DrawTestPage(page.canvas, 300, {"heading", {{"name", "value"}}});
    for (const auto& [x, y] : {std::pair{0, 0}, {1180, 0}, {0, 1771}, {1180, 1771}}) {
        EXPECT_EQ(page.At(x, y), kBlack) << x << "," << y;
    }
    EXPECT_EQ(page.At(1120, 1771), kWhite) << "the marks are 5 mm long";
}

TEST(TestPage, HasMillimeterRulersOnBothAxes) {
    GuardedPage page(1181, 1772);
    DrawTestPage(page.canvas, 300, {"", {}});
    for (const int mm : {10, 37, 80}) {
        const int at = static_cast<int>(mm / 25.4 * 300 + 0.5);
        EXPECT_EQ(page.At(at, 5), kBlack) << mm;
        EXPECT_EQ(page.At(5, at), kBlack) << mm;
        EXPECT_EQ(page.At(at + 5, 5), kWhite) << mm;
        EXPECT_EQ(page.At(5, at + 5), kWhite) << mm;
    }
}

TEST(TestPage, HasAWedgeForEachInk) {
    GuardedPage page(1181, 1772);
    DrawTestPage(page.canvas, 300, {"", {}});
    const std::vector<uint32_t> pixels = page.All();
    const std::set<uint32_t> colors(pixels.begin(), pixels.end());
    for (const uint32_t color : {0x00FFFFu, 0xFF00FFu, 0xFFFF00u, 0x7FFFFFu + 0x010000u, 0x808080u}) {
        EXPECT_TRUE(colors.contains(color)) << std::hex << color;
    }
    EXPECT_EQ(colors.size(), 1 + 4 * 10u) << "white, and ten steps of each ink";
}

TEST(TestPage, PointsToTheTop) {
    GuardedPage page(1181, 1772);
    DrawTestPage(page.canvas, 300, {"", {}});
    // The arrow's head widens downwards from its tip, which is 10 mm from the left and 8 mm from the top.
    const int tipX = 118;
    const int tipY = 94;
    EXPECT_EQ(page.At(tipX, tipY + 1), kBlack);
    EXPECT_EQ(page.At(tipX - 15, tipY + 1), kWhite);
    EXPECT_EQ(page.At(tipX - 15, tipY + 40), kBlack);
    EXPECT_EQ(page.At(tipX + 15, tipY + 40), kBlack);
}

namespace {

// Returns whether the margin on the right, of 2 mm and below the ruler's numbers, is blank.
bool IsMarginBlank(GuardedPage& page, int dpi) {
    const auto pixels = [dpi](double mm) { return static_cast<int>(mm / 25.4 * dpi); };
    for (int y = pixels(6); y < page.canvas.Height() - pixels(5.2); ++y) {
        for (int x = page.canvas.Width() - pixels(1.9); x < page.canvas.Width(); ++x) {
            if (page.At(x, y) != kWhite) return false;
        }
    }
    return true;
}

// Returns the number of black pixels in a rectangle given in mm at 300 dpi.
int BlackIn(GuardedPage& page, double left, double top, double right, double bottom) {
    const auto pixels = [](double mm) { return static_cast<int>(mm / 25.4 * 300); };
    int black = 0;
    for (int y = pixels(top); y < pixels(bottom); ++y) {
        for (int x = pixels(left); x < pixels(right); ++x) black += page.At(x, y) == kBlack ? 1 : 0;
    }
    return black;
}

}  // namespace

TEST(TestPage, LabelsItsWedgesAndCarriesProgramAndDate) {
    GuardedPage page(1181, 1772);
    DrawTestPage(page.canvas, 300, {"", {}, "orvexprint 1.0.0", "2026-11-22"});
    GuardedPage undated(1181, 1772);
    DrawTestPage(undated.canvas, 300, {"", {}});
    EXPECT_GT(BlackIn(page, 14, 11, 40, 15), BlackIn(undated, 14, 11, 40, 15));
    for (const double y : {20.5, 24.5, 28.5, 32.5}) {
        EXPECT_GT(BlackIn(page, 8, y, 15, y + 3), 50) << "the ink's name, " << y;
    }
    for (const double x : {16.0, 46.0, 90.0})
        EXPECT_GT(BlackIn(page, x, 17.8, x + 6, 19.8), 20) << "percent, " << x;
}

TEST(TestPage, CutsNoTextAtAnySize) {
    const std::vector<NamedValue> lines(30, {"use-private-copies", "none: the built-in conversion"});
    for (const int dpi : {300, 600}) {
        for (double width = 25.4; width < 130; width += 3.1) {
            for (const double height : {25.4, 62.0, 150.0}) {
                GuardedPage page(static_cast<int>(width / 25.4 * dpi), static_cast<int>(height / 25.4 * dpi));
                DrawTestPage(
                    page.canvas, dpi,
                    {"600 dpi, 297.0 x 901.7 mm, landscape", lines, "orvexprint 1.0.0", "2026-11-22"});
                EXPECT_TRUE(IsMarginBlank(page, dpi)) << width << " x " << height << " mm at " << dpi;
            }
        }
    }
}

TEST(TestPage, ShowsSettingsOnTheNarrowestLabel) {
    GuardedPage page(300, 1772);
    DrawTestPage(page.canvas, 300, {"heading", {{"use-private-copies", "none: the built-in conversion"}}});
    EXPECT_GT(BlackIn(page, 8, 58, 23, 70), 300);
}

TEST(TestPage, FitsLabelsOfEverySize) {
    const std::vector<NamedValue> lines(40, {"setting", "value"});
    for (const int dpi : {300, 600}) {
        for (const auto& [widthMm, heightMm] :
             {std::pair{25.4, 25.4}, {25.4, 150.0}, {297.0, 25.4}, {100.0, 60.0}}) {
            GuardedPage page(static_cast<int>(widthMm / 25.4 * dpi), static_cast<int>(heightMm / 25.4 * dpi));
            DrawTestPage(page.canvas, dpi, {"heading", lines});
            EXPECT_EQ(page.At(0, 0), kBlack);
            EXPECT_TRUE(page.memory.Intact());
        }
    }
    GuardedPage dot(1, 1);
    DrawTestPage(dot.canvas, 300, {"heading", lines});
}

}  // namespace orvex::tools::print
