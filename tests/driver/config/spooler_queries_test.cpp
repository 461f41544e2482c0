#include "driver/config/spooler_queries.h"

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
    // Bytes that the spooler asks for the printer's record.
    DWORD RecordBytes() {
        DWORD needed = 0;
        GetPrinterW(handle_, 2, nullptr, 0, &needed);
        return needed;
    }
};

constexpr size_t kNameBytes = sizeof u"Etikett 1";

// Answers with a record whose texts lie elsewhere.
BOOL WINAPI AnswerBareRecord(HANDLE, DWORD, LPBYTE buffer, DWORD size, LPDWORD needed) {
    static WCHAR name[] = L"Elsewhere";
    *needed = sizeof(PRINTER_INFO_2W);
    if (size < *needed) return FALSE;
    PRINTER_INFO_2W info = {};
    info.pPrinterName = name;
    memcpy(buffer, &info, sizeof info);
    return TRUE;
}

}  // namespace

TEST_F(SpoolerQueries, ThePrintersNameIsCopied) {
    const HeapArray<WCHAR> name = GetPrinterName(handle_);
    ASSERT_TRUE(name);
    EXPECT_TRUE(SameText({name.get(), TextLength(name.get())}, {L"Etikett 1", 9}));
    EXPECT_THAT(log_.TakeLines(), IsEmpty());
}

TEST_F(SpoolerQueries, TheNameMayLieOutsideTheRecord) {
    const ImportPatch answer(nullptr, "GetPrinterW", reinterpret_cast<void*>(&AnswerBareRecord));
    const HeapArray<WCHAR> name = GetPrinterName(handle_);
    ASSERT_TRUE(name);
    EXPECT_TRUE(SameText({name.get(), TextLength(name.get())}, {L"Elsewhere", 9}));
}

TEST_F(SpoolerQueries, AnUnknownSizeIsLoggedAndStaysTheLastError) {
    spooler_.FailCall("GetPrinterW", 1, 0x1234);
    EXPECT_FALSE(GetPrinterName(handle_));
    EXPECT_EQ(GetLastError(), 0x1234u);
    EXPECT_EQ(spooler_.Calls("GetPrinterW"), 1);
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] GetPrinterName: GetPrinter failed: 0x1234"));
}

TEST_F(SpoolerQueries, AnUnknownRecordIsLoggedAndStaysTheLastError) {
    spooler_.FailCall("GetPrinterW", 2, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(GetPrinterName(handle_));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] GetPrinterName: GetPrinter failed: 0x5"));
}

TEST_F(SpoolerQueries, ShortMemoryForTheRecordOrTheNameIsLoggedAndTheLastError) {
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

TEST_F(SpoolerQueries, AHandleThatComesWithARefusalIsNone) {
    const ImportPatch refusal(
        nullptr, "OpenPrinterW",
        reinterpret_cast<void*>(+[](LPWSTR, LPHANDLE handle, LPPRINTER_DEFAULTSW) WINAPI -> BOOL {
            *handle = reinterpret_cast<HANDLE>(4711);
            return FALSE;
        }));
    EXPECT_EQ(OpenPrinterWithAccess(handle_, GENERIC_READ), nullptr);
}

TEST_F(SpoolerQueries, WithoutTheNameNothingIsOpened) {
    spooler_.FailCall("GetPrinterW", 1, 0x1234);
    EXPECT_EQ(OpenPrinterWithAccess(handle_, GENERIC_READ), nullptr);
    EXPECT_EQ(GetLastError(), 0x1234u);
    EXPECT_EQ(spooler_.Calls("OpenPrinterW"), 0);
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Error] GetPrinterName: GetPrinter failed: 0x1234"));
}

}  // namespace orvex
