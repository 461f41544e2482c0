#include "tools/orvexprint/test_page.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <vector>

#include "tests/tools/common/guarded_page.h"
#include "tools/orvexprint/barcode.h"

namespace orvex::tools::print {

using testing::Each;
using testing::ElementsAre;

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
