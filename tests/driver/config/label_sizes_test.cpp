#include "driver/config/label_sizes.h"

#include <algorithm>
#include <cstring>

#include "driver/support/text.h"
#include "tests/driver/config/printer_test.h"
#include "tests/kit/allocation_failure.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

namespace {

constexpr uint16_t kNoNumber = 4711;

class LabelSizes : public PrinterTest {
  protected:
    struct List {
        DWORD code;
        std::vector<LabelSize> labels;
    };

    // Reads the list with room for exactly `capacity` entries.
    List Read(uint32_t capacity = kMaxLabels) {
        const HeapArray<LabelSize> entries = AllocateArray<LabelSize>(capacity);
        uint32_t count = kNoNumber;
        const DWORD code = ReadPrinterLabelList(handle_, entries.get(), capacity, &count);
        EXPECT_LE(count, capacity);
        return {code, {entries.get(), entries.get() + count}};
    }

    std::vector<std::string> Names(const List& list) {
        std::vector<std::string> names;
        for (const LabelSize& label : list.labels)
            names.push_back(std::to_string(label.number) + " " + label.name);
        return names;
    }

    DWORD Next(uint16_t* number) {
        *number = kNoNumber;
        return NextLabelNumber(handle_, number);
    }

    // Returns the bytes that are allocated for the list of sub-keys: the names, their end and three
    // characters.
    static size_t ListBytes(size_t nameCharacters) { return (nameCharacters + 1 + 3) * sizeof(WCHAR); }
};

LabelSize Label(uint16_t number) {
    LabelSize label = {};
    CopyText(label.name, "Versand");
    CopyText(label.width, "101.6");
    CopyText(label.length, "152.4");
    label.units = 0;
    label.number = number;
    return label;
}

// Answers the query for sub-keys with a broken list: three bytes, a character and a half.
DWORD WINAPI AnswerHalfACharacter(HANDLE, LPCWSTR, LPWSTR keys, DWORD size, LPDWORD needed) {
    constexpr char kBytes[] = {'7', 0, '8'};
    *needed = sizeof kBytes;
    if (keys == nullptr) return ERROR_MORE_DATA;
    memcpy(keys, kBytes, std::min<size_t>(size, sizeof kBytes));
    return ERROR_SUCCESS;
}

}  // namespace

TEST_F(LabelSizes, APrinterWithoutAListHasNoLabelsAndOneErrorLine) {
    const List list = Read();
    EXPECT_EQ(list.code, 0u);
    EXPECT_THAT(list.labels, IsEmpty());
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Trace] <ReadPrinterLabelList>",
                                              "[Error] Could not find label list in registry: 0x2",
                                              "[Trace] Return: 0x0", "[Trace] </ReadPrinterLabelList>"));
    EXPECT_FALSE(HasLabelList(handle_));
}

TEST_F(LabelSizes, ALabelIsReadWithAllItsValues) {
    AddLabel(300, "Versand 4 x 6", "101.600", "152.400", 1);
    const List list = Read();
    EXPECT_EQ(list.code, 0u);
    ASSERT_EQ(list.labels.size(), 1u);
    EXPECT_STREQ(list.labels[0].name, "Versand 4 x 6");
    EXPECT_STREQ(list.labels[0].width, "101.600");
    EXPECT_STREQ(list.labels[0].length, "152.400");
    EXPECT_EQ(list.labels[0].units, 1u);
    EXPECT_EQ(list.labels[0].number, 300);
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Trace] <ReadPrinterLabelList>", "[Trace] Return: 0x0",
                                              "[Trace] </ReadPrinterLabelList>"));
    EXPECT_TRUE(HasLabelList(handle_));
}

TEST_F(LabelSizes, LabelsComeInTheSpoolersOrder) {
    AddLabel(300, "third", "1", "1", 0);
    AddLabel(258, "first", "1", "1", 0);
    AddLabel(259, "second", "1", "1", 0);
    EXPECT_THAT(Names(Read()), ElementsAre("258 first", "259 second", "300 third"));
}

TEST_F(LabelSizes, ANumberThatIsListedTwiceIsFoundFirstAndLast) {
    AddLabel(0, "first", "1", "1", 0);
    printer_.data.AddKey("Label Sizes\\x");  // reads as number 0 too
    AddLabel(258, "between", "1", "1", 0);
    const LabelList list(handle_);
    ASSERT_EQ(list.Count(), 3u);
    EXPECT_EQ(list.FirstOfNumber(0), list.begin());
    EXPECT_EQ(list.LastOfNumber(0), list.begin() + 2);
    EXPECT_STREQ(list.FirstOfNumber(258)->name, "between");
    EXPECT_EQ(list.LastOfNumber(258), list.FirstOfNumber(258));
    EXPECT_EQ(list.FirstOfNumber(259), nullptr);
    EXPECT_EQ(list.LastOfNumber(259), nullptr);
}

