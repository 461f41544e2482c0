#include "tools/orvexprint/test_page.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <vector>

#include "tools/common/progress.h"
#include "tools/host/guarded_memory.h"
#include "tools/orvexprint/barcode.h"

#include <sstream>

namespace orvex::tools::print {

using testing::Each;
using testing::ElementsAre;

namespace {

// A page whose pixels end at a guard page.
class Page {
  public:
    Page(int width, int height)
        : memory(static_cast<size_t>(width) * static_cast<size_t>(height) * 4),
          canvas(Pixels(), width, height, static_cast<size_t>(width)) {
        canvas.Fill(0, 0, width, height, kWhite);
    }
    uint32_t* Pixels() { return reinterpret_cast<uint32_t*>(memory.Data()); }
    uint32_t At(int x, int y) { return Pixels()[y * canvas.Width() + x]; }
    std::vector<uint32_t> All() { return {Pixels(), Pixels() + memory.Size() / 4}; }

    GuardedMemory memory;
    Canvas canvas;
};

// Reads bars back: runs of modules, cut into characters of nine elements.
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

TEST(Canvas, CutsEverythingAtThePagesEdge) {
    Page page(10, 6);
    page.canvas.Fill(-5, -5, 7, 7, 1);
    page.canvas.Fill(8, 4, 100, 100, 2);
    page.canvas.Fill(20, 0, 5, 5, 3);
    page.canvas.Fill(0, 9, 5, 5, 3);
    page.canvas.Fill(3, 3, -2, -2, 3);
    page.canvas.Frame(-3, -3, 100, 100, 2, 3);
    page.canvas.Text(-4, -4, 3, "edge", 4);
    page.canvas.Text(6, 3, 5, "far too long for the page", 4);
    EXPECT_TRUE(page.memory.Intact());
    EXPECT_EQ(std::count(page.Pixels(), page.Pixels() + 60, 3u), 0);
}

TEST(Canvas, FillsExactlyTheRectangle) {
    Page page(5, 4);
    page.canvas.Fill(1, 1, 3, 2, 7);
    EXPECT_EQ(std::count(page.Pixels(), page.Pixels() + 20, 7u), 6);
    EXPECT_EQ(page.At(1, 1), 7u);
    EXPECT_EQ(page.At(3, 2), 7u);
}

TEST(Canvas, WritesLettersThatGrowWithTheScale) {
    Page one(200, 20);
    one.canvas.Text(2, 2, 1, "Orvex", kBlack);
    const auto ink = std::count(one.Pixels(), one.Pixels() + 4000, kBlack);
    EXPECT_GT(ink, 40);
    Page two(400, 40);
    two.canvas.Text(2, 2, 2, "Orvex", kBlack);
    EXPECT_EQ(std::count(two.Pixels(), two.Pixels() + 16000, kBlack), 4 * ink);
    EXPECT_EQ(Canvas::TextWidth("Orvex", 2), 2 * Canvas::TextWidth("Orvex", 1));
}

TEST(Canvas, ShowsAQuestionMarkForLettersThatItLacks) {
    Page umlaut(60, 20);
    umlaut.canvas.Text(2, 2, 1, "\xC3\x7F", kBlack);
    Page marks(60, 20);
    marks.canvas.Text(2, 2, 1, "??", kBlack);
    EXPECT_EQ(umlaut.All(), marks.All());
}

TEST(Barcode, ReadsBackAsItWasWritten) {
    EXPECT_EQ(ReadCode39(Code39("A0 X39")), "*A0 X39*");
    EXPECT_EQ(ReadCode39(Code39("ax")), "*AX*") << "small letters";
    EXPECT_EQ(ReadCode39(Code39("3$9")), "*3-9*") << "characters it lacks";
    EXPECT_EQ(ReadCode39(Code39("")), "**");
}

TEST(TestPage, MarksAllFourCorners) {
    Page page(1181, 1772);
    DrawTestPage(page.canvas, 300, {"heading", {{"name", "value"}}});
    for (const auto& [x, y] : {std::pair{0, 0}, {1180, 0}, {0, 1771}, {1180, 1771}}) {
        EXPECT_EQ(page.At(x, y), kBlack) << x << "," << y;
    }
    EXPECT_EQ(page.At(1120, 1771), kWhite) << "the marks are 5 mm long";
}

TEST(TestPage, HasMillimetreRulersOnBothAxes) {
    Page page(1181, 1772);
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
    Page page(1181, 1772);
    DrawTestPage(page.canvas, 300, {"", {}});
    const std::vector<uint32_t> pixels = page.All();
    const std::set<uint32_t> colors(pixels.begin(), pixels.end());
    for (const uint32_t color : {0x00FFFFu, 0xFF00FFu, 0xFFFF00u, 0x7FFFFFu + 0x010000u, 0x808080u}) {
        EXPECT_TRUE(colors.contains(color)) << std::hex << color;
    }
    EXPECT_EQ(colors.size(), 1 + 4 * 10u) << "white, and ten steps of each ink";
}

TEST(TestPage, PointsToTheTop) {
    Page page(1181, 1772);
    DrawTestPage(page.canvas, 300, {"", {}});
    // The arrow's head widens downwards from its tip at 10 mm from the left, 8 mm from the top.
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
            Page page(static_cast<int>(widthMm / 25.4 * dpi), static_cast<int>(heightMm / 25.4 * dpi));
            DrawTestPage(page.canvas, dpi, {"heading", lines});
            EXPECT_EQ(page.At(0, 0), kBlack);
            EXPECT_TRUE(page.memory.Intact());
        }
    }
    Page dot(1, 1);
    DrawTestPage(dot.canvas, 300, {"heading", lines});
}

TEST(Progress, ShowsAPageOnceAPercentAndClearsItsLine) {
    std::ostringstream out;
    {
        Progress progress(out, true, 12);
        progress.Show(1, 1, 1000);
        progress.Show(1, 10, 1000);
        progress.Show(1, 11, 1000);
        progress.Show(12, 3, 2);
        progress.Show(12, 0, 0);
    }
    EXPECT_EQ(out.str(),
              "\rpage 1 of 12: 0 %\rpage 1 of 12: 1 %\rpage 12 of 12: 100 %\r                    \r");
}

TEST(Progress, IsSilentWhereThereIsNoTerminal) {
    std::ostringstream out;
    {
        Progress progress(out, false, 3);
        progress.Show(1, 500, 1000);
    }
    EXPECT_EQ(out.str(), "");
}

}  // namespace orvex::tools::print
