#include "tools/orvexprint/spool_file.h"

#include <algorithm>
#include <map>
#include <set>

#include "tools/orvexprint/metafile.h"

namespace orvex::tools::print {

namespace {

constexpr size_t kMostNamedRecords = 20;  // of those that are left out
constexpr std::string_view kRawStarts[] = {"\x1B", "%!", "%PDF", "@PJL", "\x04%!"};

std::string NameOf(uint32_t id) {
    switch (id) {
#define SPOOL_RECORD_NAME(number, name) \
    case number:                        \
        return #name;
        SPOOL_RECORDS(SPOOL_RECORD_NAME)
#undef SPOOL_RECORD_NAME
        default:
            return "an unknown record (" + std::to_string(id) + ")";
    }
}

std::string At(const SpoolRecord& record) {
    return NameOf(record.id) + " at offset " + std::to_string(record.offset);
}

bool HoldsAPage(uint32_t id) {
    return id == EMRI_METAFILE || id == EMRI_FORM_METAFILE || id == EMRI_BW_METAFILE ||
           id == EMRI_BW_FORM_METAFILE || id == EMRI_METAFILE_DATA;
}

bool IsPageOffset(uint32_t id) {
    return id == EMRI_METAFILE_EXT || id == EMRI_BW_METAFILE_EXT;
}

bool IsFontDefinition(uint32_t id) {
    return id == EMRI_ENGINE_FONT || id == EMRI_TYPE1_FONT || id == EMRI_DESIGNVECTOR ||
           id == EMRI_SUBSET_FONT || id == EMRI_DELTA_FONT;
}

bool IsFontOffset(uint32_t id) {
    return (id >= EMRI_ENGINE_FONT_EXT && id <= EMRI_DELTA_FONT_EXT) || id == EMRI_EMBED_FONT_EXT;
}

// The reason why a record that is not replayed doesn't matter, or does.
std::string Consequence(uint32_t id) {
    switch (id) {
        case EMRI_TYPE1_FONT:
        case EMRI_DESIGNVECTOR:
        case EMRI_SUBSET_FONT:
        case EMRI_DELTA_FONT:
            return "text in this font is drawn in one that this machine has";
        case EMRI_PRESTARTPAGE:
        case EMRI_PS_JOB_DATA:
            return "it is for PostScript printers";
        default:
            return "it is not a part of the format";
    }
}

// One reading of a file.
class Reading {
  public:
    explicit Reading(ByteSpan bytes) : bytes_(bytes) {}

    SpoolFile Run() {
        const size_t headerSize = ReadHeader();
        std::vector<SpoolRecord> records;
        const uint64_t end = SplitSpoolRecords(bytes_.subspan(headerSize), headerSize, records);
        if (end != bytes_.size()) {
            Say("the last " + std::to_string(bytes_.size() - end) +
                " bytes are no whole record: the file may have been cut");
        }
        for (const SpoolRecord& record : records) {
            const auto target = IsPageOffset(record.id) ? Target(record) : std::nullopt;
            if (target) pointedTo_.insert(*target);
        }
        for (const SpoolRecord& record : records) Take(record);
        if (file_.pages.empty())
            throw SpoolError(end == bytes_.size() ? "has no pages"
                                                  : "has no whole page: it may have been cut");
        SayUnused();
        return std::move(file_);
    }

  private:
    // A record that holds a page.
    struct Content {
        ByteSpan metafile;
        bool printed = false;
    };

    void Say(std::string line) {
        if (file_.leftOut.size() < kMostNamedRecords) {
            file_.leftOut.push_back(std::move(line));
        } else if (file_.leftOut.size() == kMostNamedRecords) {
            file_.leftOut.emplace_back("further records are left out as well");
        }
    }

    // Reads the names in the header. Returns the offset of the first record.
    size_t ReadHeader() {
        const size_t records = SpoolHeaderSize(bytes_);
        const uint32_t size = Number32(bytes_, 4);
        file_.document = HeaderText(size, Number32(bytes_, 8), "the name of the document");
        file_.output = HeaderText(size, Number32(bytes_, 12), "the name of the port");
        return records;
    }

    std::string HeaderText(uint32_t headerSize, uint32_t offset, const char* what) {
        if (offset == 0) return {};
        const auto text = TextAt(bytes_.first(headerSize), offset);
        if (offset < kSpoolHeader || !text) {
            Say(std::string(what) + " is not within the header");
            return {};
        }
        return *text;
    }

    void Take(const SpoolRecord& record) {
        if (HoldsAPage(record.id)) return TakeContent(record);
        if (IsFontDefinition(record.id)) return TakeFont(record);
        if (IsFontOffset(record.id)) return TakeFontOffset(record);
        if (IsPageOffset(record.id)) return TakePage(record);
        if (record.id == EMRI_DEVMODE) {
            deviceMode_ = CheckedDeviceMode(record.data, "the device mode " + At(record));
            if (file_.pages.empty() && file_.firstDeviceMode.empty()) file_.firstDeviceMode = deviceMode_;
            return;
        }
        Say(At(record) + " is left out: " + Consequence(record.id));
    }