TEST_F(LabelSizes, AFailureToEnumerateIsTheResultAndLogged) {
    spooler_.FailCall("EnumPrinterKeyW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(Read().code, DWORD{ERROR_ACCESS_DENIED});
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Trace] <ReadPrinterLabelList>",
                                              "[Error] Could not find label list in registry: 0x5",
                                              "[Trace] Return: 0x5", "[Trace] </ReadPrinterLabelList>"));
}

TEST_F(LabelSizes, AnAnswerOfSuccessWithoutABufferMeansNoListToo) {
    AddLabel(258, "unseen", "1", "1", 0);
    spooler_.FailCall("EnumPrinterKeyW", 1, ERROR_SUCCESS);
    const List list = Read();
    EXPECT_EQ(list.code, 0u);
    EXPECT_THAT(list.labels, IsEmpty());
    EXPECT_THAT(ErrorLines(), ElementsAre("[Error] Could not find label list in registry: 0x0"));
}

TEST_F(LabelSizes, AFailureOfTheSecondEnumerationIsTheResultAndLogged) {
    AddLabel(258, "Versand", "1", "1", 0);
    for (const DWORD code : {DWORD{ERROR_MORE_DATA}, DWORD{ERROR_FILE_NOT_FOUND}}) {
        spooler_.FailCall("EnumPrinterKeyW", 2, code);
        const List list = Read();
        EXPECT_EQ(list.code, code);
        EXPECT_THAT(list.labels, IsEmpty());
    }
    EXPECT_THAT(ErrorLines(), ElementsAre("[Error] Could not read label list from registry: 0xea",
                                          "[Error] Could not read label list from registry: 0x2"));
}

TEST_F(LabelSizes, RunningOutOfMemoryForTheListIsLoggedAsAFailureToRead) {
    AddLabel(258, "Versand", "1", "1", 0);
    const AllocationFailure memory(ListBytes(4));
    EXPECT_EQ(Read().code, DWORD{ERROR_NOT_ENOUGH_MEMORY});
    EXPECT_EQ(memory.Count(), 1);
    EXPECT_THAT(ErrorLines(), ElementsAre("[Error] Could not read label list from registry: 0x8"));
}

TEST_F(LabelSizes, AnUnknownVersionIsLeftOutAndTheNextLabelTakesItsSlot) {
    AddLabel(258, "first", "1", "1", 0);
    AddLabel(300, "of the future", "1", "1", 0, 2);
    AddLabel(301, "second", "2", "2", 0);
    const List list = Read();
    EXPECT_EQ(list.code, 0u);
    EXPECT_THAT(Names(list), ElementsAre("258 first", "301 second"));
    EXPECT_THAT(ErrorLines(), ElementsAre("[Error] Unknown label version: 2"));
}

TEST_F(LabelSizes, ASubKeyThatIsNoPaperNumberReadsAsLabelZero) {
    for (const char* key : {"/", ":", "Versand", "258x", "2:", "2/", "-1", "65536", "99999999999999999999"}) {
        printer_.data.SetNumber("Label Sizes\\"s + key, "version", 1);
    }
    const List none = Read();
    EXPECT_EQ(none.code, 0u);
    EXPECT_THAT(none.labels, IsEmpty());
    EXPECT_THAT(ErrorLines(), testing::AllOf(testing::SizeIs(9),
                                             testing::Each("[Error] Could not read label version: 0x2")));
    AddLabel(0, "zero", "1", "1", 0);
    EXPECT_THAT(Names(Read()), testing::AllOf(testing::SizeIs(10), testing::Each("0 zero")));
    AddLabel(65535, "last", "1", "1", 0);
    EXPECT_THAT(Names(Read()), testing::Contains("65535 last"));
}

TEST_F(LabelSizes, ASpoolersListThatEndsWithinACharacterIsReadNoFurther) {
    AddLabel(78, "both", "1", "1", 0);
    const ImportPatch answer(nullptr, "EnumPrinterKeyW", reinterpret_cast<void*>(&AnswerHalfACharacter));
    EXPECT_THAT(Names(Read()), ElementsAre("78 both"));
    uint16_t next = 0;
    EXPECT_EQ(Next(&next), 0u);
    EXPECT_EQ(next, 258);
}

TEST_F(LabelSizes, ReadingStopsAtTheCapacity) {
    for (int i = 0; i < 130; ++i) AddLabel(258 + i, "Label", "1", "1", 0);
    EXPECT_EQ(Read().labels.size(), 128u);
    EXPECT_EQ(Read(3).labels.size(), 3u);
    EXPECT_EQ(Read(1).labels.size(), 1u);
}

