#include "driver/config/label_sizes.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "driver/config/device_mode.h"
#include "driver/config/spooler.h"
#include "driver/support/handle.h"
#include "driver/support/lengths.h"
#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

// Texts of fewer bytes, such as the length of a label, are read without an allocation: a label keeps its size
// when the process is out of memory.
constexpr size_t kShortText = 64;

constexpr double kBeyond64Bits = 9223372036854775808.0;  // 2^63

bool IsDecimal(std::string_view text) {
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    return text.find_first_not_of("0123456789.") == std::string_view::npos &&
           std::count(text.begin(), text.end(), '.') <= 1;
}

double TenthsMmPerUnit(uint32_t units) {
    if (units == kUnitsInches) return kTenthsMmPerInch;
    return units == kUnitsMillimeters ? kTenthsMmPerMm : 1;
}

constexpr WCHAR kListKey[] = L"Label Sizes";
constexpr DWORD kLayoutVersion = 1;

// The printer, opened once more to read or write one label. CloseHandle releases it.
class LabelData {
  public:
    LabelData(HANDLE printer, DWORD access, uint16_t number)
        : printer_(OpenPrinterWithAccess(printer, access)),
          openError_(printer_ ? DWORD{ERROR_SUCCESS} : LastFailure()) {
        snprintf(key_, sizeof key_, "Label Sizes\\%d", number);
    }

    // Returns 0, or why the printer could not be opened.
    DWORD OpenError() const { return openError_; }

    DWORD Read(const char* value, DWORD expectedType, void* data, DWORD size) const {
        DWORD type = REG_NONE;
        DWORD needed = {};
        DWORD code =
            GetPrinterDataExA(printer_.Get(), key_, value, &type, static_cast<BYTE*>(data), size, &needed);
        if (code == ERROR_SUCCESS && type != expectedType) code = kErrorLabelType;
        if (code != ERROR_SUCCESS) LogError("Could not read label %s: 0x%x", value, code);
        return code;
    }

    // Reads a text into its field, which is terminated whatever the spooler returns.
    template <size_t N>
    DWORD ReadText(const char* value, char (&field)[N]) const {
        const DWORD code = Read(value, REG_SZ, field, N);
        field[N - 1] = '\0';
        return code;
    }

    DWORD Write(const char* value, DWORD type, const void* data, size_t size) const {
        // The spooler takes a pointer to non-const bytes, but only reads them.
        BYTE* bytes = static_cast<BYTE*>(const_cast<void*>(data));
        const DWORD code =
            SetPrinterDataExA(printer_.Get(), key_, value, type, bytes, static_cast<DWORD>(size));
        if (code != ERROR_SUCCESS) LogError("Could not set label %s: 0x%x", value, code);
        return code;
    }

    // Writes the text of a field and its terminator.
    template <size_t N>
    DWORD WriteText(const char* value, const char (&field)[N]) const {
        char text[N];
        CopyText(text, FieldText(field));
        return Write(value, REG_SZ, text, strlen(text) + 1);
    }

  private:
    OwnedHandle printer_;
    DWORD openError_;
    char key_[18];  // "Label Sizes\\65535"
};

// Returns the paper number that a sub-key names, 0 when it names none.
uint16_t PaperNumber(const WCHAR* name) {
    uint32_t number = 0;
    for (; *name != 0; ++name) {
        if (*name < L'0' || *name > L'9') return 0;
        number = number * 10 + static_cast<uint32_t>(*name - L'0');
        if (number > UINT16_MAX) return 0;
    }
    return static_cast<uint16_t>(number);
}

// Calls `use` with the paper number of each sub-key of the list. Returns 0 or a system error code; a printer
// without a list is logged, but is not a failure.
template <typename Use>
DWORD ForEachNumber(HANDLE printer, Use use) {
    DWORD needed = {};
    DWORD code = EnumPrinterKeyW(printer, kListKey, nullptr, 0, &needed);
    if (code != ERROR_MORE_DATA) {
        LogError("Could not find label list in registry: 0x%x", code);
        return code == ERROR_FILE_NOT_FOUND ? DWORD{ERROR_SUCCESS} : code;
    }
    // The names end with two zero characters even if the spooler writes every byte, or half a character.
    const HeapArray<WCHAR> names = AllocateZeroedArray<WCHAR>(needed / sizeof(WCHAR) + 3);
    code = names ? EnumPrinterKeyW(printer, kListKey, names.get(), needed, &needed)
                 : DWORD{ERROR_NOT_ENOUGH_MEMORY};
    if (code != ERROR_SUCCESS) {
        LogError("Could not read label list from registry: 0x%x", code);
        return code;
    }
    for (const WCHAR* name = names.get(); *name != 0; name += TextLength(name) + 1) use(PaperNumber(name));
    return code;
}

}  // namespace

