#include "driver/config/media_import.h"

#include "driver/config/label_sizes.h"
#include "driver/support/installation.h"
#include "tests/driver/config/printer_test.h"
#include "tests/driver/failing_calls.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

class MediaImport : public PrinterTest {
  protected:
    int ImportInstalled() {
        const HeapArray<WCHAR> folder = GetInstallationFolder();
        return ImportMediaFile(handle_, folder.get());
    }

    // Returns the labels that an import of `text` gives an empty printer: "number name|width|length|units".
    std::vector<std::string> Import(std::string_view text) {
        printer_.data = {};
        installation_.Write("media.inf", text);
        EXPECT_EQ(ImportInstalled(), 1);
        log_.TakeLines();
        LabelSize entries[kMaxLabels];
        uint32_t count = 0;
        EXPECT_EQ(ReadPrinterLabelList(handle_, entries, kMaxLabels, &count), 0u);
        std::vector<std::string> labels;
        for (uint32_t i = 0; i < count; ++i) {
            const LabelSize& label = entries[i];
            labels.push_back(std::to_string(label.number) + " " + label.name + "|" + label.width + "|" +
                             label.length + "|" + std::to_string(static_cast<int32_t>(label.units)));
        }
        log_.TakeLines();
        return labels;
    }
};

}  // namespace

TEST_F(MediaImport, EachLineAfterTheSectionIsOneLabel) {
    EXPECT_THAT(Import("[Media]\r\n\"Versand\", \"100\", \"150\", 0\r\n\"4 x 6\", \"4\", \"6\", 1\r\n"),
                ElementsAre("258 Versand|100|150|0", "259 4 x 6|4|6|1"));
}

TEST_F(MediaImport, LinesEndInLineFeedsToo) {
    EXPECT_THAT(Import("[Media]\n\"A\",\"1\",\"2\",0\n\"B\",\"3\",\"4\",2"),
                ElementsAre("258 A|1|2|0", "259 B|3|4|2"));
}

TEST_F(MediaImport, ReadingStartsAtTheFirstSectionWhereverItIs) {
    EXPECT_THAT(
        Import("\"X\",\"1\",\"1\",0\n; sizes [Media] \"Y\",\"1\",\"1\",0\n\"A\",\"1\",\"2\",0\n[Media]\n"),
        ElementsAre("258 A|1|2|0"));
}

TEST_F(MediaImport, AFileWithoutTheSectionAddsNothing) {
    EXPECT_THAT(Import("\"A\",\"1\",\"2\",0\n"), IsEmpty());
    EXPECT_THAT(Import("[media]\n\"A\",\"1\",\"2\",0\n"), IsEmpty());
    EXPECT_THAT(Import("[Media]"), IsEmpty());
    EXPECT_THAT(Import("[Media]\n"), IsEmpty());
}

TEST_F(MediaImport, BlanksTabsAndCommasMayPrecedeEachPart) {
    EXPECT_THAT(Import("[Media]\n ,\t\"A\"\t,, \"1\"\"2\",,\t 1 comment\n\"B\"\"1\"\"2\"1\n"),
                ElementsAre("258 A|1|2|1", "259 B|1|2|1"));
}

TEST_F(MediaImport, UnitsAreReadAsLeadingDigits) {
    EXPECT_THAT(Import("[Media]\n"
                       "\"a\",\"1\",\"2\",1x\n"
                       "\"b\",\"1\",\"2\",mm\n"
                       "\"c\",\"1\",\"2\"\n"
                       "\"d\",\"1\",\"2\",\n"
                       "\"e\",\"1\",\"2\",-1\n"
                       "\"f\",\"1\",\"2\",+2\r\n"
                       "\"g\",\"1\",\"2\",99999999999\n"
                       "\"h\",\"1\",\"2\",-99999999999\n"
                       "\"i\",\"1\",\"2\",\v\f1\n"
                       "\"j\",\"1\",\"2\",+-1\n"
                       "\"k\",\"1\",\"2\",3000000000\n"
                       "\"l\",\"1\",\"2\",~1\n"),
                ElementsAre("258 a|1|2|1", "259 b|1|2|0", "260 c|1|2|0", "261 d|1|2|0", "262 e|1|2|-1",
                            "263 f|1|2|2", "264 g|1|2|2147483647", "265 h|1|2|-2147483647", "266 i|1|2|1",
                            "267 j|1|2|0", "268 k|1|2|2147483647", "269 l|1|2|0"));
}