TEST_F(LabelSizes, EveryValueThatCannotBeReadIsNamedInTheLog) {
    for (const char* value : {"version", "name", "width", "length", "units"}) {
        AddLabel(258, "Versand", "1", "1", 0);
        const int call = value == "version"s  ? 1
                         : value == "name"s   ? 2
                         : value == "width"s  ? 3
                         : value == "length"s ? 4
                                              : 5;
        spooler_.FailCall("GetPrinterDataExA", call, 0x1F);
        LabelSize label;
        EXPECT_EQ(ReadLabel(handle_, &label, 258), 0x1Fu) << value;
        EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] Could not read label "s + value + ": 0x1f"));
    }
}

TEST_F(LabelSizes, EveryValueOfAnotherTypeIsNamedInTheLog) {
    for (const char* value : {"version", "name", "width", "length", "units"}) {
        AddLabel(258, "Versand", "1", "1", 0);
        printer_.data.Set("Label Sizes\\258", value, {REG_BINARY, "1\0\0\0"s});
        LabelSize label;
        EXPECT_EQ(ReadLabel(handle_, &label, 258), 0x20000004u) << value;
        EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] Could not read label "s + value + ": 0x20000004"));
    }
}

TEST_F(LabelSizes, AnUnknownVersionHasACodeOfItsOwn) {
    for (const uint32_t version : {0u, 2u, 0xFFFFFFFFu}) {
        AddLabel(258, "Versand", "1", "1", 0, version);
        LabelSize label;
        EXPECT_EQ(ReadLabel(handle_, &label, 258), 0x20000002u) << version;
    }
    EXPECT_THAT(log_.TakeLines(),
                ElementsAre("[Error] Unknown label version: 0", "[Error] Unknown label version: 2",
                            "[Error] Unknown label version: -1"));
}

TEST_F(LabelSizes, AVersionOfNoBytesIsZero) {
    AddLabel(258, "Versand", "1", "1", 0);
    printer_.data.Set("Label Sizes\\258", "version", {REG_DWORD, ""});
    LabelSize label;
    EXPECT_EQ(ReadLabel(handle_, &label, 258), 0x20000002u);
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] Unknown label version: 0"));
}

TEST_F(LabelSizes, TextsThatAreTooLongForTheirFieldAreNotRead) {
    AddLabel(258, std::string(63, 'n').c_str(), "1234567", "7654321", 0);
    LabelSize label;
    EXPECT_EQ(ReadLabel(handle_, &label, 258), 0u) << "63 and 7 characters are the most";
    EXPECT_EQ(label.name, std::string(63, 'n'));
    AddLabel(258, std::string(64, 'n').c_str(), "1", "1", 0);
    EXPECT_EQ(ReadLabel(handle_, &label, 258), 234u);
    AddLabel(258, "Versand", "12345678", "1", 0);
    EXPECT_EQ(ReadLabel(handle_, &label, 258), 234u);
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] Could not read label name: 0xea",
                                              "[Error] Could not read label width: 0xea"));
}

TEST_F(LabelSizes, TextsThatFillTheirFieldWithoutTerminatorAreEnded) {
    AddLabel(258, "Versand", "1", "1", 0);
    printer_.data.Set("Label Sizes\\258", "name", {REG_SZ, std::string(64, 'n')});
    printer_.data.Set("Label Sizes\\258", "width", {REG_SZ, "12345678"});
    printer_.data.Set("Label Sizes\\258", "length", {REG_SZ, "12"});
    LabelSize label;
    memset(&label, 'x', sizeof label);
    EXPECT_EQ(ReadLabel(handle_, &label, 258), 0u);
    EXPECT_EQ(label.name, std::string(63, 'n'));
    EXPECT_EQ(label.width, "1234567"s);
    EXPECT_EQ(label.length, "12"s);
}

TEST_F(LabelSizes, TheCodeOfAPrinterThatDoesNotOpenIsReturned) {
    AddLabel(258, "Versand", "1", "1", 0);
    LabelSize label;
    spooler_.FailCall("OpenPrinterW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(ReadLabel(handle_, &label, 258), DWORD{ERROR_ACCESS_DENIED});
    spooler_.FailCall("OpenPrinterW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(WriteLabel(handle_, Label(258)), DWORD{ERROR_ACCESS_DENIED});
    spooler_.FailCall("OpenPrinterW", 1, ERROR_SUCCESS);
    EXPECT_NE(ReadLabel(handle_, &label, 258), DWORD{ERROR_SUCCESS});
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] OpenPrinterWithAccess: error 5 (-2147483648)",
                                              "[Error] OpenPrinterWithAccess: error 5 (983052)",
                                              "[Error] OpenPrinterWithAccess: error 0 (-2147483648)"));
}

