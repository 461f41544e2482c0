#include "driver/config/label_sizes.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "driver/config/device_mode.h"
#include "driver/config/spooler.h"
#include "driver/support/handle.h"
#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

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
        DWORD needed = 0;
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
    char key_[32];  // of the label's data
};

// The numbers of the printer's labels, as its sub-keys name them.
class LabelNumbers {
  public:
    // Asks the spooler. Returns 0 or a system error code; a printer without a list has no numbers, which is
    // logged but is not a failure.
    DWORD Enumerate(HANDLE printer) {
        DWORD needed = 0;
        DWORD code = EnumPrinterKeyW(printer, kListKey, nullptr, 0, &needed);
        if (code != ERROR_MORE_DATA) {
            LogError("Could not find label list in registry: 0x%x", code);
            return code == ERROR_FILE_NOT_FOUND ? DWORD{ERROR_SUCCESS} : code;
        }
        // The names end with two zero characters even if the spooler writes every byte, or half a character.
        names_ = AllocateZeroedArray<WCHAR>(needed / sizeof(WCHAR) + 3);
        code = names_ ? EnumPrinterKeyW(printer, kListKey, names_.get(), needed, &needed)
                      : DWORD{ERROR_NOT_ENOUGH_MEMORY};
        if (code != ERROR_SUCCESS) {
            LogError("Could not read label list from registry: 0x%x", code);
            return code;
        }
        next_ = names_.get();
        return ERROR_SUCCESS;
    }

    // Gets the next number, 0 for a name that is no paper number. Returns false at the end.
    bool Next(uint16_t* number) {
        if (next_ == nullptr || *next_ == 0) return false;
        *number = PaperNumber(next_);
        next_ += TextLength(next_) + 1;
        return true;
    }

  private:
    static uint16_t PaperNumber(const WCHAR* name) {
        uint32_t number = 0;
        for (; *name != 0; ++name) {
            if (*name < L'0' || *name > L'9') return 0;
            number = number * 10 + static_cast<uint32_t>(*name - L'0');
            if (number > UINT16_MAX) return 0;
        }
        return static_cast<uint16_t>(number);
    }

    HeapArray<WCHAR> names_;
    const WCHAR* next_ = nullptr;
};

DWORD ReadValues(const LabelData& data, LabelSize* entry) {
    DWORD version = 0;
    DWORD code = data.Read("version", REG_DWORD, &version, sizeof version);
    if (code != ERROR_SUCCESS) return code;
    if (version != kLayoutVersion) {
        LogError("Unknown label version: %d", version);
        return kErrorLabelVersion;
    }
    code = data.ReadText("name", entry->name);
    if (code == ERROR_SUCCESS) code = data.ReadText("width", entry->width);
    if (code == ERROR_SUCCESS) code = data.ReadText("length", entry->length);
    if (code == ERROR_SUCCESS) code = data.Read("units", REG_DWORD, &entry->units, sizeof entry->units);
    return code;
}

}  // namespace

bool HasLabelList(HANDLE printer) {
    DWORD needed = 0;
    return EnumPrinterKeyW(printer, kListKey, nullptr, 0, &needed) == ERROR_MORE_DATA;
}

DWORD ReadPrinterLabelList(HANDLE printer, LabelSize* entries, uint32_t capacity, uint32_t* count) {
    const TraceScope trace("ReadPrinterLabelList");
    *count = 0;
    LabelNumbers numbers;
    const DWORD code = numbers.Enumerate(printer);
    uint16_t number = 0;
    while (*count < capacity && numbers.Next(&number)) {
        if (ReadLabel(printer, &entries[*count], number) == ERROR_SUCCESS) ++*count;
    }
    return trace.Code(code);
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
    return data.OpenError() != ERROR_SUCCESS ? data.OpenError() : ReadValues(data, entry);
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
    LabelNumbers numbers;
    const DWORD code = numbers.Enumerate(printer);
    uint16_t largest = kPaperDefault;
    for (uint16_t each = 0; numbers.Next(&each);) largest = std::max(largest, each);
    if (largest == UINT16_MAX) return ERROR_ARITHMETIC_OVERFLOW;
    *number = static_cast<uint16_t>(largest + 1);
    return code;
}

}  // namespace orvex
