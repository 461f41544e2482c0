// The fate of a stored device mode in the driver, field by field, with the reasons. All of it is found by
// running the driver's own steps on the record and comparing what goes in with what comes out.
#pragma once

#include <string>
#include <vector>

#include "driver/config/device_mode.h"
#include "tools/orvexprint/little_endian.h"
#include "tools/orvexprint/printer_settings.h"

namespace orvex::tools::print {

// A stored device mode of any bytes, seen through the driver's layout.
class StoredRecord {
  public:
    explicit StoredRecord(ByteSpan bytes);

    // Returns the values; those that are not there are zero or empty.
    const DeviceMode& Values() const { return values_; }
    // Returns how many bytes of a field are there.
    size_t BytesOf(const DeviceModeField& field) const;
    // Returns a field as text: "300", "0x0001cf03", "\"Custom\""; "-" if none of it is there.
    std::string ValueOf(const DeviceModeField& field) const;

  private:
    DeviceMode values_;
    size_t publicBytes_;
    size_t privateBytes_;
};

// Returns the public fields: those that the driver shows or validates, then those that it has no use for.
const std::vector<DeviceModeField>& PublicFields();

// Returns a field's value as text.
std::string ValueText(const DeviceMode& mode, const DeviceModeField& field);

struct FieldStory {
    const DeviceModeField* field;
    std::string stored;
    std::string result;  // in the record that the driver prints with
    std::string reason;
};

struct DeviceModeStory {
    bool taken;  // else the driver refuses the record and prints with the printer's defaults
    std::vector<FieldStory> publicFields;
    std::vector<FieldStory> privateFields;
};

// Merges a record as a job of this printer would be.
DeviceModeStory TellStory(ByteSpan bytes, const PrinterSettings& settings);

}  // namespace orvex::tools::print
