// The native build has no spooler and no graphics engine: each call fails until a host points its slot at a
// function of its own.

#include "platform/posix/slots.h"

namespace orvex::posix {

namespace {

template <typename Result>
Result Unavailable(DWORD code = ERROR_CALL_NOT_IMPLEMENTED) {
    SetLastError(code);
    return Result{};
}

}  // namespace

WIN32_FUNCTION(BOOL, WritePrinter, (HANDLE printer, LPVOID bytes, DWORD size, LPDWORD written),
               (printer, bytes, size, written)) {
    (void)printer, (void)bytes, (void)size, (void)written;
    return Unavailable<BOOL>();
}

WIN32_FUNCTION(BOOL, GetPrinterDriverW,
               (HANDLE printer, LPWSTR environment, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed),
               (printer, environment, level, buffer, size, needed)) {
    (void)printer, (void)environment, (void)level, (void)buffer, (void)size, (void)needed;
    return Unavailable<BOOL>();
}

WIN32_FUNCTION(BOOL, OpenPrinterW, (LPWSTR name, LPHANDLE printer, LPPRINTER_DEFAULTSW defaults),
               (name, printer, defaults)) {
    (void)name, (void)printer, (void)defaults;
    return Unavailable<BOOL>();
}

WIN32_FUNCTION(BOOL, GetPrinterW, (HANDLE printer, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed),
               (printer, level, buffer, size, needed)) {
    (void)printer, (void)level, (void)buffer, (void)size, (void)needed;
    return Unavailable<BOOL>();
}

WIN32_FUNCTION(DWORD, EnumPrinterKeyW,
               (HANDLE printer, LPCWSTR key, LPWSTR subKeys, DWORD size, LPDWORD needed),
               (printer, key, subKeys, size, needed)) {
    (void)printer, (void)key, (void)subKeys, (void)size, (void)needed;
    return ERROR_CALL_NOT_IMPLEMENTED;
}

WIN32_FUNCTION(DWORD, GetPrinterDataExA,
               (HANDLE printer, LPCSTR key, LPCSTR value, LPDWORD type, LPBYTE data, DWORD size,
                LPDWORD needed),
               (printer, key, value, type, data, size, needed)) {
    (void)printer, (void)key, (void)value, (void)type, (void)data, (void)size, (void)needed;
    return ERROR_CALL_NOT_IMPLEMENTED;
}

WIN32_FUNCTION(DWORD, SetPrinterDataExA,
               (HANDLE printer, LPCSTR key, LPCSTR value, DWORD type, LPBYTE data, DWORD size),
               (printer, key, value, type, data, size)) {
    (void)printer, (void)key, (void)value, (void)type, (void)data, (void)size;
    return ERROR_CALL_NOT_IMPLEMENTED;
}

WIN32_FUNCTION(HBITMAP, EngCreateBitmap, (SIZEL size, LONG width, ULONG format, ULONG flags, PVOID bits),
               (size, width, format, flags, bits)) {
    (void)size, (void)width, (void)format, (void)flags, (void)bits;
    return Unavailable<HBITMAP>();
}

WIN32_FUNCTION(BOOL, EngAssociateSurface, (HSURF surface, HDEV device, FLONG hooks),
               (surface, device, hooks)) {
    (void)surface, (void)device, (void)hooks;
    return Unavailable<BOOL>();
}

WIN32_FUNCTION(BOOL, EngDeleteSurface, (HSURF surface), (surface)) {
    (void)surface;
    return Unavailable<BOOL>();
}

WIN32_FUNCTION(BOOL, EngEraseSurface, (SURFOBJ * surface, RECTL* area, ULONG color), (surface, area, color)) {
    (void)surface, (void)area, (void)color;
    return Unavailable<BOOL>();
}

WIN32_FUNCTION(HPALETTE, EngCreatePalette,
               (ULONG mode, ULONG colors, ULONG* entries, FLONG red, FLONG green, FLONG blue),
               (mode, colors, entries, red, green, blue)) {
    (void)mode, (void)colors, (void)entries, (void)red, (void)green, (void)blue;
    return Unavailable<HPALETTE>();
}

}  // namespace orvex::posix