    void TakeContent(const SpoolRecord& record) {
        Content& content = contents_[record.offset];
        content = {record.data};
        try {
            for (SpoolRecord font : ReadMetafile(record.data).embedded) {
                font.offset += record.offset + kSpoolRecordHead;
                if (IsFontDefinition(font.id)) TakeFont(font);
            }
        } catch (const PageError& error) {
            throw SpoolError("has a page (" + At(record) + ") that " + error.what());
        }
        // Old files have no offset records, and print each page where it is.
        if (record.id != EMRI_METAFILE_DATA && !pointedTo_.contains(record.offset)) Print(content);
    }

    // Adds a page, with the device mode in force where it is printed: Windows writes that after the page's
    // content and before the record that prints it.
    void Print(Content& content) {
        content.printed = true;
        file_.pages.push_back({content.metafile, deviceMode_});
    }

    // Returns the offset that a record points back to, or nothing.
    static std::optional<uint64_t> Target(const SpoolRecord& record) {
        if (record.data.size() < sizeof(uint64_t)) return std::nullopt;
        const uint64_t back = Number64(record.data, 0);
        if (back > record.offset) return std::nullopt;
        return record.offset - back;
    }

    void TakePage(const SpoolRecord& record) {
        const auto target = Target(record);
        const auto found = target ? contents_.find(*target) : contents_.end();
        if (found == contents_.end()) {
            throw SpoolError("is damaged: " + At(record) + " points to no page");
        }
        Print(found->second);
    }

    void TakeFontOffset(const SpoolRecord& record) {
        const auto target = Target(record);
        if (!target || !fontOffsets_.contains(*target)) Say(At(record) + " points to no font");
    }

    void TakeFont(const SpoolRecord& record) {
        fontOffsets_.insert(record.offset);
        if (record.id != EMRI_ENGINE_FONT) {
            Say(At(record) + " is left out: " + Consequence(record.id));
        } else if (!TakeFontFiles(record.data)) {
            Say(At(record) + " is left out: its files are not within it");
        }
    }

    // Takes the files of a font: their number, their sizes, and from a multiple of eight on the files.
    bool TakeFontFiles(ByteSpan data) {
        constexpr size_t kSizesAt = 8;
        if (data.size() < kSizesAt) return false;
        const uint64_t count = Number32(data, 4);
        if (!IsWithin(kSizesAt, count * 4, data.size())) return false;
        std::vector<ByteSpan> files;
        uint64_t at = (kSizesAt + count * 4 + 7) / 8 * 8;
        for (uint64_t i = 0; i < count; ++i) {
            const uint32_t size = Number32(data, static_cast<size_t>(kSizesAt + i * 4));
            if (!IsWithin(at, size, data.size())) return false;
            files.push_back(data.subspan(static_cast<size_t>(at), size));
            at += (uint64_t{size} + 3) / 4 * 4;
        }
        file_.fonts.insert(file_.fonts.end(), files.begin(), files.end());
        return count > 0;
    }

    void SayUnused() {
        for (const auto& [offset, content] : contents_) {
            if (!content.printed) {
                Say("the page at offset " + std::to_string(offset) + " is left out: no record prints it");
            }
        }
        if (deviceMode_.data() != file_.pages.back().deviceMode.data())
            Say("the last device mode is left out: no page follows it");
    }

    ByteSpan bytes_;
    SpoolFile file_;
    ByteSpan deviceMode_;
    std::map<uint64_t, Content> contents_;
    std::set<uint64_t> pointedTo_;  // by records that print a page
    std::set<uint64_t> fontOffsets_;
};

// Says what a file is that holds no metafiles, if that can be told.
void RefuseOtherKinds(ByteSpan bytes) {
    const std::string_view start(reinterpret_cast<const char*>(bytes.data()),
                                 std::min<size_t>(bytes.size(), 8));
    if (start.starts_with("PK\x03\x04")) {
        throw SpoolError(
            "is an XPS spool file; only those with enhanced metafiles (data type NT EMF) can be replayed");
    }
    const auto begins = [&](std::string_view raw) { return start.starts_with(raw); };
    const bool raw = std::any_of(std::begin(kRawStarts), std::end(kRawStarts), begins);
    if (!raw && IsSpoolFile(bytes)) return;
    throw SpoolError(std::string(raw ? "is" : "is no spool file, or") +
                     " a RAW spool file, which holds what a driver wrote and goes to the printer as it is; "
                     "only spool files with enhanced metafiles (data type NT EMF) can be replayed");
}

}  // namespace

bool IsSpoolFile(ByteSpan start) {
    return start.size() >= kSpoolHeader && Number32(start, 0) == kSpoolVersion;
}

size_t SpoolHeaderSize(ByteSpan bytes) {
    const uint32_t size = Number32(bytes, 4);
    if (size < kSpoolHeader || !IsWithin(0, size, bytes.size())) {
        throw SpoolError("is damaged: its header has a size of " + std::to_string(size) + " bytes");
    }
    return std::min<size_t>(bytes.size(), (size_t{size} + 3) / 4 * 4);
}

SpoolFile ReadSpoolFile(ByteSpan bytes) {
    RefuseOtherKinds(bytes);
    return Reading(bytes).Run();
}

ByteSpan CheckedDeviceMode(ByteSpan stored, std::string_view name) {
    const size_t size = DeviceModeSize(stored);
    if (size == 0 || size > stored.size()) {
        throw SpoolError("is damaged: " + std::string(name) + " has " + std::to_string(stored.size()) +
                         " bytes, and is said to have " + (size == 0 ? "none" : std::to_string(size)));
    }
    return stored;
}

}  // namespace orvex::tools::print
