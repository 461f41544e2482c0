#include "tools/host/spooler.h"

#include <cstring>

#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace {

// Range of the handles, which no kernel object has. Each is given out once.
constexpr uintptr_t kFirstHandle = 0x5F000000;
constexpr uintptr_t kHandleStep = 4;

constexpr DWORD kMayAdminister = PRINTER_ACCESS_ADMINISTER | GENERIC_ALL;

BOOL Refuse(DWORD code) {
    SetLastError(code);
    return FALSE;
}

template <typename Info>
struct InfoText {
    LPWSTR Info::*member;
    std::u16string text;
};

// Returns whether a size was given for a buffer that is null.
bool LacksBuffer(const void* buffer, DWORD size) {
    return buffer == nullptr && size != 0;
}

// Answers a query for a record as Windows does: with the record followed by its texts, or with the size
// needed for them.
template <typename Info>
BOOL AnswerRecord(Info info, std::initializer_list<InfoText<Info>> texts, LPBYTE buffer, DWORD size,
                  LPDWORD needed) {
    if (LacksBuffer(buffer, size)) return Refuse(ERROR_INVALID_USER_BUFFER);
    *needed = sizeof info;
    for (const auto& each : texts) *needed += static_cast<DWORD>((each.text.size() + 1) * sizeof(WCHAR));
    if (size < *needed) return Refuse(ERROR_INSUFFICIENT_BUFFER);
    BYTE* end = buffer + sizeof info;
    for (const auto& each : texts) {
        const size_t bytes = (each.text.size() + 1) * sizeof(WCHAR);
        memcpy(end, each.text.c_str(), bytes);
        info.*each.member = reinterpret_cast<LPWSTR>(end);
        end += bytes;
    }
    memcpy(buffer, &info, sizeof info);
    return TRUE;
}

// Answers a query for bytes. Returns ERROR_MORE_DATA and the size needed if they do not all fit.
DWORD AnswerBytes(std::string_view bytes, void* buffer, DWORD size, LPDWORD needed) {
    if (LacksBuffer(buffer, size)) return ERROR_INVALID_USER_BUFFER;
    *needed = static_cast<DWORD>(bytes.size());
    if (size < bytes.size()) return ERROR_MORE_DATA;
    if (!bytes.empty()) memcpy(buffer, bytes.data(), bytes.size());
    return ERROR_SUCCESS;
}

}  // namespace

struct Spooler::Replacements {
    static BOOL WINAPI Write(HANDLE handle, LPVOID bytes, DWORD size, LPDWORD written) {
        DWORD code = ERROR_INVALID_HANDLE;
        *written = 0;
        const OpenPrinter* open = current->Enter("WritePrinter", handle, &code);
        if (open == nullptr) return Refuse(code);
        Printer& printer = *open->printer;
        const std::string_view taken(static_cast<const char*>(bytes), size);
        if (!printer.sink) {
            printer.written += taken;
        } else if (!printer.sink(taken)) {
            return Refuse(ERROR_WRITE_FAULT);
        }
        *written = size;
        return TRUE;
    }

    static BOOL WINAPI Open(LPWSTR name, LPHANDLE handle, LPPRINTER_DEFAULTSW defaults) {
        DWORD code = 0;
        *handle = nullptr;
        if (current->Fails("OpenPrinterW", &code)) return Refuse(code);
        if (name == nullptr) return Refuse(ERROR_INVALID_PRINTER_NAME);
        *handle =
            current->Open(Utf8(name), defaults != nullptr ? defaults->DesiredAccess : PRINTER_ACCESS_USE);
        return *handle != nullptr ? TRUE : Refuse(ERROR_INVALID_PRINTER_NAME);
    }

    static BOOL WINAPI Get(HANDLE handle, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed) {
        DWORD code = ERROR_INVALID_HANDLE;
        *needed = 0;
        const OpenPrinter* open = current->Enter("GetPrinterW", handle, &code);
        if (open == nullptr) return Refuse(code);
        if (level != 2) return Refuse(ERROR_INVALID_LEVEL);
        using Info = PRINTER_INFO_2W;
        return AnswerRecord<Info>({},
                                  {{&Info::pPrinterName, Wide(open->printer->name)},
                                   {&Info::pDriverName, Wide(open->printer->driverName)},
                                   {&Info::pShareName, u""},
                                   {&Info::pPortName, u"FILE:"},
                                   {&Info::pComment, u""},
                                   {&Info::pLocation, u""},
                                   {&Info::pSepFile, u""},
                                   {&Info::pPrintProcessor, u"winprint"},
                                   {&Info::pDatatype, u"RAW"},
                                   {&Info::pParameters, u""}},
                                  buffer, size, needed);
    }

    static BOOL WINAPI GetDriver(HANDLE handle, LPWSTR, DWORD level, LPBYTE buffer, DWORD size,
                                 LPDWORD needed) {
        DWORD code = ERROR_INVALID_HANDLE;
        *needed = 0;
        const OpenPrinter* open = current->Enter("GetPrinterDriverW", handle, &code);
        if (open == nullptr) return Refuse(code);
        if (level != 3) return Refuse(ERROR_INVALID_LEVEL);
        using Info = DRIVER_INFO_3W;
        Info info = {};
        info.cVersion = 3;
        return AnswerRecord<Info>(info,
                                  {{&Info::pName, Wide(open->printer->driverName)},
                                   {&Info::pEnvironment, u"Windows x64"},
                                   {&Info::pDriverPath, u"orvexgdi.dll"},
                                   {&Info::pDataFile, u""},
                                   {&Info::pConfigFile, u""},
                                   {&Info::pHelpFile, u""},
                                   {&Info::pMonitorName, u""},
                                   {&Info::pDefaultDataType, u"RAW"}},
                                  buffer, size, needed);
    }

