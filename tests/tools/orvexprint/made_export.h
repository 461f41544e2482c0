// Registry exports as Windows writes them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "tests/tools/common/byte_maker.h"

namespace orvex::tools::print {

inline constexpr std::string_view kExportStart = "Windows Registry Editor Version 5.00\r\n\r\n";
inline constexpr std::string_view kPrintersKey =
    "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\";

// Returns a binary value, in lines of 25 bytes that end in a backslash.
inline std::string BinaryValue(std::string_view name, std::string_view bytes,
                               std::string_view type = "hex:") {
    std::string text = "\"" + std::string(name) + "\"=" + std::string(type);
    for (size_t i = 0; i < bytes.size(); ++i) {
        char digits[8];
        snprintf(digits, sizeof digits, "%02x", static_cast<uint8_t>(bytes[i]));
        text += digits;
        if (i + 1 == bytes.size()) break;
        text += i % 25 == 24 ? ",\\\r\n  " : ",";
    }
    return text + "\r\n";
}

// Returns the export of a printer's key.
inline std::string MakeExport(std::string_view printer, std::string_view values) {
    return std::string(kExportStart) + "[" + std::string(kPrintersKey) + std::string(printer) + "]\r\n" +
           std::string(values) + "\r\n";
}

// Returns ASCII as a file of UTF-16, as the registry editor writes it.
inline std::string AsUtf16File(std::string_view ascii) {
    ByteMaker file;
    file.U16(0xFEFF);
    for (const char each : ascii) file.U16(static_cast<uint8_t>(each));
    return file.Bytes();
}

}  // namespace orvex::tools::print
