// A printer's data as the spooler keeps it: keys, nested by backslashes, with named and typed values. A JSON
// file can keep it, so that a printer's labels outlive a run:
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
    std::string bytes;  // as set; text is in the narrow code page

    bool operator==(const PrinterValue&) const = default;
};

// The keys and values of one printer. Their names are in the narrow code page and ignore case.
class PrinterData {
  public:
    struct NameOrder {
        bool operator()(const std::string& a, const std::string& b) const;
    };
    using Values = std::map<std::string, PrinterValue, NameOrder>;

    // Sets a value. Creates its key, and all keys above it, if missing.
    void Set(const std::string& key, const std::string& value, PrinterValue content);
    void SetNumber(const std::string& key, const std::string& value, uint32_t number);
    void SetText(const std::string& key, const std::string& value,
                 std::string_view text);  // adds the terminator

    // Creates a key without values.
    void AddKey(const std::string& key) { keys_[key]; }

    bool HasKey(const std::string& key) const;
    // Returns null if there is no such value.
    const PrinterValue* Find(const std::string& key, const std::string& value) const;
    // Returns the names of the keys directly below `key`, sorted.
    std::vector<std::string> SubKeys(const std::string& key) const;

    // Convert to and from JSON. FromJson throws std::runtime_error, saying what is wrong with the text.
    std::string ToJson() const;
    static PrinterData FromJson(std::string_view text);

    // Write JSON to a file and read it back. Save() replaces the file only when the new one is complete. Both
    // throw std::runtime_error that names the file.
    void Save(const std::filesystem::path& path) const;
    static PrinterData Load(const std::filesystem::path& path);

    bool operator==(const PrinterData&) const = default;

  private:
    std::map<std::string, Values, NameOrder> keys_;  // by full path
};

}  // namespace orvex::tools