    static DWORD WINAPI EnumKey(HANDLE handle, LPCWSTR key, LPWSTR subKeys, DWORD size, LPDWORD needed) {
        DWORD code = ERROR_INVALID_HANDLE;
        *needed = 0;
        const OpenPrinter* open = current->Enter("EnumPrinterKeyW", handle, &code);
        if (open == nullptr) return code;
        const PrinterData& data = open->printer->data;
        const std::string path = NarrowFromUtf8(Utf8(key));
        if (!data.HasKey(path)) return ERROR_FILE_NOT_FOUND;
        std::u16string names;
        for (const std::string& name : data.SubKeys(path)) names += Wide(Utf8FromNarrow(name)) + u'\0';
        names += u'\0';
        return AnswerBytes({reinterpret_cast<const char*>(names.data()), names.size() * sizeof(char16_t)},
                           subKeys, size, needed);
    }

    static DWORD WINAPI GetData(HANDLE handle, LPCSTR key, LPCSTR name, LPDWORD type, LPBYTE buffer,
                                DWORD size, LPDWORD needed) {
        DWORD code = ERROR_INVALID_HANDLE;
        *needed = 0;
        const OpenPrinter* open = current->Enter("GetPrinterDataExA", handle, &code);
        if (open == nullptr) return code;
        const PrinterValue* value = open->printer->data.Find(key, name);
        if (value == nullptr) return ERROR_FILE_NOT_FOUND;
        if (type != nullptr) *type = value->type;
        return AnswerBytes(value->bytes, buffer, size, needed);
    }

    static DWORD WINAPI SetData(HANDLE handle, LPCSTR key, LPCSTR name, DWORD type, LPBYTE bytes,
                                DWORD size) {
        DWORD code = ERROR_INVALID_HANDLE;
        const OpenPrinter* open = current->Enter("SetPrinterDataExA", handle, &code);
        if (open == nullptr) return code;
        if ((open->access & kMayAdminister) == 0) return ERROR_ACCESS_DENIED;
        open->printer->data.Set(key, name, {type, std::string(reinterpret_cast<const char*>(bytes), size)});
        return ERROR_SUCCESS;
    }

    static BOOL WINAPI Close(HANDLE handle) {
        if (!current->IsOurs(handle)) return current->patches_.Original("CloseHandle", &Close)(handle);
        DWORD code = 0;
        if (current->Fails("CloseHandle", &code)) return Refuse(code);
        return current->Close(handle) ? TRUE : Refuse(ERROR_INVALID_HANDLE);
    }
};

void Spooler::Attach(HMODULE module) {
    patches_.Attach(module, {{"WritePrinter", &Replacements::Write},
                             {"OpenPrinterW", &Replacements::Open},
                             {"GetPrinterW", &Replacements::Get},
                             {"GetPrinterDriverW", &Replacements::GetDriver},
                             {"EnumPrinterKeyW", &Replacements::EnumKey},
                             {"GetPrinterDataExA", &Replacements::GetData},
                             {"SetPrinterDataExA", &Replacements::SetData},
                             {"CloseHandle", &Replacements::Close}});
}

Spooler::Printer& Spooler::AddPrinter(std::string name, std::string driverName) {
    return printers_.emplace_back(Printer{std::move(name), std::move(driverName), {}, {}, {}});
}

HANDLE Spooler::Open(std::string_view name, DWORD access) {
    for (Printer& printer : printers_) {
        if (printer.name != name) continue;
        const auto handle = reinterpret_cast<HANDLE>(kFirstHandle + kHandleStep * handlesGiven_++);
        open_[handle] = {&printer, access};
        return handle;
    }
    return nullptr;
}

bool Spooler::Close(HANDLE handle) {
    return Find(handle, "closing") != nullptr && open_.erase(handle) == 1;
}

void Spooler::FailCall(const std::string& function, int nth, DWORD code) {
    Function& failing = functions_[function];
    failing.failures[failing.calls + nth] = code;
}

int Spooler::Calls(const std::string& function) const {
    const auto found = functions_.find(function);
    return found == functions_.end() ? 0 : found->second.calls;
}

bool Spooler::Fails(const char* name, DWORD* code) {
    Function& function = functions_[name];
    ++function.calls;
    const auto failure = function.failures.find(function.calls);
    if (failure == function.failures.end()) return false;
    *code = failure->second;
    return true;
}

const Spooler::OpenPrinter* Spooler::Enter(const char* function, HANDLE handle, DWORD* code) {
    return Fails(function, code) ? nullptr : Find(handle, function);
}

const Spooler::OpenPrinter* Spooler::Find(HANDLE handle, const char* function) {
    const auto found = open_.find(handle);
    if (found != open_.end()) return &found->second;
    misuses_.push_back(function + std::string(IsOurs(handle) ? ": the printer handle is closed already"
                                                             : ": this is no printer handle"));
    return nullptr;
}

bool Spooler::IsOurs(HANDLE handle) const {
    const auto value = reinterpret_cast<uintptr_t>(handle);
    return value >= kFirstHandle && value < kFirstHandle + kHandleStep * handlesGiven_;
}

}  // namespace orvex::tools