TEST_F(MediaImport, MissingUnitsAreNotTakenFromTheNextLine) {
    EXPECT_THAT(Import("[Media]\n\"a\",\"1\",\"2\",\n7\n"), ElementsAre("258 a|1|2|0"));
}

TEST_F(MediaImport, TextsMayBeAsLongAsTheirFieldsAllow) {
    const std::string name(63, 'n');
    EXPECT_THAT(Import("[Media]\n\"" + name + "\",\"12.3456\",\"7654321\",0\n"),
                ElementsAre("258 " + name + "|12.3456|7654321|0"));
    EXPECT_THAT(Import("[Media]\n\"\",\"\",\"\",0\n"), ElementsAre("258 |||0"));
}

TEST_F(MediaImport, ATextThatIsTooLongEndsTheImport) {
    const std::string kGood = "\"A\",\"1\",\"2\",0\n";
    for (const std::string& bad : {"\"" + std::string(64, 'n') + "\",\"1\",\"2\",0\n",
                                   "\"B\",\"123.4567\",\"2\",0\n"s, "\"B\",\"1\",\"12345678\",0\n"s}) {
        EXPECT_THAT(Import("[Media]\n" + kGood + bad + kGood), ElementsAre("258 A|1|2|0")) << bad;
    }
}

TEST_F(MediaImport, AnyLineOfAnotherFormEndsTheImport) {
    const std::string kGood = "\"A\",\"1\",\"2\",0\n";
    for (const std::string& bad :
         {"\n"s, "\r\n"s, "; comment\n"s, "A,1,2,0\n"s, "\"B\"\n"s, "\"B\",\"1\"\n"s, "\"B\",\"1\",\"2\n"s,
          "\"B\n\",\"1\",\"2\",0\n"s, "[Other]\n"s, "\"B\";\"1\",\"2\",0\n"s, "~\"B\",\"1\",\"2\",0\n"s}) {
        EXPECT_THAT(Import("[Media]\n" + kGood + bad + kGood), ElementsAre("258 A|1|2|0")) << bad;
    }
}

TEST_F(MediaImport, ABlankLineStraightAfterTheSectionAddsNoLabel) {
    EXPECT_THAT(Import("[Media]\r\n\r\n\"A\",\"1\",\"2\",0\r\n"), IsEmpty());
}

TEST_F(MediaImport, OnlyTheFirst4095BytesCount) {
    const std::string last = "\"A\",\"1\",\"2\",17";
    const std::string head(4095 - "[Media]\n"sv.size() - last.size(), '#');
    EXPECT_THAT(Import(head + "[Media]\n" + last + "\n\"B\",\"1\",\"2\",0\n"), ElementsAre("258 A|1|2|17"));
    EXPECT_THAT(Import("#" + head + "[Media]\n" + last + "\n"), ElementsAre("258 A|1|2|1"))
        << "cut in the units";
    EXPECT_THAT(Import("####" + head + "[Media]\n" + last + "\n"), IsEmpty()) << "cut in the length";
    EXPECT_THAT(Import(std::string(4090, '#') + "[Media]\n" + last), IsEmpty()) << "cut in the section";
}

TEST_F(MediaImport, AZeroByteEndsTheText) {
    EXPECT_THAT(Import("[Media]\n\"A\",\"1\",\"2\",1\0\n\"B\",\"1\",\"2\",0\n"sv),
                ElementsAre("258 A|1|2|1"));
}

TEST_F(MediaImport, EveryLabelIsLoggedAtTheLevelOfErrors) {
    installation_.Write("media.inf", "[Media]\n\"A b\",\"1\",\"2\",0\n\"B\",\"3.5\",\"4\",1\n");
    EXPECT_EQ(ImportInstalled(), 1);
    EXPECT_THAT(log_.TakeLines(),
                ElementsAre("[Error] Add A b 1 2 0",  //
                            "[Error] Could not find label list in registry: 0x2", "[Error] Add B 3.5 4 1"));
}