DWORD ParseDecimal(std::string_view text, double* out) {
    if (text.data() == nullptr) return kErrorDecimalText;
    if (out == nullptr) return kErrorDecimalOut;
    if (!IsDecimal(text)) return kErrorDecimalSyntax;
    const size_t size = text.size() + 1;
    char shortCopy[kShortText];
    HeapArray<char> longCopy;
    if (size > sizeof shortCopy) {
        longCopy = AllocateArray<char>(size);
        if (!longCopy) return kErrorDecimalMemory;
    }
    char* copy = longCopy ? longCopy.get() : shortCopy;
    CopyText(copy, size, text);
    // atof expects the decimal point of the process's locale.
    if (char* point = strchr(copy, '.')) *point = *localeconv()->decimal_point;
    *out = atof(copy);
    return ERROR_SUCCESS;
}

int16_t LabelLengthTenthsMm(std::string_view text, uint32_t units) {
    double length = 0;
    ParseDecimal(text, &length);
    const double tenthsMm = length * TenthsMmPerUnit(units) + 0.5;
    // The conversion of a double to an integer is defined only for a value that the integer can hold.
    const bool fits64Bits = std::abs(tenthsMm) < kBeyond64Bits;
    return fits64Bits ? static_cast<int16_t>(static_cast<int64_t>(tenthsMm)) : int16_t{0};
}

void SetPaperSize(DEVMODEW* pub, std::string_view width, std::string_view length, uint32_t units) {
    pub->dmPaperWidth = LabelLengthTenthsMm(width, units);
    pub->dmPaperLength = LabelLengthTenthsMm(length, units);
}

bool HasLabelList(HANDLE printer) {
    DWORD needed = {};
    return EnumPrinterKeyW(printer, kListKey, nullptr, 0, &needed) == ERROR_MORE_DATA;
}

DWORD ReadPrinterLabelList(HANDLE printer, LabelSize* entries, uint32_t capacity, uint32_t* count) {
    const TraceScope trace("ReadPrinterLabelList");
    *count = 0;
    return trace.Code(ForEachNumber(printer, [&](uint16_t number) {
        if (*count < capacity && ReadLabel(printer, &entries[*count], number) == ERROR_SUCCESS) ++*count;
    }));
}

const LabelSize* LabelList::FirstOfNumber(int16_t number) const {
    for (const LabelSize& label : *this) {
        if (label.number == number) return &label;
    }
    return nullptr;
}

const LabelSize* LabelList::LastOfNumber(int16_t number) const {
    const LabelSize* last = nullptr;
    for (const LabelSize& label : *this) {
        if (label.number == number) last = &label;
    }
    return last;
}

DWORD ReadLabel(HANDLE printer, LabelSize* entry, uint16_t number) {
    *entry = {};
    entry->number = number;
    const LabelData data(printer, GENERIC_READ, number);
    DWORD code = data.OpenError();
    DWORD version = 0;
    if (code == ERROR_SUCCESS) code = data.Read("version", REG_DWORD, &version, sizeof version);
    if (code == ERROR_SUCCESS && version != kLayoutVersion) {
        LogError("Unknown label version: %d", version);
        code = kErrorLabelVersion;
    }
    if (code == ERROR_SUCCESS) code = data.ReadText("name", entry->name);
    if (code == ERROR_SUCCESS) code = data.ReadText("width", entry->width);
    if (code == ERROR_SUCCESS) code = data.ReadText("length", entry->length);
    if (code == ERROR_SUCCESS) code = data.Read("units", REG_DWORD, &entry->units, sizeof entry->units);
    return code;
}

DWORD WriteLabel(HANDLE printer, const LabelSize& entry) {
    const LabelData data(printer, PRINTER_ALL_ACCESS, entry.number);
    DWORD code = data.OpenError();
    if (code == ERROR_SUCCESS)
        code = data.Write("version", REG_DWORD, &kLayoutVersion, sizeof kLayoutVersion);
    if (code == ERROR_SUCCESS) code = data.WriteText("name", entry.name);
    if (code == ERROR_SUCCESS) code = data.WriteText("width", entry.width);
    if (code == ERROR_SUCCESS) code = data.WriteText("length", entry.length);
    if (code == ERROR_SUCCESS) code = data.Write("units", REG_DWORD, &entry.units, sizeof entry.units);
    return code;
}

DWORD NextLabelNumber(HANDLE printer, uint16_t* number) {
    uint16_t largest = kPaperDefault;
    const DWORD code = ForEachNumber(printer, [&](uint16_t each) { largest = std::max(largest, each); });
    if (largest == UINT16_MAX) return ERROR_ARITHMETIC_OVERFLOW;
    *number = static_cast<uint16_t>(largest + 1);
    return code;
}

}  // namespace orvex
