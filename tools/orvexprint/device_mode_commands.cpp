#include "tools/orvexprint/device_mode_commands.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "tools/common/command_line.h"
#include "tools/common/number_text.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/host/driver_session.h"
#include "tools/orvexprint/device_mode_file.h"
#include "tools/orvexprint/device_mode_story.h"
#include "tools/orvexprint/printer_settings.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr char kShow[] = "--show-devmode";
constexpr char kCompare[] = "--compare-devmode";

constexpr const char* kDescription =
    "Shows what a device mode holds and what the driver makes of it, or the fields in which two of them "
    "differ.";

constexpr const char* kExamples =
    "A device mode is a file of its bytes, of any number. It is also found in a spool file (.spl), in a "
    "shadow file (.shd)\n"
    "and in a registry export (.reg), which can hold several: \"job.spl#2\" is the second one.\n"
    "\n"
    "Each field is shown as it is stored (\"-\" if the record ends before it), as the driver has it after it "
    "merged the\n"
    "record into the printer's defaults and validated the result, and with the reason. --install and "
    "--printer-data choose\n"
    "the printer whose defaults and labels these are.\n"
    "\n"
    "Exit status of --compare-devmode: 0 when both are the same, byte for byte; 1 when they differ; 2 when "
    "they can't be\n"
    "compared.";

struct CommandOptions {
    std::vector<fs::path> files;  // one to show, or two to compare
    fs::path installation;
    fs::path printerData;

    bool Compares() const { return files.size() == 2; }
};

// Returns nothing when the arguments ask for help.
std::optional<CommandOptions> ReadOptions(const std::vector<std::string>& arguments, std::ostream& out) {
    CommandLine line("orvexprint", kDescription, "--show-devmode FILE | --compare-devmode A B", kExamples,
                     "--show-devmode --help");
    line.Flag(kShow, "Shows the device modes of a file");
    line.Flag(kCompare, "Compares two device modes");
    line.Exclude(kCompare, kShow);
    line.Files("FILE", "", "The device mode, or the two to compare", 2);
    line.Require("FILE");
    line.Text("--install", "DIR", "The installation folder; default: install beside orvexprint");
    line.Text("--printer-data", "FILE", "The printer's labels, as --printer-data of a job kept them");
    if (!line.Read(arguments, out)) return std::nullopt;
    const std::vector<std::string> files = line.Values("FILE");
    if (files.size() != (line.Has(kCompare) ? 2u : 1u)) {
        throw OptionError(line.Has(kCompare) ? "--compare-devmode takes two files"
                                             : "--show-devmode takes one file");
    }
    const auto path = [](const std::string& text) {
        return text.empty() ? fs::path() : AbsolutePath(PathFromUtf8(text));
    };
    CommandOptions options = {
        {}, path(line.Value("--install").value_or("")), path(line.Value("--printer-data").value_or(""))};
    for (const std::string& each : files) options.files.push_back(path(each));
    return options;
}

// A table whose columns are as wide as their texts, but for the last one.
class Table {
  public:
    using Row = std::vector<std::string>;
    void Add(Row row) { rows_.push_back(std::move(row)); }

    void Write(std::ostream& out) const {
        std::vector<size_t> widths(rows_.front().size());
        for (const Row& row : rows_) {
            for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Columns(row[i]));
        }
        for (const Row& row : rows_) {
            out << " ";
            for (size_t i = 0; i < row.size(); ++i) {
                out << " " << row[i];
                if (i + 1 < row.size()) out << std::string(widths[i] - Columns(row[i]) + 1, ' ');
            }
            out << "\n";
        }
    }

  private:
    // Returns the characters of a UTF-8 text.
    static size_t Columns(const std::string& text) {
        return static_cast<size_t>(
            std::count_if(text.begin(), text.end(), [](char each) { return (each & 0xC0) != 0x80; }));
    }

    std::vector<Row> rows_;
};

void WriteSizes(ByteSpan bytes, std::ostream& out) {
    out << GroupedNumber(bytes.size()) << " bytes";
    if (bytes.size() < kLeastDeviceMode) {
        out << ", which end before dmDriverExtra: the driver reads past them\n";
        return;
    }
    const size_t size = Number16(bytes, offsetof(DEVMODEW, dmSize));
    const size_t declared = DeviceModeSize(bytes);
    out << ", dmSize " << size << " and dmDriverExtra " << declared - size;
    if (declared > bytes.size()) {
        out << ": it says that it has " << declared << ", and the driver reads past its end";
    } else if (declared < bytes.size()) {
        out << "; the driver reads none of the last " << bytes.size() - declared;
    }
    out << "\n";
}

