#include "tools/orvexview/proof.h"

#include <nlohmann/json.hpp>

#include "tests/tools/common/thrown_text.h"
#include "tests/tools/orvexview/command_fixture.h"
#include "tools/common/png_file.h"
#include "tools/orvexview/base64_decoder.h"
#include "tools/orvexview/label_list.h"
#include "tools/orvexview/proof_page.h"

namespace orvex::tools::view {
namespace {

using testing::HasSubstr;
using testing::Not;

// A portrait label of 3 x 2 pixels.
const Rows kPage = {{0xFF, 0}, {0, 0}, {0, 0xFF00}};
const std::vector<Setting> kSettings = {{"COPIES", 2}, {"ORIGX", 3}, {"ORIGY", 2}, {"PHOFFSET", 20}};

class ProofTest : public CommandTest {
  protected:
    std::string Prove(const std::vector<Rows>& pages, const std::string& lines = SettingLines(kSettings),
                      std::vector<std::string> options = {}) {
        options.insert(options.begin(), {WriteJob("job.prn", pages, lines), "--html", Name("proof.html")});
        EXPECT_EQ(Run(options), 0) << error_.str();
        return Read("proof.html");
    }

    // Returns the text of the script element of that id.
    static std::string Script(const std::string& proof, const std::string& id) {
        const size_t start = proof.find("id=\"" + id + "\">") + id.size() + 6;
        return proof.substr(start, proof.find("</script>", start) - start);
    }

    static nlohmann::json Data(const std::string& proof) {
        return nlohmann::json::parse(Script(proof, "job"));
    }

