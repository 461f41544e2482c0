#include "driver/config/spooler.h"

#include <cstring>

#include "driver/support/text.h"
#include "tests/driver/config/printer_test.h"
#include "tests/kit/allocation_failure.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SpoolerQueries : public PrinterTest {
  protected:
    // Returns the bytes that the spooler needs for the printer's record.
    DWORD RecordBytes() {
        DWORD needed = 0;
        GetPrinterW(handle_, 2, nullptr, 0, &needed);
        return needed;
    }
};

constexpr size_t kNameBytes = sizeof u"Etikett 1";

// Answers with a record whose texts are outside it.
BOOL WINAPI AnswerBareRecord(HANDLE, DWORD, LPBYTE buffer, DWORD size, LPDWORD needed) {
    static WCHAR name[] = L"Elsewhere";
    *needed = sizeof(PRINTER_INFO_2W);
    if (size < *needed) return FALSE;
    PRINTER_INFO_2W info = {};
    info.pPrinterName = name;
    memcpy(buffer, &info, sizeof info);
    return TRUE;
}

// The answer of the replaced GetPrinterDriverW; one test runs at a time.
struct {
    DWORD needed;
    BOOL result;
    const WCHAR* name;
    int calls;
} driverAnswer;

BOOL WINAPI AnswerDriver(HANDLE printer, LPWSTR environment, DWORD level, LPBYTE buffer, DWORD size,
                         LPDWORD needed) {
    EXPECT_EQ(printer, reinterpret_cast<HANDLE>(0x1234));
    EXPECT_EQ(environment, nullptr);
    EXPECT_EQ(level, 3u);
    *needed = driverAnswer.needed;
    if (driverAnswer.calls++ == 0) {
        EXPECT_EQ(buffer, nullptr);
        EXPECT_EQ(size, 0u);
        return FALSE;
    }
    EXPECT_EQ(size, driverAnswer.needed);
    DRIVER_INFO_3W info = {};
    info.pName = const_cast<WCHAR*>(driverAnswer.name);
    memcpy(buffer, &info, sizeof info);
    return driverAnswer.result;
}

class PrinterDriverName : public testing::Test {
  protected:
    PrinterDriverName() { driverAnswer = {kInfoBytes, TRUE, L"Orvex Series", 0}; }

    static constexpr DWORD kInfoBytes = sizeof(DRIVER_INFO_3W) + 72;

    std::u16string Name() {
        const HeapArray<WCHAR> name = GetPrinterDriverName(reinterpret_cast<HANDLE>(0x1234));
        return name ? reinterpret_cast<const char16_t*>(name.get()) : u"(none)";
    }

    ImportPatch patch_{nullptr, "GetPrinterDriverW", reinterpret_cast<void*>(&AnswerDriver)};
};

}  // namespace

TEST_F(SpoolerQueries, ThePrintersNameIsCopied) {
    const HeapArray<WCHAR> name = GetPrinterName(handle_);
    ASSERT_TRUE(name);
    EXPECT_TRUE(WideView(name.get()) == L"Etikett 1");
    EXPECT_THAT(log_.TakeLines(), IsEmpty());
}

TEST_F(SpoolerQueries, TheNameMayLieOutsideTheRecord) {
    const ImportPatch answer(nullptr, "GetPrinterW", reinterpret_cast<void*>(&AnswerBareRecord));
    const HeapArray<WCHAR> name = GetPrinterName(handle_);
    ASSERT_TRUE(name);
    EXPECT_TRUE(WideView(name.get()) == L"Elsewhere");
}

TEST_F(SpoolerQueries, AFailureToGetTheSizeIsLoggedAndTheLastError) {
    spooler_.FailCall("GetPrinterW", 1, 0x1234);
    EXPECT_FALSE(GetPrinterName(handle_));
    EXPECT_EQ(GetLastError(), 0x1234u);
    EXPECT_EQ(spooler_.Calls("GetPrinterW"), 1);
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] GetPrinterName: GetPrinter failed: 0x1234"));
}

TEST_F(SpoolerQueries, AFailureToGetTheRecordIsLoggedAndTheLastError) {
    spooler_.FailCall("GetPrinterW", 2, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(GetPrinterName(handle_));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] GetPrinterName: GetPrinter failed: 0x5"));
}

TEST_F(SpoolerQueries, RunningOutOfMemoryForTheRecordOrTheNameIsLoggedAndTheLastError) {
    for (const size_t bytes : {size_t{RecordBytes()}, kNameBytes}) {
        const AllocationFailure memory(bytes);
        EXPECT_FALSE(GetPrinterName(handle_));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
        EXPECT_EQ(memory.Count(), 1);
        EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] GetPrinterName: malloc failed"));
    }
}