void WriteStory(const DeviceModeStory& story, std::ostream& out) {
    if (!story.taken) {
        out << "The driver refuses it: it has the dmSize of no known layout, and its dmSpecVersion is 0. "
               "The printer's\n"
               "defaults print, without validation.\n";
    }
    Table table;
    table.Add({"Field", "Stored", "The driver's", "Why"});
    const auto add = [&](const std::vector<FieldStory>& fields) {
        for (const FieldStory& each : fields)
            table.Add({each.field->name, each.stored, each.result, each.reason});
    };
    add(story.publicFields);
    table.Add({"The private part"});
    add(story.privateFields);
    table.Write(out);
}

void Show(const CommandOptions& options, const PrintEnvironment& environment) {
    const std::vector<StoredDeviceMode> modes = ReadDeviceModes(options.files[0]);
    const fs::path installation = FindInstallation(options.installation, environment);
    DriverSession session({.driver = environment.driver,
                           .installation = installation,
                           .engine = EngineFile(installation, environment.programFolder)});
    if (!options.printerData.empty()) session.Printer().data = PrinterData::Load(options.printerData);
    const PrinterSettings settings(session);
    std::ostream& out = environment.out;
    for (size_t i = 0; i < modes.size(); ++i) {
        out << (i == 0 ? "" : "\n") << Utf8FromPath(options.files[0]);
        if (modes.size() > 1) out << "#" << i + 1;
        out << ": " << modes[i].where << (modes[i].where.empty() ? "" : ": ");
        WriteSizes(modes[i].bytes, out);
        WriteStory(TellStory(modes[i].bytes, settings), out);
    }
}

int Compare(const CommandOptions& options, std::ostream& out) {
    const fs::path& a = options.files[0];
    const fs::path& b = options.files[1];
    const std::vector<uint8_t> bytesOfA = ReadDeviceMode(a).bytes, bytesOfB = ReadDeviceMode(b).bytes;
    if (bytesOfA == bytesOfB) {
        out << "the same, " << GroupedNumber(bytesOfA.size()) << " bytes\n";
        return kExitPrinted;
    }
    const StoredRecord recordA(bytesOfA), recordB(bytesOfB);
    Table table;
    table.Add({"Field", Utf8FromPath(a), Utf8FromPath(b)});
    table.Add({"bytes", std::to_string(bytesOfA.size()), std::to_string(bytesOfB.size())});
    bool fieldsDiffer = false;
    const auto compare = [&](const DeviceModeField& field) {
        const std::string inA = recordA.ValueOf(field), inB = recordB.ValueOf(field);
        if (inA == inB) return;
        fieldsDiffer = true;
        table.Add({field.name, inA, inB});
    };
    for (const DeviceModeField& field : PublicFields()) compare(field);
    for (const DeviceModeField& field : kPrivateFields) compare(field);
    table.Write(out);
    const auto differing =
        std::mismatch(bytesOfA.begin(), bytesOfA.end(), bytesOfB.begin(), bytesOfB.end()).first;
    out << (fieldsDiffer ? "The" : "No field differs; the") << " first different byte is at offset "
        << differing - bytesOfA.begin() << ".\n";
    return kExitFailed;
}

}  // namespace

bool IsDeviceModeCommand(const std::vector<std::string>& arguments) {
    return std::any_of(arguments.begin(), arguments.end(),
                       [](const std::string& argument) { return argument == kShow || argument == kCompare; });
}

int RunDeviceModeCommand(const std::vector<std::string>& arguments, const PrintEnvironment& environment) {
    const std::optional<CommandOptions> options = ReadOptions(arguments, environment.out);
    if (!options) return kExitPrinted;
    if (!options->Compares()) {
        Show(*options, environment);
        return kExitPrinted;
    }
    try {
        return Compare(*options, environment.out);
    } catch (const std::runtime_error& error) {
        throw OptionError(error.what());
    }
}

}  // namespace orvex::tools::print
