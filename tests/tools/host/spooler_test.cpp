#include "tools/host/spooler.h"

#include <gmock/gmock.h>

#include <cstring>

#include "tools/common/wide_text.h"

namespace orvex::tools {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SpoolerTest : public testing::Test {
  protected:
    SpoolerTest() { spooler_.Attach(); }

    HANDLE OpenForWriting() { return spooler_.Open("Etikett 1", PRINTER_ALL_ACCESS); }
    // Writes the beginning of "abc", and notes in `written_` what the spooler says that it took.
    BOOL Write(HANDLE handle, DWORD size) {
        char bytes[] = "abc";
        return WritePrinter(handle, bytes, size, &written_);
    }

    DWORD written_ = 9;
    Spooler spooler_;
    Spooler::Printer& printer_ = spooler_.AddPrinter("Etikett 1", "Orvex Series");
};

HANDLE OpenByCall(const char16_t* name, DWORD access) {
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, access};
    HANDLE handle = nullptr;
    std::u16string text = name;
    const BOOL opened = OpenPrinterW(AsWchar(text), &handle, &defaults);
    EXPECT_EQ(opened != FALSE, handle != nullptr);
    return handle;
}

}  // namespace

TEST_F(SpoolerTest, OpensPrintersByNameAndCountsTheirHandles) {
    const HANDLE first = OpenByCall(u"Etikett 1", GENERIC_READ);
    const HANDLE second = spooler_.Open("Etikett 1");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(spooler_.OpenHandles(), 2u);
    EXPECT_TRUE(CloseHandle(first));
    EXPECT_TRUE(spooler_.Close(second));
    EXPECT_EQ(spooler_.OpenHandles(), 0u);
    EXPECT_THAT(spooler_.Misuses(), IsEmpty());
}

TEST_F(SpoolerTest, AnswersCode1801ForAnUnknownPrinter) {
    EXPECT_EQ(OpenByCall(u"Etikett 2", GENERIC_READ), nullptr);
    EXPECT_EQ(GetLastError(), 1801u);
    EXPECT_EQ(spooler_.Open("Etikett 2"), nullptr);
    HANDLE handle = nullptr;
    EXPECT_FALSE(OpenPrinterW(nullptr, &handle, nullptr));
}

TEST_F(SpoolerTest, NoticesClosedAndForeignHandles) {
    const HANDLE handle = OpenForWriting();
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_EQ(GetLastError(), 6u);
    DWORD needed = 0;
    EXPECT_FALSE(GetPrinterW(handle, 2, nullptr, 0, &needed));
    EXPECT_EQ(EnumPrinterKeyW(reinterpret_cast<HANDLE>(0x1234), L"Label Sizes", nullptr, 0, &needed), 6u);
    EXPECT_THAT(spooler_.Misuses(), ElementsAre("closing: the printer handle is closed already",
                                                "GetPrinterW: the printer handle is closed already",
                                                "EnumPrinterKeyW: this is no printer handle"));
}

TEST_F(SpoolerTest, LeavesOtherHandlesToTheSystem) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, "orvex-spooler-test");
    ASSERT_NE(mutex, nullptr);
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_EQ(spooler_.Calls("CloseHandle"), 0);
    EXPECT_THAT(spooler_.Misuses(), IsEmpty());
}

TEST_F(SpoolerTest, CollectsTheBytesOfAPrinter) {
    const HANDLE handle = OpenForWriting();
    EXPECT_TRUE(Write(handle, 3));
    EXPECT_EQ(written_, 3u);
    EXPECT_TRUE(Write(handle, 1));
    EXPECT_EQ(printer_.written, "abca");
}

TEST_F(SpoolerTest, PassesTheBytesToASinkThatMayRefuseThem) {
    std::vector<std::string> pieces;
    printer_.sink = [&pieces](std::string_view bytes) {
        pieces.emplace_back(bytes);
        return pieces.size() < 2;
    };
    const HANDLE handle = OpenForWriting();
    EXPECT_TRUE(Write(handle, 3));
    EXPECT_FALSE(Write(handle, 2));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_WRITE_FAULT});
    EXPECT_EQ(written_, 0u);
    EXPECT_THAT(pieces, ElementsAre("abc", "ab"));
    EXPECT_EQ(printer_.written, "");
}