TEST_F(MediaImport, APrinterThatHasLabelsKeepsThem) {
    AddLabel(300, "Versand", "1", "1", 0);
    const PrinterData before = printer_.data;
    installation_.Write("media.inf", "[Media]\n\"A\",\"1\",\"2\",0\n");
    EXPECT_EQ(ImportInstalled(), 0);
    EXPECT_EQ(printer_.data, before);
    EXPECT_THAT(log_.TakeLines(), IsEmpty());
}

TEST_F(MediaImport, ASecondImportDoesNothing) {
    installation_.Write("media.inf", "[Media]\n\"A\",\"1\",\"2\",0\n");
    EXPECT_EQ(ImportInstalled(), 1);
    const PrinterData before = printer_.data;
    EXPECT_EQ(ImportInstalled(), 0);
    EXPECT_EQ(printer_.data, before);
}

TEST_F(MediaImport, EachLabelIsAnErrorWithoutAPrinter) {
    installation_.Write("media.inf", "[Media]\n\"A\",\"1\",\"2\",0\n\"B\",\"3\",\"4\",1\n");
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    EXPECT_EQ(ImportMediaFile(nullptr, folder.get()), 1);
    EXPECT_THAT(log_.TakeLines(),
                ElementsAre("[Error] Add A 1 2 0", "[Error] Error adding label to registry!",
                            "[Error] Add B 3 4 1", "[Error] Error adding label to registry!"));
    EXPECT_EQ(spooler_.Calls("EnumPrinterKeyW"), 0);
}

TEST_F(MediaImport, ALabelThatCannotBeAddedIsAnErrorAndTheNextOneFollows) {
    installation_.Write("media.inf", "[Media]\n\"A\",\"1\",\"2\",0\n\"B\",\"3\",\"4\",1\n");
    spooler_.FailCall("SetPrinterDataExA", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(ImportInstalled(), 1);
    EXPECT_THAT(
        log_.TakeLines(),
        ElementsAre("[Error] Add A 1 2 0", "[Error] Could not find label list in registry: 0x2",
                    "[Error] Could not set label version: 0x5", "[Error] Error adding label to registry!",
                    "[Error] Add B 3 4 1", "[Error] Could not find label list in registry: 0x2"));
    EXPECT_EQ(printer_.data.SubKeys("Label Sizes"), std::vector<std::string>{"258"});
}

TEST_F(MediaImport, ALabelWithoutANumberIsAnError) {
    installation_.Write("media.inf", "[Media]\n\"A\",\"1\",\"2\",0\n");
    spooler_.FailCall("EnumPrinterKeyW", 2, ERROR_ACCESS_DENIED);
    EXPECT_EQ(ImportInstalled(), 1);
    EXPECT_THAT(log_.TakeLines(),
                ElementsAre("[Error] Add A 1 2 0", "[Error] Could not find label list in registry: 0x5",
                            "[Error] Error adding label to registry!"));
    EXPECT_EQ(spooler_.Calls("SetPrinterDataExA"), 0);
}

TEST_F(MediaImport, AMissingFileIsLogged) {
    EXPECT_EQ(ImportInstalled(), 1);
    EXPECT_EQ(ImportMediaFile(handle_, nullptr), 1) << "as is an unknown folder";
    EXPECT_THAT(log_.TakeLines(),
                ElementsAre("[Error] failed to open media.inf", "[Error] failed to open media.inf"));
}

TEST_F(MediaImport, AFileThatIsEmptyOrCannotBeReadIsLogged) {
    installation_.Write("media.inf", "");
    EXPECT_EQ(ImportInstalled(), 1);
    installation_.Write("media.inf", "[Media]\n\"A\",\"1\",\"2\",0\n");
    {
        const ImportPatch files(nullptr, "ReadFile", reinterpret_cast<void*>(&FailToRead));
        EXPECT_EQ(ImportInstalled(), 1);
    }
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] media.inf empty", "[Error] media.inf empty"));
}

}  // namespace orvex
