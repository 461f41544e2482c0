#include "tools/orvexprint/device_mode_story.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "driver/config/device_mode_merge.h"
#include "driver/support/text.h"
#include "tools/common/printable_text.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/device_mode_file.h"

namespace orvex::tools::print {

namespace {

constexpr size_t kMostTextBytes = 60;

#define FIELD(field) Field<decltype(DEVMODEW::field)>(#field, offsetof(DEVMODEW, field), nullptr)
constexpr DeviceModeField kUnusedFields[] = {
    FIELD(dmSpecVersion), FIELD(dmDefaultSource), FIELD(dmTTOption),  FIELD(dmFormName),  FIELD(dmNup),
    FIELD(dmICMMethod),   FIELD(dmICMIntent),     FIELD(dmMediaType), FIELD(dmDitherType)};
#undef FIELD

bool IsText(const DeviceModeField& field) {
    return field.type == FieldType::kText || field.type == FieldType::kWideText;
}

bool IsPublic(const DeviceModeField& field) {
    return field.offset < sizeof(DEVMODEW);
}

// Marks and signatures are read by their digits.
bool IsShownInHex(const DeviceModeField& field) {
    const std::string_view name = field.name;
    return name == "dmFields" || name == "signature" || name == "dmSpecVersion" || name == "dmDriverVersion";
}

std::string TextOf(const DeviceMode& mode, const DeviceModeField& field) {
    const auto* const at = reinterpret_cast<const uint8_t*>(&mode) + field.offset;
    if (field.type == FieldType::kText) {
        const auto* const text = reinterpret_cast<const char*>(at);
        return Utf8FromNarrow({text, TextLength(text, field.size)});
    }
    std::u16string text(field.size / sizeof(char16_t), u'\0');
    memcpy(text.data(), at, field.size);
    text.resize(TextLength(text.data(), text.size()));
    return Utf8(text);
}

bool AreSame(const DeviceMode& a, const DeviceMode& b, const DeviceModeField& field) {
    if (IsText(field)) return TextOf(a, field) == TextOf(b, field);
    return ReadNumber(a, field) == ReadNumber(b, field);
}

std::string AllowedText(const ValidValues& values) {
    if (values.list == nullptr && values.least == values.most) return std::to_string(values.least);
    if (values.list == nullptr) return std::to_string(values.least) + " to " + std::to_string(values.most);
    std::string text;
    for (size_t i = 0; i < values.listed; ++i) text += (i == 0 ? "" : ", ") + std::to_string(values.list[i]);
    return text;
}

// The steps of a merge, with what each of them leaves.
class Steps {
  public:
    Steps(ByteSpan bytes, const PrinterSettings& settings)
        : stored_(bytes),
          declared_(WithDeclaredSize(bytes)),
          printers_(settings.Defaults()),
          merged_(printers_),
          ifAllWereMarked_(printers_),
          result_(printers_) {
        std::vector<uint8_t> block = WithDeclaredSize(bytes);
        auto* const source = reinterpret_cast<DEVMODEW*>(block.data());
        taken_ = MergeDevMode(&result_, source, settings.Printer()) != FALSE;
        // The merge has written the printer's profile and label into a record that names none.
        given_ = LoadDevMode(source);
        DeviceMode work = printers_;
        ConvertDevMode(source, &work.pub);
        if (taken_) CopyDevmode(&merged_, &work);
        work.pub.dmFields = UINT32_MAX;
        CopyDevmode(&ifAllWereMarked_, &work);
    }

    bool Taken() const { return taken_; }

    FieldStory StoryOf(const DeviceModeField& field) const {
        return {&field, stored_.ValueOf(field), ValueText(result_, field),
                taken_ ? Reason(field) : "the printer's"};
    }

  private:
    std::string Reason(const DeviceModeField& field) const {
        const std::string origin = Origin(field), change = Change(field);
        if (origin.empty()) return change.empty() ? "as stored" : change;
        return origin + (change.empty() ? "" : "; ") + change;
    }