TEST_F(SpoolerTest, AnswersAPrintersNamesInABufferOfTheSizeItNeeds) {
    const HANDLE handle = OpenForWriting();
    DWORD needed = 0;
    EXPECT_FALSE(GetPrinterW(handle, 2, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), 122u);
    ASSERT_GT(needed, sizeof(PRINTER_INFO_2W));
    std::vector<BYTE> buffer(needed);
    EXPECT_FALSE(GetPrinterW(handle, 2, buffer.data(), needed - 1, &needed));
    ASSERT_TRUE(GetPrinterW(handle, 2, buffer.data(), needed, &needed));
    const auto* info = reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data());
    EXPECT_EQ(Utf8(info->pPrinterName), "Etikett 1");
    EXPECT_EQ(Utf8(info->pDriverName), "Orvex Series");
    EXPECT_FALSE(GetPrinterW(handle, 4, buffer.data(), needed, &needed));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_LEVEL});
}

TEST_F(SpoolerTest, AnswersADriversNameInABufferOfTheSizeItNeeds) {
    const HANDLE handle = OpenForWriting();
    DWORD needed = 0;
    EXPECT_FALSE(GetPrinterDriverW(handle, nullptr, 3, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), 122u);
    std::vector<BYTE> buffer(needed);
    ASSERT_TRUE(GetPrinterDriverW(handle, nullptr, 3, buffer.data(), needed, &needed));
    EXPECT_EQ(Utf8(reinterpret_cast<const DRIVER_INFO_3W*>(buffer.data())->pName), "Orvex Series");
    EXPECT_FALSE(GetPrinterDriverW(handle, nullptr, 6, buffer.data(), needed, &needed));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_LEVEL});
    EXPECT_FALSE(GetPrinterDriverW(nullptr, nullptr, 3, buffer.data(), needed, &needed));
    EXPECT_EQ(GetLastError(), 6u);
}

TEST_F(SpoolerTest, KeepsTypedPrinterData) {
    const HANDLE handle = OpenForWriting();
    BYTE name[] = "Versand";
    ASSERT_EQ(SetPrinterDataExA(handle, "Label Sizes\\258", "name", REG_SZ, name, sizeof name), 0u);
    BYTE buffer[64] = {};
    DWORD type = 0;
    DWORD needed = 0;
    EXPECT_EQ(GetPrinterDataExA(handle, "Label Sizes\\258", "name", &type, buffer, 7, &needed), 234u);
    EXPECT_EQ(needed, 8u);
    EXPECT_EQ(type, DWORD{REG_SZ});
    EXPECT_EQ(buffer[0], 0) << "a buffer that is too small is left alone";
    EXPECT_EQ(GetPrinterDataExA(handle, "Label Sizes\\258", "name", nullptr, buffer, 8, &needed), 0u);
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "Versand");
    EXPECT_EQ(GetPrinterDataExA(handle, "Label Sizes\\258", "width", &type, buffer, 8, &needed), 2u);
    EXPECT_EQ(GetPrinterDataExA(handle, "Label Sizes\\259", "name", &type, buffer, 8, &needed), 2u);
}

TEST_F(SpoolerTest, ChangesDataOnlyThroughHandlesThatMayAdminister) {
    const HANDLE reader = OpenByCall(u"Etikett 1", GENERIC_READ);
    BYTE value = 0;
    EXPECT_EQ(SetPrinterDataExA(reader, "Key", "name", REG_BINARY, &value, 1), 5u);
    const HANDLE writer = OpenByCall(u"Etikett 1", PRINTER_ALL_ACCESS);
    EXPECT_EQ(SetPrinterDataExA(writer, "Key", "name", REG_BINARY, &value, 1), 0u);
    EXPECT_EQ(SetPrinterDataExA(nullptr, "Key", "name", REG_BINARY, &value, 1), 6u);
    DWORD needed = 0;
    EXPECT_EQ(GetPrinterDataExA(nullptr, "Key", "name", nullptr, &value, 1, &needed), 6u);
}