    static size_t Count(const std::string& text, const std::string& part) {
        size_t count = 0;
        for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
        return count;
    }
};

TEST_F(ProofTest, NeedsNothingFromElsewhere) {
    const std::string proof = Prove({kPage});
    EXPECT_THAT(proof, Not(HasSubstr("http")));
    EXPECT_THAT(proof, Not(HasSubstr("src=")));
    EXPECT_THAT(proof, HasSubstr("name=\"viewport\""));
    EXPECT_THAT(proof, HasSubstr("prefers-color-scheme: dark"));
    EXPECT_THAT(proof, HasSubstr("@media print"));
}

TEST_F(ProofTest, HasTheInksOfAPageBelowEachOther) {
    const std::vector<uint8_t> png = DecodeBase64(Script(Prove({kPage}), "picture0"));
    const RasterImage image = DecodePng(png);
    ASSERT_EQ(image.width, 3u);
    ASSERT_EQ(image.height, 8u);
    // Black at the top right, cyan at the bottom left of its part.
    for (uint32_t y = 0; y < 8; ++y) {
        for (uint32_t x = 0; x < 3; ++x) {
            const bool full = (x == 2 && y == 0) || (x == 0 && y == 3);
            EXPECT_EQ(image.Row(y)[x] & 0xFF, full ? 0u : 255u) << x << ", " << y;
        }
    }
}

TEST_F(ProofTest, EqualPagesShareTheirPictures) {
    const Rows other = {{0xFF, 0}, {0, 1}, {0, 0xFF00}};
    const std::string proof = Prove({kPage, other, kPage, kPage});
    EXPECT_EQ(Count(proof, "id=\"picture"), 2u);
    EXPECT_EQ(Data(proof)["pages"], nlohmann::json({0, 1, 0, 0}));
    EXPECT_THAT(out_.str(), HasSubstr("4 pages, 2 different, "));
    EXPECT_THAT(proof, HasSubstr("<td>pages 1, 3, 4</td>"));
}

TEST_F(ProofTest, ComputesTheColorsOfTheModelInTheBrowser) {
    const nlohmann::json data = Data(Prove({kPage}));
    const InkModel model(300);
    const uint32_t steps = data["steps"];
    // The script's arithmetic, for cyan on black.
    double light[3];
    for (size_t i = 0; i < 3; ++i) {
        light[i] = data["light"][kBlackInk][3 * (255 - 90) + i].get<double>() / steps *
                   data["light"][kCyanInk][3 * (255 - 200) + i].get<double>() / steps;
    }
    const Rgb expected = model.OnPaper(PackInks(90, 200, 0, 0));
    const uint8_t samples[] = {expected.red, expected.green, expected.blue};
    for (size_t i = 0; i < 3; ++i) {
        const auto step = static_cast<uint32_t>(light[i] * steps + 0.5);
        int shown = 0;
        while (shown < 255 && data["shownFrom"][static_cast<size_t>(shown) + 1] <= step) ++shown;
        EXPECT_NEAR(shown, samples[i], 1);
    }
}

TEST_F(ProofTest, SettingsThatDifferFromTheDefaultsAreBold) {
    const std::string proof = Prove({kPage});
    EXPECT_THAT(proof, HasSubstr("<tr class=\"unusual\"><td>COPIES</td><td>2</td>"));
    EXPECT_THAT(proof, HasSubstr("<tr><td>PHOFFSET</td><td>20</td>"));
}

TEST_F(ProofTest, ShowsThePlaceUnderThePrintHead) {
    const std::string proof = Prove({kPage});
    EXPECT_THAT(proof, HasSubstr("<svg "));
    EXPECT_THAT(proof, HasSubstr("<li>print head: 3510 rows (297.2 mm), a tick every 10 mm</li>"));
    EXPECT_THAT(proof, HasSubstr(">right</text>"));
}

TEST_F(ProofTest, WarnsOfInkThinLinesAndSize) {
    Rows rows(40, std::vector<uint32_t>(40));
    for (size_t row = 5; row < 35; ++row) rows[row][20] = 0xFFFFFFFF;
    const std::string proof = Prove({rows}, SettingLines({{"ORIGX", 40}, {"ORIGY", 40}}), {"--limit", "240"});
    EXPECT_THAT(proof,
                HasSubstr("page 1: 1.88 % of the pixels get more ink than the limit of 240 %; the most "
                          "is 400 %</li>"));
    EXPECT_THAT(proof, HasSubstr("page 1: 1 line is one pixel thin"));
    EXPECT_THAT(Prove({kPage}), HasSubstr("<p>None.</p>"));
}

TEST_F(ProofTest, WarnsOfArtThatWasEnlarged) {
    Rows rows(80, std::vector<uint32_t>(80));
    for (size_t row = 0; row < 80; ++row) {
        for (size_t x = 0; x < 80; ++x) rows[row][x] = (row / 2 + x / 2) % 2 == 0 ? 0xFF : 0;
    }
    EXPECT_THAT(Prove({rows}, SettingLines({{"ORIGX", 80}, {"ORIGY", 80}})),
                HasSubstr("page 1: every detail is made of 2 x 2 pixels: the art was enlarged 2 times</li>"));
}

TEST_F(ProofTest, PagesWithTheSameWarningShareALine) {
    std::vector<Rows> pages;
    for (uint32_t i = 0; i < 3; ++i) pages.push_back({{0xFFFFFFFF, i}});
    EXPECT_THAT(Prove(pages, ""), HasSubstr("<li>pages 1 to 3: 50.00 % of the pixels get more ink"));
    // Pages with other shares of ink, most of them with a thin line, too.
    for (uint32_t width = 3; width < 32; ++width) {
        pages.push_back({std::vector<uint32_t>(width, 0xFFFFFFFF)});
        pages.back()[0][0] = 0;
    }
    EXPECT_THAT(Prove(pages, ""), HasSubstr("<li>11 more of these</li>"));
}

TEST_F(ProofTest, WarnsOfALabelThatIsNotListed) {
    const std::string media =
        Utf8FromPath(folder_.Write("media.inf", "[Media]\n\"Small\", \"25.4\", \"50\", 0\n"));
    const std::vector<std::string> labels = {"--labels", media};
    const Rows listed(300, std::vector<uint32_t>(591));
    for (const auto& [width, height] : {std::pair{300, 591}, {591, 300}}) {  // portrait and landscape
        EXPECT_THAT(Prove({listed}, SettingLines({{"ORIGX", width}, {"ORIGY", height}}), labels),
                    HasSubstr("<p>None.</p>"));
    }
    EXPECT_THAT(Prove({kPage}, SettingLines(kSettings), labels),
                HasSubstr("a label of 0.3 x 0.2 mm is not in the printer&#39;s list"));
    EXPECT_THAT(ThrownText([&] { ListedLabels(folder_.Write("x.inf", "[UI]\n")); }),
                HasSubstr("lists no labels"));
}

TEST_F(ProofTest, TextsOfTheFileCannotBecomeMarkup) {
    const std::string proof = Prove({kPage}, "@PJL JOB NAME=\"</title><script>alert(1)</script>\"\n");
    EXPECT_THAT(proof, Not(HasSubstr("<script>alert")));
    EXPECT_THAT(proof, HasSubstr("&lt;script&gt;alert(1)"));
}

TEST_F(ProofTest, PicturesGetSmallerUntilTheyFit) {
    Rows noise(400, std::vector<uint32_t>(400));
    uint32_t value = 1;
    for (auto& row : noise) {
        for (uint32_t& pixel : row) pixel = value = value * 1664525 + 1013904223;
    }
    ProofOptions options;
    options.file = WriteJob("job.prn", {noise, kPage});
    options.html = Name("proof.html");
    std::ostringstream out;
    options.pictureBytes = 40'000;
    WriteProof(options, out);
    const std::string proof = Read("proof.html");
    const size_t first = Script(proof, "picture0").size();
    EXPECT_LE(first, 20'000u / 3 * 4 + 4);
    EXPECT_GT(first, 2'000u);
    options.pictureBytes = 20;
    WriteProof(options, out);
    EXPECT_EQ(Data(Read("proof.html"))["sheets"], nlohmann::json({nullptr, nullptr}));
}

// Labels of a job are mostly alike.
TEST_F(ProofTest, APageLikeTheFirstOneStoresItsDifferences) {
    Rows noise(300, std::vector<uint32_t>(200));
    uint32_t value = 1;
    for (auto& row : noise) {
        for (uint32_t& pixel : row) pixel = value = value * 1664525 + 1013904223;
    }
    Rows other = noise;
    other[5][7] = 0x000000FF;
    const std::string proof = Prove({noise, other}, SettingLines({{"ORIGX", 200}, {"ORIGY", 300}}));
    EXPECT_EQ(Data(proof)["fromFirst"], nlohmann::json({false, true}));
    const std::vector<uint8_t> first = DecodeBase64(Script(proof, "picture0"));
    const std::vector<uint8_t> second = DecodeBase64(Script(proof, "picture1"));
    EXPECT_LT(second.size() * 50, first.size());
    const uint32_t sum = (DecodePng(first).Row(5)[7] + DecodePng(second).Row(5)[7]) & 0xFF;
    EXPECT_EQ(sum, 0u) << "full black ink";
}

TEST_F(ProofTest, ACutFileHasAProofOfWhatIsThere) {
    WriteJob("job.prn", {kPage}, SettingLines(kSettings));
    const std::string whole = Read("job.prn");
    WriteBytes(folder_.Path() / "job.prn", whole.substr(0, whole.size() - 20));
    EXPECT_EQ(Run({Name("job.prn"), "--html", Name("proof.html")}), 1);
    EXPECT_THAT(error_.str(), HasSubstr("is no sound print file"));
    EXPECT_THAT(Read("proof.html"), HasSubstr("<li>The file is not sound: offset "));
}

TEST_F(ProofTest, WritesOverNoInput) {
    const std::string job = WriteJob("job.prn", {kPage});
    const std::string before = Read("job.prn");
    EXPECT_EQ(Run({job, "--html", job}), 1);
    EXPECT_EQ(Read("job.prn"), before);
    EXPECT_EQ(Run({job, "--open"}), 2) << "there is nothing to show";
    EXPECT_EQ(Run({job, "--html", Name("proof.html"), "--limit", "401"}), 2);
    EXPECT_EQ(error_.str(), "orvexview: --limit: \"401\" is not allowed; it takes 1 to 400\n");
}

#ifdef _WIN32
// Makes a program of the user's open files of a kind, until the test ends.
class Association {
  public:
    explicit Association(const std::wstring& command) {
        Set(L".orvexproof", kClass);
        Set(std::wstring(kClass) + L"\\shell\\open\\command", command);
    }
    ~Association() {
        RegDeleteTreeW(HKEY_CLASSES_ROOT, L".orvexproof");
        RegDeleteTreeW(HKEY_CLASSES_ROOT, kClass);
    }
    Association(const Association&) = delete;
    Association& operator=(const Association&) = delete;

  private:
    static constexpr const wchar_t* kClass = L"OrvexProofOfATest";

    static void Set(const std::wstring& key, const std::wstring& value) {
        RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, REG_SZ, value.c_str(),
                        static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    }
};

TEST_F(ProofTest, OpensTheProof) {
    const std::wstring opened = (folder_.Path() / "opened").make_preferred().wstring();
    const std::string job = WriteJob("job.prn", {kPage}), proof = Name("a proof.orvexproof");
    EXPECT_EQ(Run({job, "--html", proof, "--open"}), 1);
    EXPECT_THAT(error_.str(), HasSubstr("a proof.orvexproof: there is no program that shows it"));
    const Association association(L"cmd.exe /c copy \"%1\" \"" + opened + L"\"");
    EXPECT_EQ(Run({job, "--html", proof, "--open"}), 0) << error_.str();
    const std::string expected = Read("a proof.orvexproof");
    for (int i = 0; i < 500 && Read("opened") != expected; ++i) Sleep(20);
    EXPECT_EQ(Read("opened"), expected);
}
#else
TEST_F(ProofTest, OpensTheProof) {
    const std::string path = getenv("PATH");
    const std::filesystem::path program =
        folder_.Write("xdg-open", "#!/bin/sh\nprintf %s \"$1\" >\"${0%/*}/opened\"\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    setenv("PATH", (folder_.Path().string() + ":" + path).c_str(), 1);
    Prove({kPage}, "", {"--open"});
    EXPECT_EQ(Read("opened"), Name("proof.html"));
    setenv("PATH", Name("nowhere").c_str(), 1);
    EXPECT_EQ(Run({Name("job.prn"), "--html", Name("proof.html"), "--open"}), 1);
    EXPECT_THAT(error_.str(), HasSubstr("proof.html: there is no program that shows it"));
    setenv("PATH", path.c_str(), 1);
}
#endif

TEST(PagesText, NamesRanges) {
    const auto text = [](std::vector<uint32_t> pages) { return PagesText(pages); };
    EXPECT_EQ(text({3}), "page 3");
    EXPECT_EQ(text({1, 2}), "pages 1, 2");
    EXPECT_EQ(text({1, 2, 3, 7, 9, 10}), "pages 1 to 3, 7, 9, 10");
}

}  // namespace
}  // namespace orvex::tools::view