    // Returns where the value came from that validation found; empty if it is the one that is stored.
    std::string Origin(const DeviceModeField& field) const {
        const size_t there = stored_.BytesOf(field);
        if (!AreSame(stored_.Values(), given_, field)) return "the record names none: kept from the printer";
        if (there < declared_.BytesOf(field))
            return "missing, though the record says that it has it: zero is assumed";
        if (there == 0) return "past the end of the record: kept from the printer";
        if (there < field.size) return "cut by the end of the record: the rest is the printer's";
        if (AreSame(merged_, stored_.Values(), field)) return {};
        if (!IsPublic(field)) return "another driver's signature: kept from the printer";
        if (AreSame(ifAllWereMarked_, stored_.Values(), field))
            return "not marked in dmFields: kept from the printer";
        if (AreSame(ifAllWereMarked_, printers_, field)) return "never taken: kept from the printer";
        return "merged with the printer's";
    }

    // Returns what validation did then; empty if it changed nothing.
    std::string Change(const DeviceModeField& field) const {
        if (AreSame(merged_, result_, field)) return {};
        const ValidValues& allowed = field.values;
        if (field.type == FieldType::kSigned &&
            !IsValid(allowed, static_cast<int32_t>(ReadNumber(merged_, field)))) {
            return ValueText(merged_, field) + " is out of range (" + AllowedText(allowed) +
                   "): replaced by " + ValueText(result_, field);
        }
        return ValueText(merged_, field) + " is set anew by the validation";
    }

    StoredRecord stored_;
    StoredRecord declared_;       // with all bytes that it says to have
    DeviceMode printers_;         // the defaults
    DeviceMode given_;            // the record after the printer's choices were written into it
    DeviceMode merged_;           // the defaults with what the record marks
    DeviceMode ifAllWereMarked_;  // the defaults with all public fields that can be taken from the record
    DeviceMode result_;           // validated
    bool taken_;
};

}  // namespace

StoredRecord::StoredRecord(ByteSpan bytes) {
    std::vector<uint8_t> block = WithDeclaredSize(bytes);
    const auto* const record = reinterpret_cast<const DEVMODEW*>(block.data());
    values_ = LoadDevMode(record);
    const size_t publicSize = record->dmSize;
    publicBytes_ = std::min(publicSize, bytes.size());
    privateBytes_ = bytes.size() <= publicSize ? 0 : std::min(PrivateSize(record), bytes.size() - publicSize);
}

size_t StoredRecord::BytesOf(const DeviceModeField& field) const {
    const size_t begin = IsPublic(field) ? field.offset : field.offset - sizeof(DEVMODEW);
    const size_t end = IsPublic(field) ? publicBytes_ : privateBytes_;
    return end <= begin ? 0 : std::min(end - begin, field.size);
}

std::string StoredRecord::ValueOf(const DeviceModeField& field) const {
    return BytesOf(field) == 0 ? "-" : ValueText(values_, field);
}

const std::vector<DeviceModeField>& PublicFields() {
    static const std::vector<DeviceModeField> fields = [] {
        std::vector<DeviceModeField> all(std::begin(kPublicFields), std::end(kPublicFields));
        all.insert(all.end(), std::begin(kUnusedFields), std::end(kUnusedFields));
        return all;
    }();
    return fields;
}

std::string ValueText(const DeviceMode& mode, const DeviceModeField& field) {
    if (IsText(field)) return "\"" + PrintableText(TextOf(mode, field), kMostTextBytes) + "\"";
    const int64_t number = ReadNumber(mode, field);
    if (!IsShownInHex(field)) return std::to_string(number);
    char text[16];
    snprintf(text, sizeof text, "0x%0*x", static_cast<int>(field.size) * 2, static_cast<unsigned>(number));
    return text;
}

DeviceModeStory TellStory(ByteSpan bytes, const PrinterSettings& settings) {
    const Steps steps(bytes, settings);
    DeviceModeStory story = {.taken = steps.Taken(), .publicFields = {}, .privateFields = {}};
    for (const DeviceModeField& field : PublicFields()) story.publicFields.push_back(steps.StoryOf(field));
    for (const DeviceModeField& field : kPrivateFields) story.privateFields.push_back(steps.StoryOf(field));
    return story;
}

}  // namespace orvex::tools::print