TEST_F(SpoolerTest, EnumeratesSortedSubKeysUpToAnEmptyName) {
    printer_.data.SetNumber("Label Sizes\\300", "version", 1);
    printer_.data.SetNumber("Label Sizes\\258", "version", 1);
    printer_.data.SetNumber("Label Sizes\\258\\deeper", "version", 1);
    printer_.data.SetNumber("Label Sizes Too", "version", 1);
    const HANDLE handle = OpenForWriting();
    DWORD needed = 0;
    EXPECT_EQ(EnumPrinterKeyW(handle, L"Label Sizes", nullptr, 0, &needed), 234u);
    ASSERT_EQ(needed, sizeof u"258\000300\0");
    char16_t names[9];
    ASSERT_EQ(EnumPrinterKeyW(handle, L"Label Sizes", reinterpret_cast<LPWSTR>(names), sizeof names, &needed),
              0u);
    EXPECT_EQ(std::u16string(names, 9), std::u16string(u"258\000300\0", 9));
    EXPECT_EQ(EnumPrinterKeyW(handle, L"Forms", nullptr, 0, &needed), 2u);
}

TEST_F(SpoolerTest, RefusesASizeWithoutABuffer) {
    printer_.data.SetNumber("Label Sizes\\258", "version", 1);
    const HANDLE handle = OpenForWriting();
    DWORD needed = 0;
    EXPECT_FALSE(GetPrinterW(handle, 2, nullptr, 1, &needed));
    EXPECT_EQ(GetLastError(), 1784u);
    EXPECT_FALSE(GetPrinterDriverW(handle, nullptr, 3, nullptr, 1, &needed));
    EXPECT_EQ(GetLastError(), 1784u);
    EXPECT_EQ(EnumPrinterKeyW(handle, L"Label Sizes", nullptr, 1, &needed), 1784u);
    EXPECT_EQ(GetPrinterDataExA(handle, "Label Sizes\\258", "version", nullptr, nullptr, 1, &needed), 1784u);
    EXPECT_EQ(needed, 0u);
}

TEST_F(SpoolerTest, MakesTheNthCallOfAFunctionFail) {
    const HANDLE handle = OpenForWriting();
    EXPECT_TRUE(Write(handle, 1));
    spooler_.FailCall("WritePrinter", 2, ERROR_DISK_FULL);
    EXPECT_TRUE(Write(handle, 1));
    EXPECT_FALSE(Write(handle, 1));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
    EXPECT_TRUE(Write(handle, 1));
    EXPECT_EQ(spooler_.Calls("WritePrinter"), 4);
    EXPECT_EQ(printer_.written, "aaa");
}

TEST_F(SpoolerTest, MakesEveryFunctionFailWithTheGivenCode) {
    const HANDLE handle = OpenForWriting();
    for (const char* function : {"OpenPrinterW", "GetPrinterW", "GetPrinterDriverW", "EnumPrinterKeyW",
                                 "GetPrinterDataExA", "SetPrinterDataExA", "CloseHandle"}) {
        spooler_.FailCall(function, 1, 77);
    }
    DWORD needed = 0;
    BYTE value = 0;
    EXPECT_EQ(OpenByCall(u"Etikett 1", GENERIC_READ), nullptr);
    EXPECT_EQ(GetLastError(), 77u);
    EXPECT_FALSE(GetPrinterW(handle, 2, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), 77u);
    EXPECT_FALSE(GetPrinterDriverW(handle, nullptr, 3, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), 77u);
    EXPECT_EQ(EnumPrinterKeyW(handle, L"Label Sizes", nullptr, 0, &needed), 77u);
    EXPECT_EQ(GetPrinterDataExA(handle, "Key", "name", nullptr, &value, 1, &needed), 77u);
    EXPECT_EQ(SetPrinterDataExA(handle, "Key", "name", REG_BINARY, &value, 1), 77u);
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_EQ(GetLastError(), 77u);
    EXPECT_EQ(spooler_.OpenHandles(), 1u);
}

TEST(SpoolerLifetime, ThereIsOneSpoolerAtATime) {
    {
        const Spooler first;
        EXPECT_THROW(Spooler(), std::logic_error);
    }
    EXPECT_NO_THROW(Spooler());
}

TEST(SpoolerLifetime, ItsEndRestoresTheSystemsFunctions) {
    {
        Spooler spooler;
        spooler.Attach();
        spooler.AddPrinter("Etikett 1", "Orvex Series");
        EXPECT_NE(OpenByCall(u"Etikett 1", GENERIC_READ), nullptr);
    }
    EXPECT_EQ(OpenByCall(u"Etikett 1", GENERIC_READ), nullptr);
}

}  // namespace orvex::tools