TEST_F(LabelSizes, AWrittenLabelHasItsFiveTypedValues) {
    LabelSize label = Label(258);
    label.units = 1;
    EXPECT_EQ(WriteLabel(handle_, label), 0u);
    const PrinterData& data = printer_.data;
    const std::string key = "Label Sizes\\258";
    ASSERT_NE(data.Find(key, "units"), nullptr);
    EXPECT_EQ(*data.Find(key, "version"), (PrinterValue{REG_DWORD, "\1\0\0\0"s}));
    EXPECT_EQ(*data.Find(key, "name"), (PrinterValue{REG_SZ, "Versand\0"s}));
    EXPECT_EQ(*data.Find(key, "width"), (PrinterValue{REG_SZ, "101.6\0"s}));
    EXPECT_EQ(*data.Find(key, "length"), (PrinterValue{REG_SZ, "152.4\0"s}));
    EXPECT_EQ(*data.Find(key, "units"), (PrinterValue{REG_DWORD, "\1\0\0\0"s}));
    EXPECT_THAT(log_.TakeLines(), IsEmpty());
}

TEST_F(LabelSizes, AWrittenLabelIsReadBack) {
    EXPECT_EQ(WriteLabel(handle_, Label(65535)), 0u);
    const List list = Read();
    ASSERT_EQ(list.labels.size(), 1u);
    const LabelSize expected = Label(65535);
    EXPECT_STREQ(list.labels[0].name, expected.name);
    EXPECT_STREQ(list.labels[0].width, expected.width);
    EXPECT_STREQ(list.labels[0].length, expected.length);
    EXPECT_EQ(list.labels[0].units, expected.units);
    EXPECT_EQ(list.labels[0].number, expected.number);
}

TEST_F(LabelSizes, TextsWithoutTerminatorAreWrittenWithOne) {
    LabelSize label = Label(258);
    memset(label.name, 'n', sizeof label.name);
    memset(label.length, '9', sizeof label.length);
    EXPECT_EQ(WriteLabel(handle_, label), 0u);
    EXPECT_EQ(printer_.data.Find("Label Sizes\\258", "name")->bytes, std::string(63, 'n') + '\0');
    EXPECT_EQ(printer_.data.Find("Label Sizes\\258", "length")->bytes, "9999999\0"s);
}

TEST_F(LabelSizes, TheFirstValueThatCannotBeWrittenEndsTheWriting) {
    const char* const kOrder[] = {"version", "name", "width", "length", "units"};
    for (int failing = 0; failing < 5; ++failing) {
        printer_.data = {};
        spooler_.FailCall("SetPrinterDataExA", failing + 1, 0x1F);
        EXPECT_EQ(WriteLabel(handle_, Label(258)), 0x1Fu);
        EXPECT_THAT(log_.TakeLines(),
                    ElementsAre("[Error] Could not set label "s + kOrder[failing] + ": 0x1f"));
        for (int value = 0; value < 5; ++value) {
            EXPECT_EQ(printer_.data.Find("Label Sizes\\258", kOrder[value]) != nullptr, value < failing);
        }
    }
}

TEST_F(LabelSizes, TheNextNumberOfAPrinterWithoutLabelsIs258) {
    uint16_t number = 0;
    EXPECT_EQ(Next(&number), 0u);
    EXPECT_EQ(number, 258);
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] Could not find label list in registry: 0x2"));
}

TEST_F(LabelSizes, TheNextNumberIsOneMoreThanTheLargest) {
    uint16_t number = 0;
    AddLabel(12, "small", "1", "1", 0);
    EXPECT_EQ(Next(&number), 0u);
    EXPECT_EQ(number, 258);
    AddLabel(1000, "large", "1", "1", 0);
    AddLabel(300, "between", "1", "1", 0);
    printer_.data.AddKey("Label Sizes\\x2000");
    EXPECT_EQ(Next(&number), 0u);
    EXPECT_EQ(number, 1001);
    EXPECT_THAT(log_.TakeLines(), IsEmpty());
}

TEST_F(LabelSizes, NumbersThatAreUsedUpAreAnError) {
    uint16_t number = 0;
    AddLabel(65534, "last but one", "1", "1", 0);
    EXPECT_EQ(Next(&number), 0u);
    EXPECT_EQ(number, 65535);
    AddLabel(65535, "last", "1", "1", 0);
    EXPECT_EQ(Next(&number), DWORD{ERROR_ARITHMETIC_OVERFLOW});
}

TEST_F(LabelSizes, AnUnreadableListHasNoNextNumber) {
    AddLabel(258, "Versand", "1", "1", 0);
    uint16_t number = 0;
    spooler_.FailCall("EnumPrinterKeyW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(Next(&number), DWORD{ERROR_ACCESS_DENIED});
    spooler_.FailCall("EnumPrinterKeyW", 2, ERROR_ACCESS_DENIED);
    EXPECT_EQ(Next(&number), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] Could not find label list in registry: 0x5",
                                              "[Error] Could not read label list from registry: 0x5"));
}

}  // namespace orvex
