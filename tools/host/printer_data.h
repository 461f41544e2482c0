// A printer's data as the spooler keeps it: keys that nest by backslashes, each with named and typed values.
// It can be kept in a text file of JSON, so that a printer's labels outlive a run:
//
//     { "Label Sizes\\258": { "name": "Shipping", "units": 0, "version": 1, "width": "100" } }
//
// A number is a REG_DWORD, a text a zero-terminated REG_SZ; any other value is {"type": 3, "hex": "00FF"}.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows.h"

namespace orvex::tools {

struct PrinterValue {
    DWORD type;         // REG_SZ, REG_DWORD, …
    std::string bytes;  // as they were set; text in the narrow code page

    bool operator==(const PrinterValue&) const = default;
};

// Names of keys and values are in the narrow code page and are the same in capitals and small letters.
class PrinterData {
  public:
    struct NameOrder {
        bool operator()(const std::string& a, const std::string& b) const;
    };
    using Values = std::map<std::string, PrinterValue, NameOrder>;

    // Sets a value; its key, with all those above it, is made when it is missing.
    void Set(const std::string& key, const std::string& value, PrinterValue content);
    void SetNumber(const std::string& key, const std::string& value, uint32_t number);
    void SetText(const std::string& key, const std::string& value,
                 std::string_view text);  // adds the terminator

    // Makes a key without values.
    void AddKey(const std::string& key) { keys_[key]; }

    bool HasKey(const std::string& key) const;
    // Null when there is none.
    const PrinterValue* Find(const std::string& key, const std::string& value) const;
    // The names of the keys right below `key`, sorted.
    std::vector<std::string> SubKeys(const std::string& key) const;

    // The text form. FromJson throws std::runtime_error, saying what is wrong, for any text that is none.
    std::string ToJson() const;
    static PrinterData FromJson(std::string_view text);

    // Keeps the text form in a file and reads it back. The file is replaced only when the new one is
    // complete. Both throw std::runtime_error naming the file.
    void Save(const std::filesystem::path& path) const;
    static PrinterData Load(const std::filesystem::path& path);

    bool operator==(const PrinterData&) const = default;

  private:
    std::map<std::string, Values, NameOrder> keys_;  // by whole path
};

}  // namespace orvex::tools