TEST_F(SpoolerQueries, OpensThePrinterOnceMore) {
    SetLastError(ERROR_GEN_FAILURE);
    const HANDLE second = OpenPrinterWithAccess(handle_, GENERIC_READ);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_NE(second, handle_);
    EXPECT_EQ(spooler_.OpenHandles(), 2u);
    EXPECT_TRUE(CloseHandle(second));
    EXPECT_THAT(log_.TakeLines(), IsEmpty());
}

TEST_F(SpoolerQueries, APrinterThatDoesNotOpenIsLoggedWithCodeAndAccess) {
    spooler_.FailCall("OpenPrinterW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(OpenPrinterWithAccess(handle_, PRINTER_ALL_ACCESS), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(LastFailure(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] OpenPrinterWithAccess: error 5 (983052)"));
}

TEST_F(SpoolerQueries, AFailureWithoutACodeIsStillAFailure) {
    spooler_.FailCall("OpenPrinterW", 1, ERROR_SUCCESS);
    EXPECT_EQ(OpenPrinterWithAccess(handle_, GENERIC_READ), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_NE(LastFailure(), DWORD{ERROR_SUCCESS});
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] OpenPrinterWithAccess: error 0 (-2147483648)"));
}

TEST_F(SpoolerQueries, AHandleThatComesWithAFailureIsIgnored) {
    const ImportPatch refusal(
        nullptr, "OpenPrinterW",
        reinterpret_cast<void*>(+[](LPWSTR, LPHANDLE handle, LPPRINTER_DEFAULTSW) WINAPI -> BOOL {
            *handle = reinterpret_cast<HANDLE>(4711);
            return FALSE;
        }));
    EXPECT_EQ(OpenPrinterWithAccess(handle_, GENERIC_READ), nullptr);
}

TEST_F(SpoolerQueries, NothingIsOpenedWithoutTheName) {
    spooler_.FailCall("GetPrinterW", 1, 0x1234);
    EXPECT_EQ(OpenPrinterWithAccess(handle_, GENERIC_READ), nullptr);
    EXPECT_EQ(GetLastError(), 0x1234u);
    EXPECT_EQ(spooler_.Calls("OpenPrinterW"), 0);
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] GetPrinterName: GetPrinter failed: 0x1234"));
}

TEST_F(PrinterDriverName, IsCopiedFromTheDriversRecord) {
    EXPECT_EQ(Name(), u"Orvex Series");
    EXPECT_EQ(driverAnswer.calls, 2);
}

TEST_F(PrinterDriverName, IsUnknownWhenTheFillingCallFails) {
    driverAnswer.result = FALSE;
    EXPECT_EQ(Name(), u"(none)");
}

TEST_F(PrinterDriverName, IsUnknownWhenTheFillingCallAnswers1797) {
    driverAnswer.result = 1797;
    EXPECT_EQ(Name(), u"(none)");
    driverAnswer.calls = 0;
    driverAnswer.result = 1796;
    EXPECT_EQ(Name(), u"Orvex Series") << "any other result is a success";
}

TEST_F(PrinterDriverName, IsUnknownWhenTheSpoolerNeedsNoRoomForIt) {
    driverAnswer.needed = 0;
    EXPECT_EQ(Name(), u"(none)");
    EXPECT_EQ(driverAnswer.calls, 1);
}

TEST_F(PrinterDriverName, MayLieOutsideTheRecord) {
    driverAnswer.needed = sizeof(DRIVER_INFO_3W);
    EXPECT_EQ(Name(), u"Orvex Series");
    driverAnswer.calls = 0;
    driverAnswer.needed = sizeof(DRIVER_INFO_3W) - 1;
    EXPECT_EQ(Name(), u"(none)");
}

TEST_F(PrinterDriverName, IsUnknownWhenTheRecordHasNone) {
    driverAnswer.name = nullptr;
    EXPECT_EQ(Name(), u"(none)");
}

TEST_F(PrinterDriverName, IsUnknownWhenOutOfMemory) {
    {
        const AllocationFailure memory(kInfoBytes);
        EXPECT_EQ(Name(), u"(none)");
        EXPECT_EQ(memory.Count(), 1);
    }
    driverAnswer.calls = 0;
    const AllocationFailure memory(sizeof u"Orvex Series");
    EXPECT_EQ(Name(), u"(none)");
    EXPECT_EQ(memory.Count(), 1);
}

}  // namespace orvex
